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
#include <optional>

namespace quilletctl {

namespace {

/// A team's status; a team without its logical adapter has none, and is a team all the same.
struct TeamState {
    TeamState(quillet::Session& session, const quillet::Team& team) {
        try {
            status = session.ReadStatus(team.id);
        } catch (const quillet::Error& failure) {
            refusal = failure.Code();
        }
    }

    std::string Text() const { return status ? InWords(*status) : "not told: " + ExplainResult(refusal); }
    Json AsJson() const { return status ? Coded(*status) : Json(); }

    std::optional<quillet::StatusInfo> status;
    HRESULT refusal = S_OK;
};

/// A member as the list of the adapters has it; one that is missing there has fewer names.
ListedAdapter AdapterOf(const std::vector<ListedAdapter>& adapters, const quillet::TeamMember& member) {
    const std::string objectId = ObjectIdIn(member.id);
    const auto found = std::find_if(adapters.begin(), adapters.end(), [&](const ListedAdapter& each) {
        return SameIgnoringCase(ObjectIdIn(each.id), objectId);
    });
    return found != adapters.end()
               ? *found
               : ListedAdapter{member.id, PathOf(member.id),          objectId,
                               {},        ToUtf8(member.displayName), ToUtf8(member.deviceId)};
}

ExitStatus ListTeams(Invocation& run) {
    quillet::Session& session = run.Session();
    Json list = Json::array();
    Table table({{"NAME", Fit::MayShorten},
                 {"MODE", Fit::MayShorten},
                 {"STATUS", Fit::MayShorten},
                 {"MEMBERS", Fit::Whole},
                 {"OBJECT ID", Fit::Whole}});
    for (const quillet::Team& team : ReadTeams(session)) {
        const TeamState state(session, team);
        const std::size_t members = MembersOf(session, team).size();
        Json json = AsJson(team);
        json["status"] = state.AsJson();
        json["members"] = members;
        list.push_back(std::move(json));
        table.AddRow(
            {Called(team), InWords(team.mode), state.Text(), std::to_string(members), ToUtf8(team.objectId)});
    }
    return AnswerList(run, Json{{"teams", std::move(list)}}, table, "no teams");
}

class ShowTeam final : public TeamCommand {
    ExitStatus RunFor(const quillet::Team& found, Invocation& run) override {
        quillet::Session& session = run.Session();
        const quillet::Team team = ReadTeam(session, found);
        const TeamState state(session, team);
        const std::vector<quillet::TeamMember> members = MembersOf(session, team);
        const std::vector<ListedAdapter> adapters = ReadAdapters(session);
        const int enabled =
            Attempt("count the members of " + Called(team), [&] { return session.EnabledMembers(team.id); });
        if (run.WantsJson()) {
            Json list = Json::array();
            for (const quillet::TeamMember& member : members) {
                const ListedAdapter adapter = AdapterOf(adapters, member);
                list.push_back(Json{{"path", PathOf(member.id)},
                                    {"objectId", TextOrNull(adapter.objectId)},
                                    {"deviceId", ToUtf8(member.deviceId)},
                                    {"name", adapter.name},
                                    {"displayName", ToUtf8(member.displayName)},
                                    {"caption", ToUtf8(member.caption)},
                                    {"role", Coded(member.role)},
                                    {"status", Coded(member.status)}});
            }
            Json json = AsJson(team);
            json["status"] = state.AsJson();
            json["macAddress"] = ToUtf8(team.macAddress);
            json["mfo"] = team.multiVendor;
            json["linkSecurity"] = team.linkSecurity;
            json["boundToHyperV"] = team.boundToHyperV;
            json["enabledMembers"] = enabled;
            json["members"] = std::move(list);
            run.Print(json);
            return ExitStatus::Done;
        }
        Sheet()
            .Add("Name", ToUtf8(team.name))
            .Add("Object ID", ToUtf8(team.objectId))
            .Add("Mode", InWords(team.mode))
            .Add("Status", state.Text())
            .Add("MAC address", ToUtf8(team.macAddress))
            .Add("Adapters of other makers", YesOrNo(team.multiVendor))
            .Add("Link security", YesOrNo(team.linkSecurity))
            .Add("Bound to Hyper-V", YesOrNo(team.boundToHyperV))
            .Add("Enabled members", std::to_string(enabled) + " of " + std::to_string(members.size()))
            .Print(run.Screen());
        if (!members.empty()) {
            run.Out() << '\n';
            Table table({{"MEMBER", Fit::MayShorten},
                         {"ROLE", Fit::MayShorten},
                         {"STATUS", Fit::MayShorten},
                         {"OBJECT ID", Fit::Whole}});
            for (const quillet::TeamMember& member : members) {
                const ListedAdapter adapter = AdapterOf(adapters, member);
                table.AddRow(
                    {adapter.Called(), InWords(member.role), InWords(member.status), adapter.objectId});
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
