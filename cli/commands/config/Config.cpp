// quilletctl config: the machine as a document, and what differs from one.
#include "app/Command.h"
#include "commands/Commands.h"
#include "commands/config/ConfigDocument.h"
#include "commands/config/ConfigVerbs.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

using quillet::state::NamedBy;

class ShowConfig final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments("pattern", m_patterns, 0, 64,
                         "The names of adapters and teams to show; `*` stands for any text (default: all)");
        syntax.Flag("--changed", m_onlyChanged, "Only settings that differ from their defaults");
        syntax.Choice("--by", m_by, {"name", "slot", "mac"}, "What adapters are named by (default: name)");
        syntax.Text("--like", m_like, "FILE", "What the machine has of all that this document mentions");
    }

    ExitStatus Run(Invocation& run) override {
        if (m_like) {
            if (!m_patterns.empty() || m_onlyChanged || !m_by.empty()) {
                throw UsageError("--like: the document says what is shown, and how");
            }
            const quillet::state::Document document = ReadConfig(*m_like);
            quillet::Session& session = run.Session();
            try {
                run.Print(Attempt("read the machine", [&] { return ShowLike(session, document); }));
            } catch (const quillet::state::DocumentError& error) {
                throw UsageError(error.what());
            }
            return ExitStatus::Done;
        }
        quillet::state::ShowOptions options;
        options.by = m_by == "slot" ? NamedBy::Slot : m_by == "mac" ? NamedBy::Mac : NamedBy::Name;
        options.onlyChanged = m_onlyChanged;
        options.match = m_patterns;
        quillet::Session& session = run.Session();
        const quillet::state::Shown shown =
            Attempt("read the machine", [&] { return quillet::state::Show(session, options); });
        run.Print(shown.document);
        for (const std::string& missing : shown.unread) {
            run.Screen().err << "quilletctl: not shown: " << Printable(missing) << '\n';
        }
        return ExitStatus::Done;
    }

  private:
    std::vector<std::string> m_patterns;
    bool m_onlyChanged = false;
    std::string m_by;
    std::optional<std::string> m_like;
};

/// A command that compares with a document.
class CompareConfig : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("file", m_file, "The document; - reads standard input");
    }
    ExitStatus Run(Invocation& run) final {
        const quillet::state::Document document = ReadConfig(m_file);
        return Answer(run, PlanOf(run, document));
    }

  private:
    virtual ExitStatus Answer(Invocation& run, const quillet::state::Plan& plan) = 0;

    std::string m_file;
};

class ValidateConfig final : public CompareConfig {
    ExitStatus Answer(Invocation& run, const quillet::state::Plan& plan) override {
        if (run.WantsJson()) {
            run.Print(Json{{"problems", plan.problems}, {"warnings", plan.warnings}});
        } else {
            PrintLines(run, "warning", plan.warnings);
            PrintLines(run, "", plan.problems);
            if (plan.problems.empty()) {
                run.Out() << "the document fits this machine\n";
            }
        }
        return plan.problems.empty() ? ExitStatus::Done : ExitStatus::Findings;
    }
};

class DiffConfig final : public CompareConfig {
    ExitStatus Answer(Invocation& run, const quillet::state::Plan& plan) override {
        if (run.WantsJson()) {
            run.Print(AsJson(plan));
        } else {
            PrintLines(run, "warning", plan.warnings);
            PrintLines(run, "problem", plan.problems);
            PrintDifferences(run, plan);
            if (plan.problems.empty() && plan.steps.empty()) {
                run.Out() << "nothing differs\n";
            }
        }
        return plan.problems.empty() && plan.steps.empty() ? ExitStatus::Done : ExitStatus::Findings;
    }
};

ExitStatus PrintSchema(Invocation& run) {
    run.Print(Json::parse(quillet::state::DocumentSchema()));
    return ExitStatus::Done;
}

} // namespace

void AddConfigCommands(CommandTree& tree) {
    CommandTree::Noun config = tree.AddNoun("config", "What the machine should be like, as a document");
    config.Query("show", "Write the machine as a document", std::make_unique<ShowConfig>())
        .Query("validate", "Say what stands in the way of a document", std::make_unique<ValidateConfig>())
        .Query("diff", "Compare the machine with a document", std::make_unique<DiffConfig>());
    AddConfigApply(config);
    config.Query("schema", "Print the JSON Schema of documents", PrintSchema);
}

} // namespace quilletctl
