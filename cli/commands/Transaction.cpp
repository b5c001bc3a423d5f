// quilletctl transaction: the bracket around changes, tried without one.
#include "changes/ClientSet.h"
#include "commands/Commands.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

ExitStatus TryTransaction(Invocation& run) {
    ClientSet set(run, {"open a client set and close it again"});
    const std::optional<bool> restartNeeded = set.Close();
    if (!restartNeeded) {
        return ExitStatus::Refused; // to close it was all there was to try
    }
    if (run.WantsJson()) {
        run.Print(Json{{"restartNeeded", *restartNeeded}});
    } else {
        run.Out() << "opened a client set and closed it again: " << RestartText(restartNeeded) << '\n';
    }
    return ExitStatus::Done;
}

} // namespace

void AddTransactionCommands(CommandTree& tree) {
    tree.AddNoun("transaction", "The bracket around changes", CommandTree::Group::Diagnostics)
        .Verb("try", "Open a client set, close it empty, and say whether a restart is needed",
              TryTransaction);
}

} // namespace quilletctl
