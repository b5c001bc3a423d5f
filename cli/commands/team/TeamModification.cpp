// quilletctl team modify, delete: the name and the mode of a team, and its end.
#include "changes/ClientSet.h"
#include "changes/Wait.h"
#include "commands/team/TeamChange.h"
#include "commands/team/TeamChecks.h"
#include "commands/team/TeamCommand.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/ObjectPath.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

class ModifyTeam final : public TeamCommand {
  public:
    void Declare(Syntax& syntax) override {
        TeamCommand::Declare(syntax);
        syntax.Text("--name", m_newName, "NAME", "The team's new name");
        syntax.Text("--mode", m_mode, "MODE", "The team's new mode, by number or name", TeamModeNumbers());
        m_wait.Declare(syntax);
    }

  private:
    ExitStatus RunFor(const quillet::Team& team, Invocation& run) override {
        if (!m_newName && !m_mode) {
            throw UsageError("nothing to change: --name or --mode is needed");
        }
        quillet::Session& session = run.Session();
        quillet::Team changed = team;
        TeamProblems problems;
        if (m_newName) {
            changed.name = ToWide(*m_newName);
            problems.Add(
                Attempt("check the name", [&] { return session.ValidateTeamName(changed.name, team.id); }));
        }
        if (m_mode) {
            changed.mode = TeamModeFrom(*m_mode);
            problems.Add(
                Attempt("check the mode", [&] { return session.ValidateTeamMode(changed.mode, team.id); }));
        }
        if (problems.Any()) {
            return problems.Report(run);
        }
        const std::string asked = "change " + Called(team);
        const std::vector<Watched> up = m_wait.Up(session, {StatusOf(team.id, "the team " + Called(team))});
        ClientSet set(run, Steps(team, changed));
        Attempt(asked, [&] { session.ModifyTeam(team.id, changed.name, changed.mode); });
        const std::optional<bool> restartNeeded = set.Close();
        m_wait.Until(run, up);
        const Verification taken = Verification::By([&](Verification& compare) {
            const quillet::Team now = ReadTeam(session, team);
            compare.Compare(FieldsOf(changed), FieldsOf(now));
            changed.name = now.name;
            changed.mode = now.mode;
        });
        return EndTeamChange(run, changed, asked, "changed " + Called(team), restartNeeded, taken);
    }

    static std::vector<std::string> Steps(const quillet::Team& team, const quillet::Team& changed) {
        std::vector<std::string> steps;
        if (changed.name != team.name) {
            steps.push_back("rename " + Called(team) + " to " + Called(changed));
        }
        if (changed.mode != team.mode) {
            steps.push_back("change the mode of " + Called(team) + " to " + InWords(changed.mode));
        }
        return steps;
    }

    std::optional<std::string> m_newName;
    std::optional<std::string> m_mode;
    WaitOption m_wait;
};

class DeleteTeam final : public TeamCommand {
    ExitStatus RunFor(const quillet::Team& team, Invocation& run) override {
        if (!run.ConfirmChange("Delete the team " + Called(team) + " and its VLANs?")) {
            return ExitStatus::Done;
        }
        quillet::Session& session = run.Session();
        const std::string asked = "delete " + Called(team);
        ClientSet set(run, {asked + " and its VLANs"});
        Attempt(asked, [&] { session.RemoveTeam(team.id); });
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            for (const quillet::Team& each : ReadTeams(session)) {
                if (NameTheSameObject(each.id, team.id)) {
                    compare.Add("path", Json(), PathOf(each.id), "the team is still there");
                }
            }
        });
        return EndTeamChange(run, team, asked, "deleted " + Called(team), restartNeeded, taken);
    }
};

} // namespace

void AddTeamModification(CommandTree::Noun& team) {
    team.Verb("modify", "Change a team's name or mode", std::make_unique<ModifyTeam>())
        .Verb("delete", "Remove a team and its VLANs", std::make_unique<DeleteTeam>());
}

} // namespace quilletctl
