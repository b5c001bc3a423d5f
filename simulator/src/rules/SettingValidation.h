// "ValidateSetting" of teams and VLANs: what speaks against a value before it is written.
#pragma once

#include "providers/ClassProvider.h"

namespace quillet::simulator {

/// Reasons in the bits of "ValResult". They are this simulator's own; a client passes them on.
inline constexpr std::uint64_t kObjectionNoSuchSetting = 0x1;   ///< the adapter, or VLAN, has no such setting
inline constexpr std::uint64_t kObjectionReadOnly = 0x2;        ///< the setting can only be read
inline constexpr std::uint64_t kObjectionValue = 0x4;           ///< the setting cannot have the value
inline constexpr std::uint64_t kObjectionMemberLacks = 0x8;     ///< another member has no such setting
inline constexpr std::uint64_t kObjectionMemberValue = 0x10;    ///< another member cannot have the value
inline constexpr std::uint64_t kObjectionMemberDiffers = 0x20;  ///< another member has another value now
inline constexpr std::uint64_t kObjectionParentTooSmall = 0x40; ///< frames would not fit the VLAN's carrier

/// Zorel_TeamOfAdapters.ValidateSetting, on a team.
HRESULT ValidateSettingOnTeam(MethodCall& call);
/// Zorel_VLAN.ValidateSetting, on a VLAN.
HRESULT ValidateSettingOnVlan(MethodCall& call);

} // namespace quillet::simulator
