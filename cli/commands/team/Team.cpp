// quilletctl team list, show: teams of adapters and their members.
#include "app/Answers.h"
#include "commands/Commands.h"
#include "commands/team/TeamChange.h"
#include "commands/team/TeamCommand.h"
#include "commands/team/TeamMembers.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/ObjectPath.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

namespace quilletctl {

namespace {

/// A team's status; a team without its logical adapter has none, and is a team all the same.
struct TeamState {
    HRESULT result = S_OK;
    CTeam::TeamStatus status{};

    std::string Text() const {
        return SUCCEEDED(result) ? NumberInWords(status, CTeamTexts::TeamStatus(status))
                                 : "not told: " + ExplainResult(result);
    }
    Json AsJson() const { return SUCCEEDED(result) ? Coded(status, Text()) : Json(); }
};

TeamState StateOf(CQuillet& session, const CTeam& team) {
    TeamState state;
    state.result = session.GetTeamStatus(team.m_wsTeamID, state.status);
    return state;
}

/// A member as the list of the adapters has it; one that is missing there has fewer names.
ListedAdapter Listed(const std::vector<ListedAdapter>& adapters, const CTeamedAdapter& member) {
    const std::string path = ToUtf8(member.m_wsAdapterID);
    const std::string id = NameInPath(path).key;
    const auto found = std::find_if(adapters.begin(), adapters.end(), [&](const ListedAdapter& each) {
        return SameIgnoringCase(NameInPath(each.path).key, id);
    });
    return found != adapters.end()
               ? *found
               : ListedAdapter{path, id, {}, ToUtf8(member.m_wsDisplayName), ToUtf8(member.m_wsDeviceID)};
}

ExitStatus ListTeams(Invocation& run) {
    CQuillet& session = run.Session();
    const CTeams teams = ReadTeams(session);
    Json list = Json::array();
    Table table({{"NAME", Fit::MayShorten},
                 {"MODE", Fit::MayShorten},
                 {"STATUS", Fit::MayShorten},
                 {"MEMBERS", Fit::Whole},
                 {"OBJECT ID", Fit::Whole}});
    for (const CTeam* team : teams.m_vecItems) {
        const TeamState state = StateOf(session, *team);
        const std::size_t members = MembersOf(session, *team).m_vecItems.size();
        Json json = AsJson(*team);
        json["status"] = state.AsJson();
        json["members"] = members;
        list.push_back(std::move(json));
        table.AddRow({Called(*team), TeamModeText(team->m_eTeamMode), state.Text(), std::to_string(members),
                      ToUtf8(team->m_wsName)});
    }
    return AnswerList(run, Json{{"teams", std::move(list)}}, table, "no teams");
}

class ShowTeam final : public TeamCommand {
    ExitStatus RunFor(const CTeam& found, Invocation& run) override {
        CQuillet& session = run.Session();
        const CTeam team = ReadTeam(session, found);
        const TeamState state = StateOf(session, team);
        const CTeamedAdapters members = MembersOf(session, team);
        const std::vector<ListedAdapter> adapters = ReadAdapters(session);
        int enabled = 0;
        ThrowIfRefused(session.GetNumberEnabledMembers(team.m_wsTeamID, enabled),
                       "count the members of " + Called(team));
        if (run.WantsJson()) {
            Json list = Json::array();
            for (const CTeamedAdapter* member : members.m_vecItems) {
                const ListedAdapter adapter = Listed(adapters, *member);
                list.push_back(Json{
                    {"path", ToUtf8(member->m_wsAdapterID)},
                    {"objectId", TextOrNull(adapter.objectId)},
                    {"deviceId", ToUtf8(member->m_wsDeviceID)},
                    {"name", adapter.name},
                    {"displayName", ToUtf8(member->m_wsDisplayName)},
                    {"caption", ToUtf8(member->m_wsCaption)},
                    {"role", Coded(member->m_lMemberRole, MemberRoleText(member->m_lMemberRole))},
                    {"status", Coded(member->m_lMemberStatus, MemberStatusText(member->m_lMemberStatus))}});
            }
            Json json = AsJson(team);
            json["status"] = state.AsJson();
            json["macAddress"] = ToUtf8(team.m_wsTeamMacAddress);
            json["mfo"] = team.m_bMFOEnabled;
            json["linkSecurity"] = team.m_bLinkSecEnabled;
            json["boundToHyperV"] = team.m_bBoundToHyperV;
            json["enabledMembers"] = enabled;
            json["members"] = std::move(list);
            run.Print(json);
            return ExitStatus::Done;
        }
        Sheet()
            .Add("Name", ToUtf8(team.m_wsCaption))
            .Add("Object ID", ToUtf8(team.m_wsName))
            .Add("Mode", TeamModeText(team.m_eTeamMode))
            .Add("Status", state.Text())
            .Add("MAC address", ToUtf8(team.m_wsTeamMacAddress))
            .Add("Adapters of other makers", YesOrNo(team.m_bMFOEnabled))
            .Add("Link security", YesOrNo(team.m_bLinkSecEnabled))
            .Add("Bound to Hyper-V", YesOrNo(team.m_bBoundToHyperV))
            .Add("Enabled members",
                 std::to_string(enabled) + " of " + std::to_string(members.m_vecItems.size()))
            .Print(run.Screen());
        if (!members.m_vecItems.empty()) {
            run.Out() << '\n';
            Table table({{"MEMBER", Fit::MayShorten},
                         {"ROLE", Fit::MayShorten},
                         {"STATUS", Fit::MayShorten},
                         {"OBJECT ID", Fit::Whole}});
            for (const CTeamedAdapter* member : members.m_vecItems) {
                const ListedAdapter adapter = Listed(adapters, *member);
                table.AddRow({adapter.Called(), MemberRoleText(member->m_lMemberRole),
                              MemberStatusText(member->m_lMemberStatus), adapter.objectId});
            }
            table.Print(run.Screen());
        }
        return ExitStatus::Done;
    }
};

} // namespace

void AddTeamCommands(CommandTree& tree) {
    auto team = tree.AddNoun("team", "Teams of adapters");
    team.Query("list", "List the teams", ListTeams)
        .Query("show", "What is known of a team, and its members", std::make_unique<ShowTeam>());
    AddTeamModes(team);
    AddTeamCreation(team);
    AddMemberChanges(team);
    AddTeamModification(team);
    AddTeamPrimary(team);
    AddTeamSwitch(team);
}

} // namespace quilletctl
