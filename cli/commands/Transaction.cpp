// quilletctl transaction: the bracket around changes, tried without one.
#include "Commands.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

ExitStatus TryTransaction(Invocation& run) {
    CQuillet& session = run.Session();
    Invocation::Check(session.BeginApply(), "open a client set");
    bool restartNeeded = false;
    Invocation::Check(session.ApplyDone(restartNeeded), "close the client set");
    if (run.WantsJson()) {
        run.Print(Json{{"restartNeeded", restartNeeded}});
    } else {
        run.Out() << "opened a client set and closed it again: "
                  << (restartNeeded ? "a restart is needed\n" : "no restart is needed\n");
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
