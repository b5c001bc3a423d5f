// Connecting.
#include "app/Connection.h"

#include "ending/Failure.h"
#include "terminal/Console.h"
#include "texts/Text.h"

#include <utility>

namespace quilletctl {

Connection::Connection(const GlobalOptions& options, const Terminal& terminal,
                       std::shared_ptr<quillet::simulator::Machine> simulated) {
    const std::string& machine = options.machine;
    Attempt("initialise COM", [&] { m_com.emplace(); });
    if (simulated) {
        m_simulator.emplace(std::move(simulated));
        if (FAILED(m_simulator->Result())) {
            throw Refusal("start the simulator", m_simulator->Result());
        }
    } else if (!machine.empty() && !HostHasWmi()) {
        m_remote.emplace(options, terminal);
    }
    Attempt("connect to " + (machine.empty() ? std::string("this machine") : machine),
            [&] { m_session.emplace(quillet::SessionOptions{ToWide(machine)}); });
}

} // namespace quilletctl
