// The dialogs of VLANs, as pages and the start window open them.
#pragma once

#include "model/VlanParent.h"

#include <windows.h>

namespace quillet::pages {

class Application;

/// @returns whether anything was changed
/// @{
bool ShowNewVlanDialog(Application& application, HWND owner, const VlanParentId& parent);
bool ShowVlanRangeDialog(Application& application, HWND owner, const VlanParentId& parent);
bool ShowVlanDialog(Application& application, HWND owner, const VlanParentId& parent, const Vlan& vlan);
/// @}

} // namespace quillet::pages
