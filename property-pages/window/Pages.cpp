// Which pages the sheet of an object has.
#include "window/Pages.h"

#include "window/BootView.h"
#include "window/DiagnosticsView.h"
#include "window/GeneralView.h"
#include "window/KeysView.h"
#include "window/LinkSecurityView.h"
#include "window/PacView.h"
#include "window/PowerView.h"
#include "window/SettingsView.h"
#include "window/SwitchTestView.h"
#include "window/TeamView.h"
#include "window/TeamingView.h"
#include "window/VlanFields.h"
#include "window/VlansView.h"

namespace quillet::pages {

namespace {

using Views = std::vector<std::unique_ptr<PageView>>;

Views AdapterPages(SheetWindow& sheet, const AdapterId& adapter) {
    Views views;
    views.push_back(std::make_unique<GeneralView>(sheet, std::make_shared<GeneralPage>(adapter)));
    views.push_back(std::make_unique<SettingsView>(sheet, std::make_shared<SettingsPage>(adapter)));
    views.push_back(std::make_unique<VlansView>(sheet, std::make_shared<VlansPage>(adapter)));
    views.push_back(std::make_unique<TeamingView>(sheet, std::make_shared<TeamingPage>(adapter)));
    views.push_back(std::make_unique<PowerView>(sheet, std::make_shared<PowerPage>(adapter)));
    views.push_back(std::make_unique<BootView>(sheet, std::make_shared<BootPage>(adapter)));
    views.push_back(std::make_unique<SettingsView>(
        sheet, std::make_shared<SettingsPage>(BootAgentOf{adapter}), TextId::PageBootSettings));
    views.push_back(std::make_unique<DiagnosticsView>(sheet, std::make_shared<DiagnosticsPage>(adapter)));
    views.push_back(std::make_unique<LinkSecurityView>(sheet, std::make_shared<LinkSecurityPage>(adapter)));
    views.push_back(std::make_unique<KeysView>(sheet, std::make_shared<KeysPage>(adapter)));
    views.push_back(std::make_unique<PacView>(sheet, std::make_shared<PacPage>(adapter)));
    return views;
}

Views TeamPages(SheetWindow& sheet, const TeamId& team) {
    Views views;
    views.push_back(std::make_unique<TeamView>(sheet, std::make_shared<TeamPage>(team)));
    views.push_back(std::make_unique<VlansView>(sheet, std::make_shared<VlansPage>(team)));
    views.push_back(std::make_unique<SettingsView>(sheet, std::make_shared<SettingsPage>(team)));
    views.push_back(std::make_unique<SwitchTestView>(sheet, std::make_shared<SwitchTestPage>(team)));
    return views;
}

Views VlanPages(SheetWindow& sheet, const VlanId& vlan, const VlanParentId& parent) {
    Views views;
    views.push_back(std::make_unique<VlanView>(sheet, std::make_shared<VlanPage>(parent, vlan), ID_PAGE_VLAN,
                                               TextId::PageVlan));
    views.push_back(std::make_unique<SettingsView>(sheet, std::make_shared<SettingsPage>(vlan)));
    return views;
}

} // namespace

std::vector<std::unique_ptr<PageView>> PagesOf(SheetWindow& sheet, const Node& node) {
    if (const auto* adapter = std::get_if<AdapterId>(&node.id)) {
        return AdapterPages(sheet, *adapter);
    }
    if (const auto* team = std::get_if<TeamId>(&node.id)) {
        return TeamPages(sheet, *team);
    }
    const auto* vlan = std::get_if<VlanId>(&node.id);
    return vlan != nullptr ? VlanPages(sheet, *vlan, node.parent) : Views();
}

} // namespace quillet::pages
