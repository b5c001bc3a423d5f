// The verbs of "vlan" that have files of their own.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

/// "check" and "add".
void AddNewVlans(CommandTree::Noun& vlan);
/// "modify" and "remove".
void AddVlanModification(CommandTree::Noun& vlan);

} // namespace quilletctl
