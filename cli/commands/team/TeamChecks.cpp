// Answering with what the checks found.
#include "commands/team/TeamChecks.h"

#include "texts/BitMask.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace quilletctl {

ExitStatus TeamProblems::Report(Invocation& run) const {
    std::vector<std::string> sentences;
    for (const std::wstring& sentence : quillet::Texts(m_problems)) {
        sentences.push_back(ToUtf8(sentence));
    }
    if (run.WantsJson()) {
        run.Print(Json{{"mask", HexMask(m_problems.Mask())}, {"problems", sentences}});
    } else {
        for (const std::string& sentence : sentences) {
            run.Out() << Printable(sentence) << '\n';
        }
    }
    return ExitStatus::Findings;
}

} // namespace quilletctl
