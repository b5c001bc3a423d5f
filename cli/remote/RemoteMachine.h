// A machine over the network in the place of this host's WMI. One implementation file where WS-Management is
// built, another where it is not.
#pragma once

#include "app/Options.h"
#include "terminal/Terminal.h"

#include <memory>
#include <string>

namespace quilletctl {

/// Whether this program can reach other machines without the host's WMI.
bool HasRemoteAccess() noexcept;

class RemoteMachine {
  public:
    /// Puts the machine of the options there, and warns of what is not safe. Throws UsageError, Refusal.
    RemoteMachine(const GlobalOptions& options, const Terminal& terminal);
    ~RemoteMachine();
    RemoteMachine(const RemoteMachine&) = delete;
    RemoteMachine& operator=(const RemoteMachine&) = delete;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace quilletctl
