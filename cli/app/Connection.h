// The way to the provider: COM, the simulator in WMI's place where one is used, and the session. Everything
// is undone in reverse order, however the command ends.
#pragma once

#include <quillet/client/Session.h>

#include <quillet-simulator/Machine.h>

#include <memory>
#include <optional>
#include <string>

namespace quilletctl {

class Connection {
  public:
    /// Connects to a machine by its name or address (UTF-8; empty: this one), through the simulator where one
    /// is given. Throws Refusal.
    Connection(const std::string& machine, std::shared_ptr<quillet::simulator::Machine> simulated);

    quillet::Session& Session() noexcept { return *m_session; }

  private:
    // The order matters: the session ends before the simulator is taken out, and both before COM.
    std::optional<quillet::ComUsage> m_com;
    std::optional<quillet::simulator::Registration> m_simulator;
    std::optional<quillet::Session> m_session;
};

} // namespace quilletctl
