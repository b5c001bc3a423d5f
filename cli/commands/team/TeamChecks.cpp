// Answering with what the checks found.
#include "commands/team/TeamChecks.h"

#include "texts/BitMask.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <vector>

namespace quilletctl {

void ThrowUnlessAnswered(HRESULT result, const std::string& asked) {
    if (result != S_OK) {
        throw Refusal(asked, result);
    }
}

ExitStatus TeamProblems::Report(Invocation& run) const {
    std::vector<std::string> sentences;
    for (const std::wstring& sentence : CTeamTexts::Problems(m_mask)) {
        sentences.push_back(ToUtf8(sentence));
    }
    if (run.WantsJson()) {
        run.Print(Json{{"mask", HexMask(m_mask)}, {"problems", sentences}});
    } else {
        for (const std::string& sentence : sentences) {
            run.Out() << Printable(sentence) << '\n';
        }
    }
    return ExitStatus::Findings;
}

} // namespace quilletctl
