// The bracket around the changes of one command.
#pragma once

#include <quillet/Quillet.h>

namespace quilletctl {

/// An open client set. It is closed in the end, also when the command breaks off: what was changed until then
/// takes effect, and no later change gets into a set that nobody closes.
class ClientSet {
  public:
    /// Opens it. Throws Refusal.
    explicit ClientSet(CQuillet& session);
    ~ClientSet();
    ClientSet(const ClientSet&) = delete;
    ClientSet& operator=(const ClientSet&) = delete;

    /// Closes it and tells whether a restart is needed. Throws Refusal.
    bool Close();

  private:
    CQuillet& m_session;
    bool m_isOpen = true;
};

/// "a restart is needed" or "no restart is needed".
const char* RestartText(bool isNeeded);

} // namespace quilletctl
