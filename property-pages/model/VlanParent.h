// What carries VLANs, as the pages of VLANs see it.
#pragma once

#include "model/Page.h"

namespace quillet::pages {

/// An adapter or a team that carries VLANs, or cannot.
struct VlanParent {
    std::wstring name;
    VlanSupport support{};
    std::vector<Vlan> vlans; ///< those that it has

    /// Why it cannot have VLANs, in words; empty where it can.
    std::wstring WhyNot() const;
};

/// Reads it. What could not be read is told in the notice.
VlanParent ReadVlanParent(Session& session, const VlanParentId& id, std::wstring& notice);

/// The number that is a VLAN ID in an edit control; nothing for any other text.
std::optional<std::int32_t> ToVlanNumber(const std::wstring& text);
/// "VLAN 12 Büro", or "untagged VLAN".
std::wstring VlanLabel(const Vlan& vlan);

/// The lowest and the highest ID of a tagged VLAN.
inline constexpr std::int32_t kFirstVlan = 1;
inline constexpr std::int32_t kLastVlan = 4094;

} // namespace quillet::pages
