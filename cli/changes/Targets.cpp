// Changing several things, and telling what became of each.
#include "changes/Targets.h"

#include "changes/ClientSet.h"
#include "texts/Text.h"

#include <algorithm>

namespace quilletctl {

namespace {

using TargetOutcome = Target::Outcome;
using Targets = std::vector<Target>;

const char* OutcomeName(TargetOutcome outcome) {
    switch (outcome) {
    case TargetOutcome::Changed:
        return "changed";
    case TargetOutcome::Unchanged:
        return "unchanged";
    case TargetOutcome::ReadOnly:
        return "readOnly";
    case TargetOutcome::Missing:
        return "missing";
    case TargetOutcome::Refused:
        return "refused";
    case TargetOutcome::NotTaken:
        return "notTaken";
    case TargetOutcome::Unknown:
        return "unknown";
    case TargetOutcome::NotTried:
        return "notTried";
    }
    return "";
}

bool Has(const Targets& targets, TargetOutcome outcome) {
    return std::any_of(targets.begin(), targets.end(),
                       [outcome](const Target& each) { return each.outcome == outcome; });
}

std::string ReasonOf(const Target& target) {
    return target.code == static_cast<HRESULT>(WBEM_E_VALUE_OUT_OF_RANGE) && !target.possible.empty()
               ? "the value is out of range (" + target.possible + ')'
               : std::string();
}

std::string Line(const Target& target) {
    switch (target.outcome) {
    case TargetOutcome::Changed:
    case TargetOutcome::NotTaken:
    case TargetOutcome::Unknown:
        return target.called + ": " + target.taken.Text(target.text);
    case TargetOutcome::Refused:
        return target.called + ": refused, " + ExplainResult(target.code, ReasonOf(target));
    case TargetOutcome::Unchanged:
    case TargetOutcome::ReadOnly:
    case TargetOutcome::Missing:
    case TargetOutcome::NotTried:
        break;
    }
    return target.called + ": " + target.text;
}

std::vector<std::string> WarningsOf(const Targets& targets) {
    std::vector<std::string> lines;
    for (const Target& target : targets) {
        for (const std::string& warning : target.warnings) {
            lines.push_back("warning: " + target.called + ": " + warning);
        }
    }
    return lines;
}

void Tell(Invocation& run, const Targets& targets) {
    std::vector<std::string> steps;
    std::vector<std::string> remarks = WarningsOf(targets);
    for (const Target& target : targets) {
        if (target.outcome == TargetOutcome::Changed) {
            steps.push_back(target.step);
        } else {
            remarks.push_back(Line(target));
        }
    }
    run.BeginChanges(steps, remarks);
}

/// One after the other, for they do not depend on each other.
std::optional<bool> Write(Invocation& run, Targets& targets) {
    if (!Has(targets, TargetOutcome::Changed)) {
        return false;
    }
    ClientSet set(run, {});
    for (Target& target : targets) {
        if (target.outcome != TargetOutcome::Changed) {
            continue;
        }
        if (!run.MayGoOn()) {
            target.outcome = TargetOutcome::NotTried;
            target.text = "left alone, for the command was interrupted";
            continue;
        }
        try {
            target.change(run.Session());
        } catch (const quillet::Error& refusal) {
            target.code = refusal.Code();
            target.outcome = TargetOutcome::Refused;
        }
    }
    return set.Close();
}

/// Once the client set is closed: until then a provider may keep changes back.
void ReadBack(Invocation& run, Targets& targets) {
    for (Target& target : targets) {
        if (target.outcome != TargetOutcome::Changed) {
            continue;
        }
        target.taken =
            Verification::By([&](Verification& compare) { target.compare(run.Session(), compare); });
        const std::optional<bool> took = target.taken.Took();
        target.outcome = !took   ? TargetOutcome::Unknown
                         : *took ? TargetOutcome::Changed
                                 : TargetOutcome::NotTaken;
    }
}

void Answer(Invocation& run, const Targets& targets, std::optional<bool> restartNeeded, Json answer) {
    if (!run.WantsJson()) {
        for (const Target& target : targets) {
            run.Out() << Printable(Line(target)) << '\n';
        }
        run.Out() << RestartText(restartNeeded) << '\n';
        return;
    }
    Json list = Json::array();
    for (const Target& target : targets) {
        Json each = AsJson(target.named);
        each["outcome"] = OutcomeName(target.outcome);
        each["warnings"] = target.warnings;
        each["code"] = FAILED(target.code) ? Json(DescribeResult(target.code)) : Json();
        each["differences"] = target.taken.Differences();
        list.push_back(std::move(each));
    }
    answer["targets"] = std::move(list);
    answer["restartNeeded"] = RestartJson(restartNeeded);
    run.Print(answer);
}

} // namespace

ExitStatus ChangeTarget(Invocation& run, const Target& target) {
    ClientSet set(run, {target.step});
    Attempt(target.asked, [&] { target.change(run.Session()); });
    const std::optional<bool> restartNeeded = set.Close();
    return AnswerChange(
        run, target.asked, target.text.c_str(), restartNeeded,
        Verification::By([&](Verification& compare) { target.compare(run.Session(), compare); }));
}

ExitStatus ChangeTargets(Invocation& run, std::vector<Target> targets, bool needsAll, Json answer,
                         const std::function<void()>& settle) {
    const bool isFinding = needsAll && Has(targets, TargetOutcome::ReadOnly);
    if (isFinding) {
        for (Target& target : targets) {
            if (target.outcome == TargetOutcome::Changed) {
                target.outcome = TargetOutcome::NotTried;
                target.text = "left alone as well";
            }
        }
    } else if (run.IsDryRun()) {
        Tell(run, targets);
    }
    if (!run.WantsJson()) {
        for (const std::string& warning : WarningsOf(targets)) {
            run.Out() << Printable(warning) << '\n';
        }
    }
    const std::optional<bool> restartNeeded = Write(run, targets);
    if (settle && Has(targets, TargetOutcome::Changed)) {
        settle();
    }
    ReadBack(run, targets);
    Answer(run, targets, restartNeeded, std::move(answer));
    for (const Target& target : targets) {
        if (target.outcome == TargetOutcome::Refused) {
            throw Refusal(target.asked, target.code, ReasonOf(target));
        }
        target.taken.End(target.asked);
    }
    return isFinding ? ExitStatus::Findings : ExitStatus::Done;
}

} // namespace quilletctl
