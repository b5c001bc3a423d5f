// The dialogs that make something new, from the start window.
#include "window/Wizards.h"

#include "window/Application.h"
#include "window/NewTeamWizard.h"
#include "window/VlanDialogs.h"

namespace quillet::pages {

namespace {

VlanParentId ParentOf(const Node& node) {
    if (const auto* adapter = std::get_if<AdapterId>(&node.id)) {
        return *adapter;
    }
    const auto* team = std::get_if<TeamId>(&node.id);
    return team != nullptr ? VlanParentId(*team) : node.parent;
}

} // namespace

void ShowNewTeam(Application& application, HWND owner, const Node* chosen) {
    const auto* adapter = chosen != nullptr ? std::get_if<AdapterId>(&chosen->id) : nullptr;
    NewTeamWizard wizard(application,
                         std::make_shared<NewTeamPage>(adapter != nullptr ? *adapter : AdapterId()));
    if (wizard.Run(owner)) {
        application.ReadTree();
    }
}

void ShowNewVlan(Application& application, HWND owner, const Node& chosen) {
    if (ShowNewVlanDialog(application, owner, ParentOf(chosen))) {
        application.ReadTree();
    }
}

void ShowNewVlans(Application& application, HWND owner, const Node& chosen) {
    if (ShowVlanRangeDialog(application, owner, ParentOf(chosen))) {
        application.ReadTree();
    }
}

} // namespace quillet::pages
