// quilletctl adapter list: the adapters at a glance.
#include "app/LinkFilter.h"
#include "app/List.h"
#include "commands/adapter/AdapterGlance.h"
#include "commands/adapter/AdapterVerbs.h"
#include "names/AdapterLookup.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/Text.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace quilletctl {

namespace {

using quillet::AdapterOverview;

class ListAdapters final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments(
            "adapter", m_adapters, 0, kMostNames,
            "Adapters: names, object IDs or object paths; a pattern names several (default: all)");
        m_link.Declare(syntax, "adapters");
        syntax.Text("--team", m_team, "TEAM", "Only the members of a team");
        m_options.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        m_link.Check();
        quillet::Session& session = run.Session();
        const std::optional<quillet::Team> team =
            m_team ? std::optional(FindTeam(session, *m_team)) : std::nullopt;
        List list(m_options);
        bool hasTwoIds = false;
        for (const AdapterOverview& each : Overviews(run)) {
            if (m_link.Takes(IsUp(each.state)) && (!team || IsMemberOf(each, *team))) {
                hasTwoIds = hasTwoIds || each.adapter.deviceId != each.objectId;
                list.AddRow(GlanceCells(each), AsJson(each));
            }
        }
        if (!hasTwoIds) {
            // On most machines the two identifiers are one; a second column of the same would only fill the
            // screen.
            list.LeaveOut("DEVICE ID");
        }
        return list.Answer(run, Under("adapters"), "no adapters");
    }

  private:
    std::vector<AdapterOverview> Overviews(Invocation& run) const {
        quillet::Session& session = run.Session();
        std::vector<quillet::Adapter> adapters;
        for (const ListedAdapter& each :
             m_adapters.empty() ? ReadAdapters(session) : FindAdapters(session, m_adapters)) {
            adapters.push_back(
                {each.id, ToWide(each.name), ToWide(each.displayName), ToWide(each.deviceId), {}});
        }
        return session.AdapterOverviews(std::move(adapters), run.SideBySide());
    }

    static bool IsMemberOf(const AdapterOverview& overview, const quillet::Team& team) {
        return !overview.team.IsEmpty() && NameTheSameObject(overview.team, team.id);
    }

    std::vector<std::string> m_adapters;
    LinkFilter m_link;
    std::optional<std::string> m_team;
    ListOptions m_options{GlanceColumns()};
};

} // namespace

void AddAdapterList(CommandTree::Noun& adapter) {
    adapter.Query("list", "List the adapters: link, speed, place, team, state",
                  std::make_unique<ListAdapters>());
}

} // namespace quilletctl
