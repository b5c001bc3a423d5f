// Connecting.
#include "app/Connection.h"

#include "ending/Failure.h"
#include "terminal/Console.h"
#include "texts/Text.h"

#include <utility>

namespace quilletctl {

Connection::Connection(const GlobalOptions& options, const Terminal& terminal,
                       std::shared_ptr<quillet::simulator::Machine> simulated)
    : m_machine(options.machine) {
    Attempt("initialise COM", [&] { m_com.emplace(); });
    if (simulated) {
        m_simulator.emplace(std::move(simulated));
        if (FAILED(m_simulator->Result())) {
            throw Refusal("start the simulator", m_simulator->Result());
        }
    } else if (!m_machine.empty() && !HostHasWmi()) {
        m_remote.emplace(options, terminal);
    }
    Reconnect();
}

quillet::Session& Connection::Reconnect() {
    m_words.reset();
    m_session.reset();
    Attempt("connect to " + (m_machine.empty() ? std::string("this machine") : m_machine),
            [&] { m_session.emplace(quillet::SessionOptions{ToWide(m_machine)}); });
    m_words.emplace(*m_session);
    return *m_session;
}

} // namespace quilletctl
