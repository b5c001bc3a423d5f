// The dialogs of VLANs, as pages and the start window open them.
#include "window/VlanDialogs.h"

#include "window/VlanFields.h"
#include "window/VlanRangeDialog.h"

namespace quillet::pages {

bool ShowNewVlanDialog(Application& application, HWND owner, const VlanParentId& parent) {
    return VlanDialog(application, std::make_shared<VlanPage>(parent), ID_NEW_VLAN, Say(TextId::NewVlanTitle))
        .Run(owner);
}

bool ShowVlanRangeDialog(Application& application, HWND owner, const VlanParentId& parent) {
    VlanRangeDialog dialog(application, std::make_shared<VlanRangePage>(parent));
    return dialog.Run(owner) || dialog.HasMadeAny();
}

bool ShowVlanDialog(Application& application, HWND owner, const VlanParentId& parent, const Vlan& vlan) {
    return VlanDialog(application, std::make_shared<VlanPage>(parent, vlan.id), ID_NEW_VLAN, VlanLabel(vlan))
        .Run(owner);
}

} // namespace quillet::pages
