// Connecting and disconnecting.
#include "app/Connection.h"

#include "ending/Failure.h"
#include "texts/Text.h"

#include <utility>

namespace quilletctl {

using quillet::simulator::Machine;
using quillet::simulator::Registration;

Connection::Apartment::Apartment() {
    const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (FAILED(result)) {
        throw Refusal("initialise COM", result);
    }
}

Connection::Apartment::~Apartment() {
    CoUninitialize();
}

Connection::Session::Session(const std::string& machine)
    : quillet(machine.empty() ? CQuillet() : CQuillet(ToWide(machine))) {}

Connection::Session::~Session() {
    quillet.UninitQuillet();
}

Connection::Connection(const std::string& machine, std::shared_ptr<Machine> simulated) : m_session(machine) {
    if (simulated) {
        m_simulator.emplace(std::move(simulated));
        if (FAILED(m_simulator->Result())) {
            throw Refusal("start the simulator", m_simulator->Result());
        }
    }
    const HRESULT result = m_session.quillet.InitQuillet();
    if (FAILED(result)) {
        throw Refusal("connect to " + (machine.empty() ? std::string("this machine") : machine), result);
    }
}

} // namespace quilletctl
