// quilletctl warnings: what the provider wants the machine's keeper to know.
#include "commands/Commands.h"
#include "texts/BitMask.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

ExitStatus ShowWarnings(Invocation& run) {
    constexpr const char* kAsked = "read the warnings";
    const auto warnings = Attempt(kAsked, [&] { return run.Session().Warnings(); });
    if (!warnings) {
        throw NotTaken(kAsked, "the provider does not tell them");
    }
    const std::vector<unsigned> bits = SetBits(warnings->Mask());
    if (run.WantsJson()) {
        run.Print(Json{{"mask", HexMask(warnings->Mask())}, {"bits", bits}});
        return ExitStatus::Done;
    }
    if (bits.empty()) {
        run.Out() << "no pending warnings\n";
    }
    // The meaning of these bits is the provider's own and differs between its versions.
    for (const unsigned bit : bits) {
        run.Out() << "provider warning " << bit << '\n';
    }
    return ExitStatus::Done;
}

} // namespace

void AddWarningsCommand(CommandTree& tree) {
    tree.AddCommand("warnings", "The provider's pending warnings", CommandTree::Group::Management,
                    ShowWarnings);
}

} // namespace quilletctl
