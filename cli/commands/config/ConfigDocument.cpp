// Reading documents, and telling what a plan says.
#include "commands/config/ConfigDocument.h"

#include "files/Files.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

quillet::state::Document ReadConfig(const std::string& file) {
    std::string text;
    if (file == "-") {
        text = ReadStandardInput(quillet::state::kMostBytes);
    } else {
        const std::vector<std::uint8_t> bytes = ReadWholeFile(file);
        text.assign(bytes.begin(), bytes.end());
    }
    try {
        return quillet::state::ReadDocument(text);
    } catch (const quillet::state::DocumentError& error) {
        throw UsageError((file == "-" ? "standard input" : file) + ": " + error.what());
    }
}

quillet::state::Plan PlanOf(Invocation& run, const quillet::state::Document& document) {
    quillet::Session& session = run.Session();
    return Attempt("compare the machine with the document",
                   [&] { return quillet::state::MakePlan(session, document); });
}

Json AsJson(const quillet::state::Plan& plan) {
    Json changes = Json::array();
    for (const quillet::state::Step& step : plan.steps) {
        changes.push_back(Json{{"subject", step.subject},
                               {"what", step.what},
                               {"now", step.now},
                               {"wanted", step.wanted},
                               {"step", step.words}});
    }
    return Json{{"changes", std::move(changes)},
                {"problems", plan.problems},
                {"warnings", plan.warnings},
                {"losses", plan.losses}};
}

void PrintLines(Invocation& run, const std::string& label, const std::vector<std::string>& sentences) {
    for (const std::string& sentence : sentences) {
        run.Out() << (label.empty() ? "" : label + ": ") << Printable(sentence) << '\n';
    }
}

void PrintDifferences(Invocation& run, const quillet::state::Plan& plan) {
    const bool colour = run.Screen().outColour;
    const auto print = [&](const char* sign, const char* code, const quillet::state::Step& step,
                           const Json& value) {
        if (!value.is_null()) {
            const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
            run.Out() << (colour ? code : "") << sign
                      << Printable(step.subject + ", " + step.what + ": " + text) << (colour ? "\x1b[0m" : "")
                      << '\n';
        }
    };
    for (const quillet::state::Step& step : plan.steps) {
        print("- ", "\x1b[31m", step, step.now);
        print("+ ", "\x1b[32m", step, step.wanted);
    }
}

} // namespace quilletctl
