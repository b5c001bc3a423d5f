// The bracket around the changes of one command.
#pragma once

#include "Invocation.h"
#include "Verification.h"

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

/// The answer of a command that made one change. Throws NotTaken or Refusal.
/// @param asked completes "could not …"; `done` says what was done where it took
ExitStatus AnswerChange(Invocation& run, const std::string& asked, const char* done, bool restartNeeded,
                        const Verification& verification);

/// Makes one change in a client set of its own, reads back what became of it, and answers whether it took and
/// whether a restart is needed. Throws Refusal and NotTaken.
/// @param asked completes "could not …"; `done` says what was done where it took
/// @param compare reads back into a Verification, once the set is closed: a provider may keep changes until
/// then
template <class Change, class Compare>
ExitStatus ChangeInSet(Invocation& run, const std::string& asked, const char* done, Change change,
                       Compare compare) {
    ClientSet set(run.Session());
    Invocation::Check(change(run.Session()), asked);
    const bool restartNeeded = set.Close();
    return AnswerChange(run, asked, done, restartNeeded,
                        Verification::By([&](Verification& taken) { compare(run.Session(), taken); }));
}

/// "a restart is needed" or "no restart is needed".
const char* RestartText(bool isNeeded);

} // namespace quilletctl
