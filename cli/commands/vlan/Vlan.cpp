// quilletctl vlan list: the VLANs of adapters and teams.
#include "app/Answers.h"
#include "commands/Commands.h"
#include "commands/vlan/VlanTexts.h"
#include "commands/vlan/VlanVerbs.h"
#include "names/VlanParent.h"
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
    }

    ExitStatus Run(Invocation& run) override {
        quillet::Session& session = run.Session();
        const std::vector<VlanParent> parents =
            m_parents.empty() ? ReadVlanParents(session) : FindVlanParents(session, m_parents.front());
        Json list = Json::array();
        Table table({{"PARENT", Fit::MayShorten},
                     {"VLAN", Fit::Whole},
                     {"NAME", Fit::MayShorten},
                     {"STATUS", Fit::Whole},
                     {"OBJECT ID", Fit::Whole}});
        for (const VlanParent& parent : parents) {
            for (const quillet::Vlan& vlan : ReadVlans(session, parent)) {
                Json entry{{"parent", AsJson(parent)}};
                entry.update(AsJson(vlan));
                list.push_back(std::move(entry));
                table.AddRow({parent.name, NumberText(vlan), ToUtf8(vlan.name), StatusText(vlan),
                              ToUtf8(vlan.objectId)});
            }
        }
        return AnswerList(run, Json{{"vlans", std::move(list)}}, table, "no VLANs");
    }

  private:
    std::vector<std::string> m_parents;
};

} // namespace

void AddVlanCommands(CommandTree& tree) {
    auto vlan = tree.AddNoun("vlan", "The VLANs of adapters and teams");
    vlan.Query("list", "List the VLANs", std::make_unique<ListVlans>());
    AddNewVlans(vlan);
    AddVlanModification(vlan);
}

} // namespace quilletctl
