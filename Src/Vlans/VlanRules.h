// The rules that a VLAN must follow beside the others of its parent. They know no provider: what the parent
// has is given.
#pragma once

#include <quillet/VLAN.h>

namespace VlanRules {

/// The most VLANs that a parent carries.
inline constexpr std::size_t MOST_VLANS = 64;

/// Each returns the bits of CVLAN::Problem that it finds, and traces one line for each finding.
/// @{

/// Whether the ID of a tagged VLAN is in range.
ULONGLONG CheckTaggedID(const CVLAN& vlan);
/// Whether the ID of the untagged VLAN is 0.
ULONGLONG CheckUntaggedID(const CVLAN& vlan);
/// A tagged VLAN beside the parent's VLANs, of which it may be one.
/// @param isModify whether the VLAN is changed and not added
ULONGLONG CheckTagged(const CVLANs& existing, const CVLAN& vlan, bool isModify);
/// The untagged VLAN beside the parent's VLANs.
ULONGLONG CheckUntagged(const CVLANs& existing, const CVLAN& vlan, bool isModify);
/// Several new VLANs beside the parent's VLANs, their IDs' range included.
ULONGLONG CheckSeveral(const CVLANs& existing, const CVLANs& vlans, bool isTeam);
/// @}

} // namespace VlanRules
