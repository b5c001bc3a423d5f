// Opening and closing a client set.
#include "changes/ClientSet.h"

#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

ClientSet::ClientSet(Invocation& run, const std::vector<std::string>& steps,
                     const std::vector<std::string>& remarks)
    : m_run(run) {
    quillet::Session& session = run.Session();
    run.BeginChanges(steps, remarks);
    Attempt("open a client set", [&] { m_changes.emplace(session); });
    if (!run.MayGoOn()) {
        run.NoteRestart(Close());
        throw Interruption();
    }
}

ClientSet::~ClientSet() {
    if (m_changes) {
        m_run.NoteRestart(Close());
    }
}

std::optional<bool> ClientSet::Close() {
    std::optional<bool> restartNeeded;
    try {
        restartNeeded = m_changes->Apply().restartNeeded;
    } catch (const quillet::Error& failure) {
        m_run.FailAfterAnswer({"close the client set", failure.Code()});
    }
    m_changes.reset();
    return restartNeeded;
}

Json ChangesInTurn::CodeOf(std::size_t change) const {
    return refusal && change == refused ? Json(DescribeResult(refusal->Code())) : Json();
}

void ChangesInTurn::Settle(Invocation& run) const {
    if (!refusal) {
        return;
    }
    if (count == 1 && done == 0) {
        run.NoteRestart(restartNeeded);
        throw Refusal(*refusal);
    }
    run.FailAfterAnswer(*refusal);
}

ChangesInTurn ChangeInTurn(Invocation& run, const std::vector<std::string>& asked,
                           const std::function<void(std::size_t)>& change) {
    ChangesInTurn outcome{asked.size()};
    ClientSet set(run, asked);
    try {
        while (outcome.done < asked.size() && run.MayGoOn()) {
            Attempt(asked[outcome.done], [&] { change(outcome.done); });
            ++outcome.done;
        }
    } catch (const Refusal& refusal) {
        outcome.refusal = refusal;
    }
    outcome.refused = outcome.done;
    outcome.restartNeeded = set.Close();
    return outcome;
}

ExitStatus AnswerChange(Invocation& run, const std::string& asked, const char* done,
                        std::optional<bool> restartNeeded, const Verification& verification) {
    if (run.WantsJson()) {
        Json answer{{"restartNeeded", RestartJson(restartNeeded)}};
        verification.AddTo(answer);
        run.Print(answer);
    } else {
        run.Out() << Printable(verification.Text(done)) << "; " << RestartText(restartNeeded) << '\n';
    }
    verification.End(asked);
    return ExitStatus::Done;
}

Json RestartJson(std::optional<bool> isNeeded) {
    return isNeeded ? Json(*isNeeded) : Json();
}

const char* RestartText(std::optional<bool> isNeeded) {
    return !isNeeded   ? "whether a restart is needed is not known"
           : *isNeeded ? "a restart is needed"
                       : "no restart is needed";
}

} // namespace quilletctl
