// The bracket around the changes of one command.
#pragma once

#include "Invocation.h"

#include <quillet/Quillet.h>

#include <string>

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

/// The answer of a command that made one change.
ExitStatus AnswerChange(Invocation& run, const char* done, bool restartNeeded);

/// Makes one change in a client set of its own and answers whether a restart is needed. Throws Refusal.
/// @param asked completes "could not …"; `done` says what was done
template <class Change>
ExitStatus ChangeInSet(Invocation& run, const std::string& asked, const char* done, Change change) {
    ClientSet set(run.Session());
    Invocation::Check(change(run.Session()), asked);
    return AnswerChange(run, done, set.Close());
}

/// "a restart is needed" or "no restart is needed".
const char* RestartText(bool isNeeded);

} // namespace quilletctl
