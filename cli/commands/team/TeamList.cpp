// quilletctl team list: the teams, their members and their links.
#include "app/LinkFilter.h"
#include "app/List.h"
#include "commands/team/TeamGlance.h"
#include "commands/team/TeamTexts.h"
#include "commands/team/TeamVerbs.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <memory>

namespace quilletctl {

namespace {

class ListTeams final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments("team", m_teams, 0, kMostNames,
                         "Teams: names, object IDs or object paths; a pattern names several (default: all)");
        m_link.Declare(syntax, "teams");
        m_options.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        m_link.Check();
        quillet::Session& session = run.Session();
        const std::vector<quillet::Team> teams = ReadTeams(session);
        const std::vector<std::size_t> chosen = ChooseNamed(NamesOf(teams), m_teams, "team");
        const auto adapters = chosen.empty() ? std::vector<ListedAdapter>() : ReadAdapters(session);
        List list(m_options);
        for (const std::size_t i : chosen) {
            const std::vector<ShownMember> members = ReadShownMembers(session, teams[i], adapters);
            if (m_link.Takes(LinkOf(members))) {
                AddRow(list, session, teams[i], members);
            }
        }
        return list.Answer(run, Under("teams"), "no teams");
    }

  private:
    /// A team has a link while any member has one.
    static std::optional<bool> LinkOf(const std::vector<ShownMember>& members) {
        std::optional<bool> link = false;
        for (const ShownMember& each : members) {
            link = IsAnyUp(link, IsUp(each.state));
        }
        return link;
    }
    static void AddRow(List& list, quillet::Session& session, const quillet::Team& team,
                       const std::vector<ShownMember>& members) {
        const TeamState state(session, team);
        Json adapters = Json::array();
        std::vector<std::string> names;
        for (const ShownMember& each : members) {
            const std::string link = LinkText(each.state);
            names.push_back(each.adapter.Called() + " (" + (link.empty() ? "link not told" : link) + ')');
            adapters.push_back(Json{{"path", PathOf(each.member.id)},
                                    {"objectId", TextOrNull(each.adapter.objectId)},
                                    {"name", each.adapter.Called()},
                                    {"role", Coded(each.member.role)},
                                    {"link", TextOrNull(link)}});
        }
        Json entry = AsJson(team);
        entry["status"] = state.AsJson();
        entry["members"] = members.size();
        entry["adapters"] = std::move(adapters);
        list.AddRow(
            {Called(team), InWords(team.mode), state.AsCell(), Cell(std::move(names)), ToUtf8(team.objectId)},
            std::move(entry));
    }

    std::vector<std::string> m_teams;
    LinkFilter m_link;
    ListOptions m_options{{{"NAME", Fit::MayShorten},
                           {"MODE", Fit::MayShorten, {}, Stay::Second},
                           {"STATUS", Fit::MayShorten},
                           {"MEMBERS", Fit::MayShorten},
                           {"OBJECT ID", Fit::Whole, {}, Stay::WhileAllFits}}};
};

} // namespace

void AddTeamList(CommandTree::Noun& team) {
    team.Query("list", "List the teams, their members and their links", std::make_unique<ListTeams>());
}

} // namespace quilletctl
