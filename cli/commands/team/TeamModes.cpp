// quilletctl team modes: the modes that adapters can be teamed in.
#include "app/Answers.h"
#include "commands/team/TeamChecks.h"
#include "commands/team/TeamMembers.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/TeamLookup.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

namespace quilletctl {

namespace {

/// The modes that adapters can be teamed in, or the one that suits a team best.
class ListModes final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "adapter", m_adapters, 0, 64,
            "The adapters, by name, object ID, object path or pattern; none: all that are in no team");
        syntax.Text("--team", m_team, "TEAM", "Ask which mode suits this team best instead");
    }

    ExitStatus Run(Invocation& run) override {
        if (m_team && !m_adapters.empty()) {
            throw UsageError("--team: not together with adapters");
        }
        return m_team ? Best(run) : Compatible(run);
    }

  private:
    ExitStatus Compatible(Invocation& run) {
        CQuillet& session = run.Session();
        const CAdapters adapters = m_adapters.empty() ? Free(session) : NamedAdapters(session, m_adapters);
        CTeamWizTeamModes modes;
        if (!adapters.m_vecItems.empty()) {
            ThrowIfRefused(session.GetCompatibleTeamModesWithAdapters(adapters, modes, true),
                           "find the modes of the adapters");
        }
        Json list = Json::array();
        Table table({{"MODE", Fit::Whole}, {"NAME", Fit::MayShorten}, {"DESCRIPTION", Fit::MayShorten}});
        for (const CTeamWizTeamMode* mode : modes.m_vecItems) {
            const std::string description = ToUtf8(mode->m_wsDescription);
            list.push_back(Coded(mode->m_lTeamMode, description));
            table.AddRow({std::to_string(mode->m_lTeamMode), TeamModeText(mode->m_lTeamMode), description});
        }
        return AnswerList(run, Json{{"adapters", adapters.m_vecItems.size()}, {"modes", std::move(list)}},
                          table, "these adapters cannot be teamed in any mode");
    }

    static CAdapters Free(CQuillet& session) {
        CAdapters all;
        ThrowIfRefused(session.EnumerateAdapters(all), "list the adapters");
        ThrowIfRefused(session.GetTeamableAdapters(all), "find the adapters that are in no team");
        CAdapters free;
        for (const CAdapter* adapter : all.m_vecItems) {
            if (!adapter->m_bTeamed) {
                AppendAdapter(free, adapter->m_wsAdapterID);
            }
        }
        return free;
    }

    ExitStatus Best(Invocation& run) {
        CQuillet& session = run.Session();
        const CTeam team = FindTeam(session, *m_team);
        CTeamWizTeamMode mode;
        CTeam::TeamAutoDetectStatus status{};
        unsigned int coverage = 0;
        ThrowUnlessAnswered(session.GetBestTeamMode(team.m_wsTeamID, mode, status, coverage),
                            "find the best mode for " + Called(team));
        const std::string statusText = NumberInWords(status, CTeamTexts::AutoDetectStatus(status));
        if (run.WantsJson()) {
            run.Print(Json{{"path", ToUtf8(team.m_wsTeamID)},
                           {"status", Coded(status, statusText)},
                           {"coverage", coverage},
                           {"mode", Coded(mode.m_lTeamMode, ToUtf8(mode.m_wsDescription))}});
        } else {
            Sheet()
                .Add("Detection", statusText)
                .Add("Coverage", std::to_string(coverage) + " %")
                .Add("Best mode",
                     ToUtf8(mode.m_wsDescription) + " (" + std::to_string(mode.m_lTeamMode) + ")")
                .Print(run.Screen());
        }
        return ExitStatus::Done;
    }

    std::vector<std::string> m_adapters;
    std::optional<std::string> m_team;
};

} // namespace

void AddTeamModes(CommandTree::Noun& team) {
    team.Query("modes", "The modes that adapters can be teamed in", std::make_unique<ListModes>());
}

} // namespace quilletctl
