// quilletctl completion: the scripts that make shells complete quilletctl's command lines.
#include "commands/Commands.h"
#include "completion/Complete.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

namespace {

class PrintScript final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("shell", m_shell, "The shell", ShellsWithCompletion());
    }

    ExitStatus Run(Invocation& run) override {
        const std::string script = CompletionScript(m_shell);
        if (run.WantsJson()) {
            run.Print(Json{{"shell", m_shell}, {"script", script}});
        } else {
            run.Out() << script;
        }
        return ExitStatus::Done;
    }

  private:
    std::string m_shell;
};

} // namespace

void AddCompletionCommand(CommandTree& tree) {
    tree.AddCommand("completion", "Print a script that lets a shell complete command lines",
                    CommandTree::Group::Diagnostics, std::make_unique<PrintScript>());
}

} // namespace quilletctl
