// quilletctl dsc: the desired state for an engine that starts a program for each of its operations.
#include "app/Command.h"
#include "commands/Commands.h"
#include "files/Files.h"

#include <quillet-state/State.h>

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

using quillet::state::Document;
using quillet::state::Outcome;
using quillet::state::Plan;

/// Says something beside the answer. @param level "error", "warn" or "info"
void Tell(Invocation& run, const char* level, const std::string& text) {
    PrintJsonLine(Json{{level, text}}, run.Screen().err);
}

void TellAll(Invocation& run, const char* level, const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        Tell(run, level, text);
    }
}

/// What the engine hands over.
std::string ReadInstance() {
    return ReadStandardInput(quillet::state::kMostBytes);
}

Document DocumentIn(const std::string& instance) {
    try {
        return quillet::state::ReadDocument(instance);
    } catch (const quillet::state::DocumentError& error) {
        throw UsageError(std::string("the instance: ") + error.what());
    }
}

/// What has to be done; nothing where the instance does not fit the machine, and the engine knows why.
std::optional<Plan> PlanFor(Invocation& run, const Document& document) {
    quillet::Session& session = run.Session();
    Plan plan = Attempt("compare the machine with the instance",
                        [&] { return quillet::state::MakePlan(session, document); });
    TellAll(run, "warn", plan.warnings);
    TellAll(run, "error", plan.problems);
    return plan.problems.empty() ? std::optional(std::move(plan)) : std::nullopt;
}

Json WholeState(Invocation& run) {
    quillet::Session& session = run.Session();
    const quillet::state::Shown shown =
        Attempt("read the machine", [&] { return quillet::state::Show(session); });
    for (const std::string& missing : shown.unread) {
        Tell(run, "warn", "not shown: " + missing);
    }
    return shown.document;
}

/// What the machine has of all that the instance mentions.
Json StateLike(Invocation& run, const Document& document) {
    quillet::Session& session = run.Session();
    try {
        return Attempt("read the machine", [&] { return ShowLike(session, document); });
    } catch (const quillet::state::DocumentError& error) {
        throw UsageError(std::string("the instance: ") + error.what());
    }
}

std::optional<Json> Get(Invocation& run) {
    const std::string instance = ReadInstance();
    if (instance.find_first_not_of(" \t\r\n") == std::string::npos) {
        return WholeState(run);
    }
    const Document document = DocumentIn(instance);
    const bool mentionsNothing = document.adapters.empty() && document.teams.empty() && !document.isExclusive;
    return mentionsNothing ? WholeState(run) : StateLike(run, document);
}

std::optional<Json> Test(Invocation& run) {
    const Document document = DocumentIn(ReadInstance());
    const std::optional<Plan> plan = PlanFor(run, document);
    if (!plan) {
        return std::nullopt;
    }
    Json state = StateLike(run, document);
    state["_inDesiredState"] = plan->steps.empty();
    return state;
}

std::optional<Json> Foretell(Invocation& run) {
    const std::string instance = ReadInstance();
    const std::optional<Plan> plan = PlanFor(run, DocumentIn(instance));
    if (!plan) {
        return std::nullopt;
    }
    TellAll(run, "warn", plan->losses);
    for (const quillet::state::Step& step : plan->steps) {
        Tell(run, "info", "would " + step.words);
    }
    // Where nothing differs any more the machine has what was asked for.
    return Json::parse(instance);
}

/// Why the machine is not as the instance says, and what it is like now.
std::string Explain(const Outcome& outcome) {
    std::string text = outcome.failure.value_or("the provider accepted every change, but not all of it took");
    for (const std::string& difference : outcome.differences) {
        text += "; " + difference;
    }
    text += outcome.notRestored.empty() ? "; everything is as it was before"
                                        : "; not everything is as it was before";
    for (const std::string& lost : outcome.notRestored) {
        text += "; " + lost;
    }
    return text;
}

std::optional<Json> Set(Invocation& run) {
    const Document document = DocumentIn(ReadInstance());
    const std::optional<Plan> plan = PlanFor(run, document);
    if (!plan) {
        return std::nullopt;
    }
    TellAll(run, "warn", plan->losses);
    quillet::state::ApplyOptions options;
    options.mayGoOn = [&run] { return run.MayGoOn(); };
    options.begins = [&run](const quillet::state::Step& step) { Tell(run, "info", step.words); };
    quillet::Session& session = run.Session();
    run.BeginChanges(WordsOf(*plan));
    const Outcome outcome = Attempt("read what the machine is like before",
                                    [&] { return Apply(session, document, *plan, options); });
    const bool mustRestart = outcome.restartNeeded.value_or(false);
    if (!outcome.IsReached()) {
        if (mustRestart) {
            Tell(run, "warn", "what was taken back needs a restart all the same");
        }
        throw std::runtime_error(Explain(outcome));
    }
    Json state = StateLike(run, document);
    state["_rebootRequested"] = mustRestart;
    return state;
}

std::optional<Json> Export(Invocation& run) {
    return WholeState(run);
}

std::optional<Json> InstanceSchema(Invocation&) {
    Json schema = Json::parse(quillet::state::DocumentSchema());
    const auto add = [&schema](const char* name, const char* description) {
        schema["properties"][name] =
            Json{{"description", description}, {"type", "boolean"}, {"readOnly", true}};
    };
    add("_inDesiredState", "Whether the machine was as the instance says.");
    add("_rebootRequested", "Whether the machine must be restarted before everything takes effect.");
    return schema;
}

class ForEngine final : public Command {
  public:
    using Operation = std::optional<Json> (*)(Invocation& run);
    explicit ForEngine(Operation operation) noexcept : m_operation(operation) {}

    bool ServesEngine() const noexcept override { return true; }
    ExitStatus Run(Invocation& run) override {
        const std::optional<Json> answer = m_operation(run);
        if (!answer) {
            return ExitStatus::Findings;
        }
        run.PrintLine(*answer);
        return ExitStatus::Done;
    }

  private:
    Operation m_operation;
};

} // namespace

void AddDscCommands(CommandTree& tree) {
    const auto operation = [](ForEngine::Operation function) {
        return std::make_unique<ForEngine>(function);
    };
    tree.AddNoun("dsc", "The operations that Microsoft DSC starts")
        .Query("get", "Write what the machine has of an instance", operation(Get))
        .Verb("set", "Bring the machine to the state of an instance", operation(Set))
        .Query("test", "Say whether the machine is as an instance says", operation(Test))
        .Query("what-if", "Say what set would do", operation(Foretell))
        .Query("export", "Write the machine as an instance", operation(Export))
        .Query("schema", "Print the JSON Schema of instances", operation(InstanceSchema));
}

} // namespace quilletctl
