// quilletctl vlan list: the VLANs of adapters and teams.
#include "app/LinkFilter.h"
#include "app/List.h"
#include "commands/Commands.h"
#include "commands/vlan/VlanTexts.h"
#include "commands/vlan/VlanVerbs.h"
#include "names/VlanParent.h"
#include "texts/States.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace quilletctl {

namespace {

class ListVlans final : public Command {
  public:
    void Declare(Syntax& syntax) override {
        syntax.Arguments("parent", m_parents, 0, 1,
                         "An adapter or a team: its name, object ID or object path; a pattern names several "
                         "(default: all)");
        m_link.Declare(syntax, "VLANs of adapters and teams");
        m_options.Declare(syntax);
    }

    ExitStatus Run(Invocation& run) override {
        m_link.Check();
        quillet::Session& session = run.Session();
        const std::vector<VlanParent> parents =
            m_parents.empty() ? ReadVlanParents(session) : FindVlanParents(session, m_parents.front());
        List list(m_options);
        for (const VlanParent& parent : parents) {
            const std::vector<quillet::Vlan> vlans = ReadVlans(session, parent);
            const bool asksForLink = m_link.IsWanted() && !vlans.empty();
            if (asksForLink && !m_link.Takes(LinkOf(session, parent))) {
                continue;
            }
            for (const quillet::Vlan& vlan : vlans) {
                Json entry{{"parent", AsJson(parent)}};
                entry.update(AsJson(vlan));
                list.AddRow({parent.name, parent.IsTeam() ? "team" : "adapter",
                             Cell(NumberText(vlan), vlan.number), ToUtf8(vlan.name),
                             Cell(StatusText(vlan), ToneOf(vlan.status)), ToUtf8(vlan.objectId)},
                            std::move(entry));
            }
        }
        return list.Answer(run, Under("vlans"), "no VLANs");
    }

  private:
    std::vector<std::string> m_parents;
    LinkFilter m_link;
    ListOptions m_options{{{"PARENT", Fit::MayShorten},
                           {"KIND", Fit::Whole, {}, Stay::Second},
                           {"VLAN"},
                           {"NAME", Fit::MayShorten},
                           {"STATUS"},
                           {"OBJECT ID", Fit::Whole, {}, Stay::WhileAllFits}}};
};

} // namespace

void AddVlanCommands(CommandTree& tree) {
    auto vlan = tree.AddNoun("vlan", "The VLANs of adapters and teams");
    vlan.Query("list", "List the VLANs", std::make_unique<ListVlans>());
    AddNewVlans(vlan);
    AddVlanModification(vlan);
}

} // namespace quilletctl
