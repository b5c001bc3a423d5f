// What VLANs sit on: an adapter or a team, and finding the one that the command line names.
#pragma once

#include "names/NameLookup.h"

#include <quillet/client/Session.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quilletctl {

/// Texts are UTF-8.
struct VlanParent {
    quillet::VlanParentId id;
    std::string path;     ///< the same as text
    std::string objectId; ///< empty when the path holds none
    std::string name;     ///< what people call it

    bool IsTeam() const noexcept { return std::holds_alternative<quillet::TeamId>(id); }
};

/// All adapters and all teams, in the provider's order. Throws Refusal.
std::vector<VlanParent> ReadVlanParents(quillet::Session& session);

/// The team or the adapter that a text names, as for FindTeam() and FindAdapter(). Throws UsageError where
/// nothing, or more than one of both, is named, and Refusal.
VlanParent FindVlanParent(quillet::Session& session, const std::string& text);
/// The same, but a pattern names several.
std::vector<VlanParent> FindVlanParents(quillet::Session& session, const std::string& text);

/// Whether a parent has a link: an adapter its own, a team while any member has one. Nothing where that is
/// not told.
std::optional<bool> LinkOf(quillet::Session& session, const VlanParent& parent);

/// The VLANs of a parent. Throws Refusal.
std::vector<quillet::Vlan> ReadVlans(quillet::Session& session, const VlanParent& parent);

/// The VLAN as a thing with names: path, object ID, number or "untagged", name, caption.
Named NamesOf(const quillet::Vlan& vlan, const VlanParent& parent);
/// The VLAN of a parent that a text names. Throws UsageError where there is none, and Refusal.
quillet::Vlan FindVlan(quillet::Session& session, const VlanParent& parent, const std::string& text);
/// The VLAN of a parent that has this ID, where there is one. Throws Refusal.
std::optional<quillet::Vlan> LookForVlan(quillet::Session& session, const VlanParent& parent,
                                         std::int32_t number);

/// How a table shows the number: "12", or "untagged".
std::string NumberText(const quillet::Vlan& vlan);
/// "VLAN 12 \"Lab\"", or "the untagged VLAN \"Lab\"".
std::string Called(const quillet::NewVlan& vlan);
std::string Called(const quillet::Vlan& vlan);

} // namespace quilletctl
