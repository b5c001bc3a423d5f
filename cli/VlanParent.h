// What VLANs sit on: an adapter or a team, and finding the one that the command line names.
#pragma once

#include <quillet/Quillet.h>

#include <string>
#include <vector>

namespace quilletctl {

/// Texts are UTF-8.
struct VlanParent {
    bool isTeam = false;
    std::string path;
    std::string objectId; ///< empty when the path holds none
    std::string name;     ///< what people call it
};

/// All adapters and all teams, in the provider's order. Throws Refusal.
std::vector<VlanParent> ReadVlanParents(CQuillet& session);

/// The team that a text names as for FindTeam(), or else the adapter that FindAdapter() finds. Throws
/// UsageError where nothing, or more than one team or adapter, is named, and Refusal.
VlanParent FindVlanParent(CQuillet& session, const std::string& text);

/// The VLANs of a parent. Throws Refusal.
CVLANs ReadVlans(CQuillet& session, const VlanParent& parent);

/// The VLAN of a parent that has this ID. Throws UsageError where there is none, and Refusal.
CVLAN FindVlan(CQuillet& session, const VlanParent& parent, LONG number);

} // namespace quilletctl
