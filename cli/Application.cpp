// From a command line to its outcome.
#include "Application.h"

#include "changes/ClientSet.h"
#include "commands/Commands.h"
#include "completion/Complete.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <optional>

namespace quilletctl {

namespace {

/// How one step of a run ended.
struct Ending {
    ExitStatus status = ExitStatus::Done;
    std::string message{};         ///< what went wrong; empty: nothing
    std::optional<HRESULT> code{}; ///< the provider's, where it refused
};

Ending As(const Refusal& refusal) {
    return {ExitStatus::Refused, refusal.what(), refusal.Code()};
}

void PrintError(const Terminal& terminal, const std::string& message) {
    // The two streams may end on one screen; the error belongs below what came before it.
    terminal.out.flush();
    if (terminal.errIsForEngine) {
        PrintJsonLine(Json{{"error", message}}, terminal.err);
        return;
    }
    terminal.err << (terminal.errColour ? "\x1b[1;31mquilletctl:\x1b[0m " : "quilletctl: ")
                 << Printable(message) << '\n';
}

/// Runs a step and turns whatever it throws into its ending.
Ending Guarded(const Terminal& terminal, const std::function<ExitStatus()>& step) {
    try {
        return {step()};
    } catch (const TextRequest& request) {
        terminal.out << request.text;
        return {};
    } catch (const DryRunEnd&) {
        return {};
    } catch (const UsageError& mistake) {
        return {ExitStatus::BadUsage, mistake.what()};
    } catch (const Interruption& interruption) {
        return {ExitStatus::Interrupted, interruption.what()};
    } catch (const Refusal& refusal) {
        return As(refusal);
    } catch (const quillet::Error& failure) {
        return As(Refusal("finish the command", failure.Code()));
    } catch (const std::bad_alloc&) {
        return {ExitStatus::Refused, "out of memory"};
    } catch (const std::exception& failure) {
        return {ExitStatus::Refused, failure.what()};
    }
}

/// The failure as the answer of a command that has no other.
Json FailureAsJson(const Ending& failure, std::optional<bool> restartNeeded) {
    Json code;
    Json name;
    if (failure.code) {
        const std::string described = DescribeResult(*failure.code);
        const std::size_t blank = described.find(' ');
        code = described.substr(0, blank);
        name = blank == std::string::npos ? Json() : Json(described.substr(blank + 1));
    }
    return Json{{"error", Json{{"status", static_cast<int>(failure.status)},
                               {"message", failure.message},
                               {"code", std::move(code)},
                               {"name", std::move(name)},
                               {"restartNeeded", RestartJson(restartNeeded)}}}};
}

/// Whether a line asks for JSON, also one that cannot be read otherwise.
bool AsksForJson(const std::vector<std::string>& arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, "--json") != end;
}

/// What there is to say of a request to end, where the command did not say it itself.
const char* InterruptionText(const Invocation& run, ExitStatus status) {
    if (status == ExitStatus::Refused) {
        return "interrupted";
    }
    return run.HasStopped() ? "interrupted before everything was done"
                            : "interrupted, but everything was done";
}

void ChooseColours(Terminal& terminal, const GlobalOptions& options) {
    const char* noColour = std::getenv("NO_COLOR");
    if (options.noColour || (noColour != nullptr && *noColour != '\0')) {
        terminal.outColour = false;
        terminal.errColour = false;
    }
}

ExitStatus Run(const std::vector<std::string>& arguments, Terminal& terminal) {
    CommandTree tree;
    AddAllCommands(tree);
    if (!arguments.empty() && arguments.front() == "complete") {
        return Complete(tree, {arguments.begin() + 1, arguments.end()}, terminal);
    }
    Command* command = nullptr;
    bool hasAnswered = !AsksForJson(arguments);
    std::optional<bool> restartNeeded;
    const auto tell = [&](const Ending& ending) {
        if (ending.message.empty()) {
            return;
        }
        // One document for whoever parses the output, whatever happens.
        if (!hasAnswered) {
            PrintJson(FailureAsJson(ending, restartNeeded), terminal.out);
            hasAnswered = true;
        }
        PrintError(terminal, ending.message);
    };
    Ending ending = Guarded(terminal, [&] {
        command = &tree.Parse(arguments);
        return ExitStatus::Done;
    });
    ChooseColours(terminal, tree.Options());
    tell(ending);
    if (command != nullptr) {
        terminal.errIsForEngine = command->ServesEngine();
        Invocation run(tree.Options(), terminal, !command->OnlyReads() && !tree.Options().dryRun);
        ending = Guarded(terminal, [&] { return command->Run(run); });
        hasAnswered = hasAnswered || run.HasAnswered();
        restartNeeded = run.RestartNeeded();
        if (restartNeeded.value_or(false) && !run.WantsJson()) {
            terminal.out << RestartText(restartNeeded) << '\n';
        }
        tell(ending);
        for (const Refusal& refusal : run.RefusalsAfterAnswer()) {
            tell(As(refusal));
            const bool isAnswered =
                ending.status == ExitStatus::Done || ending.status == ExitStatus::Findings;
            ending.status = isAnswered ? ExitStatus::Refused : ending.status;
        }
        const Ending after = Guarded(terminal, [&] {
            run.Finish();
            return ExitStatus::Done;
        });
        tell(after);
        ending = ending.status == ExitStatus::Done ? after : ending;
        if (run.IsInterrupted() && ending.status != ExitStatus::Interrupted) {
            ending = {ExitStatus::Interrupted, InterruptionText(run, ending.status)};
            tell(ending);
        }
        // What was done is told while nothing can end the process yet.
        terminal.out.flush();
    }
    terminal.out.flush();
    if (!terminal.out && ending.status == ExitStatus::Done) {
        PrintError(terminal, "standard output cannot be written");
        return ExitStatus::Refused;
    }
    return ending.status;
}

} // namespace

ExitStatus RunCommandLine(const std::vector<std::string>& arguments, Terminal terminal) noexcept {
    // The steps are guarded one by one; this is for what lies between them.
    const Ending ending = Guarded(terminal, [&] { return Run(arguments, terminal); });
    if (!ending.message.empty()) {
        PrintError(terminal, ending.message);
    }
    return ending.status;
}

} // namespace quilletctl
