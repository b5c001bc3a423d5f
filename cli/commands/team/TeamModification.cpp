// quilletctl team modify, delete: the name and the mode of a team, and its end.
#include "changes/ClientSet.h"
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
    }

  private:
    ExitStatus RunFor(const CTeam& team, Invocation& run) override {
        if (!m_newName && !m_mode) {
            throw UsageError("nothing to change: --name or --mode is needed");
        }
        CQuillet& session = run.Session();
        CTeam changed = team;
        TeamProblems problems;
        DWORD word = 0;
        if (m_newName) {
            changed.m_wsCaption = ToWide(*m_newName);
            ThrowUnlessAnswered(session.ValidateTeamName(changed.m_wsCaption, team.m_wsTeamID, word),
                                "check the name");
            problems.Add(word);
        }
        if (m_mode) {
            changed.m_eTeamMode = TeamModeFrom(*m_mode);
            ThrowUnlessAnswered(session.ValidateTeamMode(changed.m_eTeamMode, team.m_wsTeamID, word),
                                "check the mode");
            problems.Add(word);
        }
        if (problems.Any()) {
            return problems.Report(run);
        }
        const std::string asked = "change " + Called(team);
        ClientSet set(run);
        ThrowIfRefused(session.ModifyTeamInfo(team.m_wsTeamID, changed), asked);
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const CTeam now = ReadTeam(session, team);
            compare.Compare(FieldsOf(changed), FieldsOf(now));
            changed.m_wsCaption = now.m_wsCaption;
            changed.m_eTeamMode = now.m_eTeamMode;
        });
        return EndTeamChange(run, changed, asked, "changed " + Called(team), restartNeeded, taken);
    }

    std::optional<std::string> m_newName;
    std::optional<std::string> m_mode;
};

class DeleteTeam final : public TeamCommand {
    ExitStatus RunFor(const CTeam& team, Invocation& run) override {
        if (!run.ConfirmChange("Delete the team " + Called(team) + " and its VLANs?")) {
            return ExitStatus::Done;
        }
        CQuillet& session = run.Session();
        const std::string asked = "delete " + Called(team);
        ClientSet set(run);
        ThrowIfRefused(session.RemoveTeam(team.m_wsTeamID), asked);
        const std::optional<bool> restartNeeded = set.Close();
        const Verification taken = Verification::By([&](Verification& compare) {
            const CTeams teams = ReadTeams(session);
            for (const CTeam* each : teams.m_vecItems) {
                if (NameTheSameObject(ToUtf8(each->m_wsTeamID), ToUtf8(team.m_wsTeamID))) {
                    compare.Add("path", Json(), ToUtf8(each->m_wsTeamID), "the team is still there");
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
