// quilletctl team show: a team and its members.
#include "app/Answers.h"
#include "commands/Commands.h"
#include "commands/team/TeamChange.h"
#include "commands/team/TeamCommand.h"
#include "commands/team/TeamGlance.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/ObjectPath.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

class ShowTeam final : public TeamCommand {
    ExitStatus RunFor(const quillet::Team& found, Invocation& run) override {
        quillet::Session& session = run.Session();
        const quillet::Team team = ReadTeam(session, found);
        const TeamState state(session, team);
        const std::vector<ShownMember> members = ReadShownMembers(session, team, ReadAdapters(session));
        const int enabled =
            Attempt("count the members of " + Called(team), [&] { return session.EnabledMembers(team.id); });
        if (run.WantsJson()) {
            Json list = Json::array();
            for (const auto& [member, adapter, link] : members) {
                list.push_back(Json{{"path", PathOf(member.id)},
                                    {"objectId", TextOrNull(adapter.objectId)},
                                    {"deviceId", ToUtf8(member.deviceId)},
                                    {"name", adapter.name},
                                    {"displayName", ToUtf8(member.displayName)},
                                    {"caption", ToUtf8(member.caption)},
                                    {"role", Coded(member.role)},
                                    {"status", Coded(member.status)},
                                    {"link", TextOrNull(LinkText(link))}});
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
            .Add("Status", state.AsCell().Text())
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
                         {"LINK"},
                         {"OBJECT ID", Fit::Whole, {}, Stay::WhileAllFits}});
            for (const auto& [member, adapter, link] : members) {
                table.AddRow({adapter.Called(), InWords(member.role), InWords(member.status),
                              Cell(LinkText(link), LinkTone(link)), adapter.objectId});
            }
            table.Print(run.Screen());
        }
        return ExitStatus::Done;
    }
};

} // namespace

void AddTeamCommands(CommandTree& tree) {
    auto team = tree.AddNoun("team", "Teams of adapters");
    AddTeamList(team);
    team.Query("show", "What is known of a team, and its members", std::make_unique<ShowTeam>());
    AddTeamModes(team);
    AddTeamCreation(team);
    AddMemberChanges(team);
    AddTeamModification(team);
    AddTeamPrimary(team);
    AddTeamSwitch(team);
}

} // namespace quilletctl
