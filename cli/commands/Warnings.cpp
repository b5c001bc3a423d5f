// quilletctl warnings: what the provider wants the machine's keeper to know.
#include "commands/Commands.h"
#include "texts/BitMask.h"
#include "texts/InWords.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

ExitStatus ShowWarnings(Invocation& run) {
    constexpr const char* kAsked = "read the warnings";
    const auto warnings = Attempt(kAsked, [&] { return run.Session().Warnings(); });
    if (!warnings) {
        throw NotTaken(kAsked, "the provider does not tell them");
    }
    // The meaning of these bits is the provider's own and differs between its versions.
    const std::vector<std::string> texts = InWords(*warnings, L"warning");
    if (run.WantsJson()) {
        run.Print(
            Json{{"mask", HexMask(warnings->Mask())}, {"bits", SetBits(warnings->Mask())}, {"texts", texts}});
        return ExitStatus::Done;
    }
    if (texts.empty()) {
        run.Out() << "no pending warnings\n";
    }
    for (const std::string& text : texts) {
        run.Out() << text << '\n';
    }
    return ExitStatus::Done;
}

} // namespace

void AddWarningsCommand(CommandTree& tree) {
    tree.AddCommand("warnings", "The provider's pending warnings", CommandTree::Group::Management,
                    ShowWarnings);
}

} // namespace quilletctl
