// quilletctl config apply: bringing the machine to the state of a document.
#include "app/Command.h"
#include "changes/ClientSet.h"
#include "commands/config/ConfigDocument.h"
#include "commands/config/ConfigVerbs.h"
#include "commands/config/Confirmation.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

using quillet::state::Outcome;
using quillet::state::Plan;

constexpr LONG kLongestPatience = 86400;

/// What became of the machine, in a sentence.
std::string Summary(const Plan& plan, const Outcome& outcome) {
    if (outcome.IsReached()) {
        return plan.steps.empty() ? "nothing differs" : "the machine is as the document says";
    }
    if (!outcome.wentBack) {
        return std::to_string(outcome.done) + " of " + std::to_string(plan.steps.size()) +
               " steps were made, and stay";
    }
    return outcome.notRestored.empty() ? "everything is as it was before"
                                       : "not everything is as it was before:";
}

Json OutcomeJson(const Plan& plan, const Outcome& outcome) {
    Json answer = AsJson(plan);
    answer["done"] = outcome.done;
    answer["failure"] = outcome.failure ? Json(*outcome.failure) : Json();
    answer["code"] = outcome.code ? Json(DescribeResult(*outcome.code)) : Json();
    answer["differences"] = outcome.differences;
    answer["confirmed"] = !outcome.isRefused;
    answer["wentBack"] = outcome.wentBack;
    answer["notRestored"] = outcome.notRestored;
    answer["restartNeeded"] = RestartJson(outcome.restartNeeded);
    return answer;
}

class ApplyConfig final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Argument("file", m_file, "The document; - reads standard input");
        syntax.Flag("--no-rollback", m_noRollback, "Leave what was changed when a step fails");
        syntax.Number("--confirm", m_confirm, 1, kLongestPatience,
                      "Take everything back unless somebody says yes in so many seconds");
    }

    ExitStatus Run(Invocation& run) override {
        const quillet::state::Document document = ReadConfig(m_file);
        const Plan plan = PlanOf(run, document);
        if (!plan.problems.empty()) {
            return EndUnchanged(run, plan);
        }
        if (run.IsDryRun()) {
            Begin(run, plan);
        }
        if (!run.WantsJson()) {
            PrintLines(run, "warning", plan.warnings);
            PrintLines(run, "cannot be undone", plan.losses);
        }
        if (!plan.losses.empty() && !run.ConfirmChange("Go on all the same?")) {
            return ExitStatus::Done;
        }
        const Outcome outcome = Apply(run, document, plan);
        if (run.WantsJson()) {
            run.Print(OutcomeJson(plan, outcome));
        } else {
            Tell(run, plan, outcome);
        }
        return End(outcome);
    }

  private:
    static void Begin(Invocation& run, const Plan& plan) {
        std::vector<std::string> remarks = plan.warnings;
        for (const std::string& loss : plan.losses) {
            remarks.push_back("cannot be undone: " + loss);
        }
        run.BeginChanges(WordsOf(plan), remarks);
    }

    static ExitStatus EndUnchanged(Invocation& run, const Plan& plan) {
        if (run.WantsJson()) {
            run.Print(AsJson(plan));
        } else {
            PrintLines(run, "warning", plan.warnings);
            PrintLines(run, "problem", plan.problems);
            run.Out() << "nothing was changed\n";
        }
        return ExitStatus::Findings;
    }

    Outcome Apply(Invocation& run, const quillet::state::Document& document, const Plan& plan) const {
        quillet::state::ApplyOptions options;
        options.goBack = !m_noRollback;
        options.mayGoOn = [&run] { return run.MayGoOn(); };
        if (!run.WantsJson()) {
            options.begins = [&run](const quillet::state::Step& step) {
                run.Out() << Printable(step.words) << '\n';
            };
        }
        if (m_confirm) {
            options.isConfirmed = [&run, patience = *m_confirm] {
                return IsConfirmed(run, std::chrono::seconds(patience));
            };
        }
        quillet::Session& session = run.Session();
        Begin(run, plan);
        return Attempt("read what the machine is like before",
                       [&] { return quillet::state::Apply(session, document, plan, options); });
    }

    static void Tell(Invocation& run, const Plan& plan, const Outcome& outcome) {
        PrintLines(run, "did not take", outcome.differences);
        run.Out() << Summary(plan, outcome) << '\n';
        PrintLines(run, "", outcome.notRestored);
        run.Out() << RestartText(outcome.restartNeeded) << '\n';
    }

    static ExitStatus End(const Outcome& outcome) {
        if (outcome.failure) {
            throw std::runtime_error(*outcome.failure);
        }
        if (!outcome.differences.empty()) {
            throw NotTaken("apply the document", "the provider accepted it, but not all of it took");
        }
        if (outcome.isRefused) {
            throw std::runtime_error("nobody confirmed the changes, so they were taken back");
        }
        return ExitStatus::Done;
    }

    std::string m_file;
    bool m_noRollback = false;
    std::optional<LONG> m_confirm;
};

} // namespace

void AddConfigApply(CommandTree::Noun& config) {
    config.Verb("apply", "Bring the machine to the state of a document", std::make_unique<ApplyConfig>());
}

} // namespace quilletctl
