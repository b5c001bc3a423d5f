// The VLANs of a machine: what may stand beside what, and what comes and goes with a VLAN.
#pragma once

#include <quillet-simulator/Repository.h>

namespace quillet::simulator {

/// The VLANs of an adapter or a team, by its object ID.
std::vector<InstancePtr> VlansOf(const Repository& store, const std::wstring& parentId);

/// Whether a parent may have a VLAN of this number and name.
/// @param self the object ID of the VLAN that is to get them; empty for a new one
/// @return WBEM_E_VALUE_OUT_OF_RANGE for a number that is not 0 to 4094, WBEM_E_INVALID_PARAMETER for an
///         empty name, WBEM_E_ALREADY_EXISTS for a number or a name that another VLAN of the parent has,
///         WBEM_E_QUOTA_VIOLATION for a new VLAN of a parent that has 64.
HRESULT MayHaveVlan(const Repository& store, const std::wstring& parentId, std::int64_t number,
                    const std::wstring& name, const std::wstring& self);

/// The display name of a VLAN: its parent's, and its own.
std::wstring VlanCaption(const Repository& store, const std::wstring& parentId, const std::wstring& name);

/// Makes a VLAN that may be, with its settings; the path of the VLAN.
HRESULT AddVlan(Repository& store, const std::wstring& parentId, std::int64_t number,
                const std::wstring& name, std::wstring& path);

/// Removes a VLAN with its settings.
HRESULT RemoveVlan(Repository& store, const Instance& vlan);

/// Removes the VLANs of a parent that goes, with their settings.
void RemoveVlansOf(Repository& store, const std::wstring& parentId);

} // namespace quillet::simulator
