// quilletctl warnings: what the provider wants the machine's keeper to know.
#include "commands/Commands.h"
#include "texts/BitMask.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

/// A provider that refuses, or has no answer, leaves the mask as it was, and no failure is returned. A mask
/// that is once all ones and once all zeros when it comes back was not written. Throws Refusal and NotTaken.
ULONGLONG ReadWarnings(CQuillet& session) {
    constexpr const char* kAsked = "read the warnings";
    constexpr ULONGLONG kAll = ~0ULL;
    ULONGLONG warnings = kAll;
    ThrowIfRefused(session.GetWarnings(warnings), kAsked);
    if (warnings == kAll) {
        warnings = 0;
        ThrowIfRefused(session.GetWarnings(warnings), kAsked);
        if (warnings == 0) {
            throw NotTaken(kAsked, "the provider does not tell them");
        }
    }
    return warnings;
}

ExitStatus ShowWarnings(Invocation& run) {
    const ULONGLONG warnings = ReadWarnings(run.Session());
    const std::vector<unsigned> bits = SetBits(warnings);
    if (run.WantsJson()) {
        run.Print(Json{{"mask", HexMask(warnings)}, {"bits", bits}});
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
