// Showing, applying, and going back.
#include <quillet-state/State.h>

#include "Description.h"
#include "Planner.h"
#include "Texts.h"

#include <quillet/client/Text.h>

#include <algorithm>
#include <exception>

namespace quillet::state {

namespace {

bool IsChosen(const std::vector<std::string>& patterns, const std::string& name) {
    return patterns.empty() || std::any_of(patterns.begin(), patterns.end(),
                                           [&name](const std::string& each) { return Fits(name, each); });
}

/// Makes steps in a client set of their own.
class Run {
  public:
    Run(Session& session, const std::vector<Step>& steps)
        : m_session(session), m_steps(steps), m_work{session} {}

    /// Up to the first that fails.
    void MakeInTurn(const ApplyOptions& options, Outcome& outcome) {
        Transaction changes(m_session);
        for (const Step& step : m_steps) {
            if (options.mayGoOn && !options.mayGoOn()) {
                outcome.failure = "interrupted before: " + step.words;
                break;
            }
            if (options.begins) {
                options.begins(step);
            }
            if (!Make(step, outcome)) {
                break;
            }
            ++outcome.done;
        }
        Close(changes, outcome);
    }

    /// All of them: what is left over is told by whoever compares.
    void MakeAll(Outcome& outcome) {
        Transaction changes(m_session);
        Outcome ignored;
        for (const Step& step : m_steps) {
            Make(step, ignored);
        }
        Close(changes, outcome);
    }

  private:
    bool Make(const Step& step, Outcome& outcome) {
        try {
            step.make(m_work);
            return true;
        } catch (const Error& error) {
            outcome.failure = "could not " + step.words + ": " + ExplainResult(error.Code());
            outcome.code = error.Code();
        } catch (const std::exception& error) {
            outcome.failure = "could not " + step.words + ": " + error.what();
        }
        return false;
    }

    static void Close(Transaction& changes, Outcome& outcome) {
        try {
            // A restart that the way asked for is not taken back by the way back.
            const bool isNeeded = changes.Apply().restartNeeded;
            outcome.restartNeeded = isNeeded || outcome.restartNeeded.value_or(false);
        } catch (const Error& error) {
            outcome.restartNeeded.reset();
            if (!outcome.failure) {
                outcome.failure = "could not close the client set: " + ExplainResult(error.Code());
                outcome.code = error.Code();
            }
        }
    }

    Session& m_session;
    const std::vector<Step>& m_steps;
    Work m_work;
};

/// What is still different, in words.
std::vector<std::string> Differences(Session& session, const Document& document) {
    std::vector<std::string> sentences;
    try {
        Plan plan = MakePlan(session, document, Checks::None);
        sentences = std::move(plan.problems);
        for (const Step& step : plan.steps) {
            sentences.push_back(step.subject + ", " + step.what + ": it is " +
                                (step.now.is_null() ? "not there" : step.now.dump()) + ", not " +
                                (step.wanted.is_null() ? "gone" : step.wanted.dump()));
        }
    } catch (const std::exception& error) {
        sentences.push_back(std::string("the machine could not be read again: ") + error.what());
    }
    return sentences;
}

void GoBack(Session& session, const Document& before, Outcome& outcome) {
    outcome.wentBack = true;
    try {
        const Plan back = MakePlan(session, before, Checks::None);
        if (!back.steps.empty()) {
            Run(session, back.steps).MakeAll(outcome);
        }
    } catch (const std::exception&) {
        // What that leaves is told by the comparison.
    }
    outcome.notRestored = Differences(session, before);
}

} // namespace

Shown Show(Session& session, const ShowOptions& options) {
    Machine machine(session);
    Description description(machine);
    Shown shown{Json::object(), {}};
    Json adapters = Json::array();
    for (std::size_t i = 0; i < machine.Adapters().size(); ++i) {
        const Adapter& adapter = machine.Adapters()[i];
        if (IsChosen(options.match, ToUtf8(adapter.name)) ||
            IsChosen(options.match, ToUtf8(adapter.displayName))) {
            if (Json json = description.Whole(i, options, shown.unread); !json.is_null()) {
                adapters.push_back(std::move(json));
            }
        }
    }
    Json teams = Json::array();
    for (const TeamFacts& facts : machine.Teams()) {
        if (IsChosen(options.match, ToUtf8(facts.team.name))) {
            teams.push_back(description.Whole(facts, options.by));
        }
    }
    // A provider lists a team that was made again last.
    std::stable_sort(teams.begin(), teams.end(),
                     [](const Json& left, const Json& right) { return left.at("name") < right.at("name"); });
    shown.document["adapters"] = std::move(adapters);
    shown.document["teams"] = std::move(teams);
    return shown;
}

Json ShowLike(Session& session, const Document& document) {
    Machine machine(session);
    return Description(machine).Like(document);
}

Outcome Apply(Session& session, const Document& document, const Plan& plan, const ApplyOptions& options) {
    if (!plan.problems.empty()) {
        throw DocumentError(plan.problems);
    }
    Outcome outcome;
    if (plan.steps.empty()) {
        outcome.restartNeeded = false;
        return outcome;
    }
    Document before;
    if (options.goBack || options.isConfirmed) {
        Machine machine(session);
        before = Description(machine).Before(document);
    }
    Run(session, plan.steps).MakeInTurn(options, outcome);
    if (!outcome.failure) {
        outcome.differences = Differences(session, document);
        outcome.isRefused = outcome.differences.empty() && options.isConfirmed && !options.isConfirmed();
    }
    if (outcome.isRefused || (options.goBack && !outcome.IsReached())) {
        GoBack(session, before, outcome);
    }
    return outcome;
}

} // namespace quillet::state
