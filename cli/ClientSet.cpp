// Opening and closing a client set.
#include "ClientSet.h"

#include "Text.h"

#include <comutil.h>

#include <nlohmann/json.hpp>

namespace quilletctl {

ClientSet::ClientSet(CQuillet& session) : m_session(session) {
    Invocation::Check(session.BeginApply(), "open a client set");
}

ClientSet::~ClientSet() {
    if (m_isOpen) {
        try {
            bool ignored = false;
            m_session.ApplyDone(ignored);
        } catch (const _com_error&) {
            // Out of memory on the way out of another failure, which is the one to tell.
        }
    }
}

bool ClientSet::Close() {
    m_isOpen = false;
    bool restartNeeded = false;
    Invocation::Check(m_session.ApplyDone(restartNeeded), "close the client set");
    return restartNeeded;
}

ExitStatus AnswerChange(Invocation& run, const std::string& asked, const char* done, bool restartNeeded,
                        const Verification& verification) {
    if (run.WantsJson()) {
        Json answer{{"restartNeeded", restartNeeded}};
        verification.AddTo(answer);
        run.Print(answer);
    } else {
        run.Out() << Printable(verification.Text(done)) << "; " << RestartText(restartNeeded) << '\n';
    }
    verification.End(asked);
    return ExitStatus::Done;
}

const char* RestartText(bool isNeeded) {
    return isNeeded ? "a restart is needed" : "no restart is needed";
}

} // namespace quilletctl
