// Opening and closing a client set.
#include "changes/ClientSet.h"

#include "texts/Text.h"

#include <comutil.h>

#include <nlohmann/json.hpp>

namespace quilletctl {

ClientSet::ClientSet(Invocation& run) : m_run(run) {
    CQuillet& session = run.Session();
    run.HoldInterrupts();
    ThrowIfRefused(session.BeginApply(), "open a client set");
    if (!run.MayGoOn()) {
        run.NoteRestart(Close());
        throw Interruption();
    }
}

ClientSet::~ClientSet() {
    if (m_isOpen) {
        try {
            m_run.NoteRestart(Close());
        } catch (const _com_error&) {
            // Out of memory on the way out of another failure, which is the one to tell.
        }
    }
}

std::optional<bool> ClientSet::Close() {
    m_isOpen = false;
    bool restartNeeded = false;
    const HRESULT result = m_run.Session().ApplyDone(restartNeeded);
    if (FAILED(result)) {
        m_run.FailAfterAnswer({"close the client set", result});
        return std::nullopt;
    }
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

ChangesInTurn ChangeInTurn(Invocation& run, std::size_t count,
                           const std::function<void(std::size_t)>& change) {
    ChangesInTurn outcome{count};
    ClientSet set(run);
    try {
        while (outcome.done < count && run.MayGoOn()) {
            change(outcome.done);
            ++outcome.done;
        }
    } catch (const Refusal& refusal) {
        outcome.refusal = refusal;
    } catch (const _com_error& failure) {
        outcome.refusal.emplace("finish the command", failure.Error());
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
