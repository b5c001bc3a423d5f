// What VLANs sit on: an adapter or a team, and finding the one that the command line names.
#pragma once

#include "names/NameLookup.h"

#include <quillet/Quillet.h>

#include <optional>
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

/// The team or the adapter that a text names, as for FindTeam() and FindAdapter(). Throws UsageError where
/// nothing, or more than one of both, is named, and Refusal.
VlanParent FindVlanParent(CQuillet& session, const std::string& text);
/// The same, but a pattern names several.
std::vector<VlanParent> FindVlanParents(CQuillet& session, const std::string& text);

/// The VLANs of a parent. Throws Refusal.
CVLANs ReadVlans(CQuillet& session, const VlanParent& parent);

/// The VLAN as a thing with names: path, object ID, number or "untagged", name, caption.
Named NamesOf(const CVLAN& vlan, const VlanParent& parent);
/// The VLAN of a parent that a text names. Throws UsageError where there is none, and Refusal.
CVLAN FindVlan(CQuillet& session, const VlanParent& parent, const std::string& text);
/// The VLAN of a parent that has this ID, where there is one. Throws Refusal.
std::optional<CVLAN> LookForVlan(CQuillet& session, const VlanParent& parent, LONG number);

/// How a table shows the number: "12", or "untagged".
std::string NumberText(const CVLAN& vlan);
/// "VLAN 12 \"Lab\"", or "the untagged VLAN \"Lab\"".
std::string Called(const CVLAN& vlan);

} // namespace quilletctl
