// The dialogs that make something new.
#pragma once

#include "model/MachineTree.h"

#include <windows.h>

namespace quillet::pages {

class Application;

/// The New Team wizard. @param chosen what was chosen in the tree: an adapter becomes a member; null: nothing
void ShowNewTeam(Application& application, HWND owner, const Node* chosen);
/// The dialog for a VLAN on an adapter or a team. Of a VLAN it is its parent.
void ShowNewVlan(Application& application, HWND owner, const Node& chosen);
/// The dialog for several VLANs.
void ShowNewVlans(Application& application, HWND owner, const Node& chosen);

} // namespace quillet::pages
