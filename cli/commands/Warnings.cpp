// quilletctl warnings: what the provider wants the machine's keeper to know.
#include "BitMask.h"
#include "Commands.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

ExitStatus ShowWarnings(Invocation& run) {
    ULONGLONG warnings = 0;
    Invocation::Check(run.Session().GetWarnings(warnings), "read the warnings");
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
