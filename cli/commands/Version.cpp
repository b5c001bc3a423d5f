// quilletctl version.
#include "commands/Commands.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

ExitStatus ShowVersion(Invocation& run) {
    if (run.WantsJson()) {
        run.Print(Json{{"version", QUILLETCTL_VERSION}});
    } else {
        run.Out() << "quilletctl " QUILLETCTL_VERSION "\n";
    }
    return ExitStatus::Done;
}

} // namespace

void AddVersionCommand(CommandTree& tree) {
    tree.AddCommand("version", "The version of quilletctl", CommandTree::Group::Diagnostics, ShowVersion);
}

} // namespace quilletctl
