// The way to the provider: COM, what stands in WMI's place where this host has none, and the session.
// Everything is undone in reverse order, however the command ends.
#pragma once

#include "remote/RemoteMachine.h"
#include "texts/ProviderWords.h"

#include <quillet/client/Session.h>

#include <quillet-simulator/Machine.h>

#include <memory>
#include <optional>
#include <string>

namespace quilletctl {

class Connection {
  public:
    /// Connects to the machine of the options, through the simulator where one is given. Throws Refusal and,
    /// for what the options name and cannot be used, UsageError.
    Connection(const GlobalOptions& options, const Terminal& terminal,
               std::shared_ptr<quillet::simulator::Machine> simulated);

    quillet::Session& Session() noexcept { return *m_session; }
    /// Ends the session, whatever became of it, and begins another. Throws Refusal; there is none then, and
    /// it can be tried again.
    quillet::Session& Reconnect();

  private:
    // The order matters: words and session end before what stands in WMI's place is taken out, and all before
    // COM.
    std::optional<quillet::ComUsage> m_com;
    std::optional<quillet::simulator::Registration> m_simulator;
    std::optional<RemoteMachine> m_remote;
    std::optional<quillet::Session> m_session;
    std::optional<ProviderWords> m_words;
    std::string m_machine;
};

} // namespace quilletctl
