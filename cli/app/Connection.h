// The way to the provider: COM on this thread, the simulator in WMI's place where one is used, and the
// library's session. Everything is undone in reverse order, however the command ends.
#pragma once

#include <quillet/Quillet.h>

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

    CQuillet& Quillet() noexcept { return m_session.quillet; }

  private:
    struct Apartment {
        Apartment();
        ~Apartment();
        Apartment(const Apartment&) = delete;
        Apartment& operator=(const Apartment&) = delete;
    };
    struct Session {
        explicit Session(const std::string& machine);
        ~Session();
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;
        CQuillet quillet;
    };

    // The order matters: the session ends before the simulator is taken out, and both before COM.
    Apartment m_apartment;
    std::optional<quillet::simulator::Registration> m_simulator;
    Session m_session;
};

} // namespace quilletctl
