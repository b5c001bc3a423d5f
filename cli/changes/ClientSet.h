// The bracket around the changes of one command.
#pragma once

#include "app/Invocation.h"
#include "changes/Verification.h"

#include <quillet/client/Session.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// An open client set. It is closed in the end, also when the command breaks off: what was changed until then
/// takes effect, and no later change gets into a set that nobody closes.
class ClientSet {
  public:
    /// Opens it (Invocation::BeginChanges); from here on requests to end are held back. Throws Refusal, and
    /// Interruption when one came meanwhile.
    /// @param steps what is to be done in it; completes "would …"
    ClientSet(Invocation& run, const std::vector<std::string>& steps,
              const std::vector<std::string>& remarks = {});
    ~ClientSet();
    ClientSet(const ClientSet&) = delete;
    ClientSet& operator=(const ClientSet&) = delete;

    /// Closes it and tells whether a restart is needed: nothing when closing failed, which is told after the
    /// command's answer, for the changes were made.
    std::optional<bool> Close();

  private:
    Invocation& m_run;
    std::optional<quillet::Transaction> m_changes;
};

/// Whether a restart is needed, where that is known.
Json RestartJson(std::optional<bool> isNeeded);
/// "a restart is needed", "no restart is needed", or that it is not known.
const char* RestartText(std::optional<bool> isNeeded);

/// How far a command came that makes several changes, one by one.
struct ChangesInTurn {
    std::size_t count = 0;
    std::size_t done = 0;             ///< the first ones
    std::optional<Refusal> refusal{}; ///< of the one that ended the turn; the rest was not tried
    std::size_t refused = 0;          ///< which that is
    std::optional<bool> restartNeeded{};

    /// The provider's code of a change that was not made; null where it was not tried.
    Json CodeOf(std::size_t change) const;
    /// Before the answer: sees to it that the refusal is told after it. Throws it where there was but one
    /// change, for then it tells all.
    void Settle(Invocation& run) const;
};

/// Makes changes in a client set, until one is refused or the command is interrupted.
/// @param asked what each change is: completes "could not …"
/// @param change makes the change of a number, or throws quillet::Error
ChangesInTurn ChangeInTurn(Invocation& run, const std::vector<std::string>& asked,
                           const std::function<void(std::size_t)>& change);

/// The answer of a command that made one change. Throws NotTaken or Refusal.
/// @param asked completes "could not …"; `done` says what was done where it took
ExitStatus AnswerChange(Invocation& run, const std::string& asked, const char* done,
                        std::optional<bool> restartNeeded, const Verification& verification);

/// Makes one change in a client set of its own, reads back what became of it, and answers whether it took and
/// whether a restart is needed. Throws Refusal and NotTaken.
/// @param asked completes "could not …"; `done` says what was done where it took
/// @param values what is asked for, where a dry run is to tell it
/// @param compare reads back into a Verification, once the set is closed: a provider may keep changes until
/// then
template <class Change, class Compare>
ExitStatus ChangeInSet(Invocation& run, const std::string& asked, const char* done,
                       const std::vector<Field>& values, Change change, Compare compare) {
    ClientSet set(run, {WithValues(asked, values)});
    Attempt(asked, [&] { change(run.Session()); });
    const std::optional<bool> restartNeeded = set.Close();
    return AnswerChange(run, asked, done, restartNeeded,
                        Verification::By([&](Verification& taken) { compare(run.Session(), taken); }));
}

} // namespace quilletctl
