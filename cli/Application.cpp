// From a command line to its outcome.
#include "Application.h"

#include "Commands.h"
#include "Text.h"

#include <comutil.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <optional>

namespace quilletctl {

namespace {

void PrintError(const Terminal& terminal, const std::string& message) {
    // The two streams may end on one screen; the error belongs below what came before it.
    terminal.out.flush();
    terminal.err << (terminal.errColour ? "\x1b[1;31mquilletctl:\x1b[0m " : "quilletctl: ")
                 << Printable(message) << '\n';
}

/// Runs a step and turns whatever it throws into a message and an exit status.
ExitStatus Guarded(const Terminal& terminal, const std::function<ExitStatus()>& step) {
    try {
        return step();
    } catch (const TextRequest& request) {
        terminal.out << request.text;
        return ExitStatus::Done;
    } catch (const UsageError& mistake) {
        PrintError(terminal, mistake.what());
        return ExitStatus::BadUsage;
    } catch (const Refusal& refusal) {
        PrintError(terminal, refusal.what());
    } catch (const _com_error& failure) {
        PrintError(terminal, Refusal("finish the command", failure.Error()).what());
    } catch (const std::bad_alloc&) {
        PrintError(terminal, "out of memory");
    } catch (const std::exception& failure) {
        PrintError(terminal, failure.what());
    }
    return ExitStatus::Refused;
}

void ChooseColours(Terminal& terminal, const GlobalOptions& options) {
    const char* noColour = std::getenv("NO_COLOR");
    if (options.noColour || (noColour != nullptr && *noColour != '\0')) {
        terminal.outColour = false;
        terminal.errColour = false;
    }
}

} // namespace

ExitStatus RunCommandLine(const std::vector<std::string>& arguments, Terminal terminal) noexcept {
    CommandTree tree;
    AddAllCommands(tree);
    Command* command = nullptr;
    ExitStatus status = Guarded(terminal, [&] {
        command = &tree.Parse(arguments);
        return ExitStatus::Done;
    });
    ChooseColours(terminal, tree.Options());
    if (command != nullptr) {
        Invocation run(tree.Options(), terminal);
        status = Guarded(terminal, [&] { return command->Run(run); });
        const ExitStatus after = Guarded(terminal, [&] {
            run.Finish();
            return ExitStatus::Done;
        });
        status = status == ExitStatus::Done ? after : status;
    }
    terminal.out.flush();
    if (!terminal.out && status == ExitStatus::Done) {
        PrintError(terminal, "standard output cannot be written");
        status = ExitStatus::Refused;
    }
    return status;
}

} // namespace quilletctl
