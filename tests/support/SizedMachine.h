// Machines of any size as MOF, for what has to be measured or counted while they grow.
#pragma once

#include <compare>
#include <string>

namespace quillet::tests {

/// How many of everything. Whatever is 0 is not there at all.
struct MachineSize {
    unsigned adapters = 0;       ///< dual-port boards: two adapters share a slot
    unsigned settings = 0;       ///< advanced settings of each adapter, the kinds in turn
    unsigned profiles = 0;       ///< values of each adapter's performance profile
    unsigned currentProfile = 1; ///< the value in use
    unsigned tests = 0;          ///< diagnostic tests of each adapter
    unsigned teams = 0;          ///< over adapters 1 to teams * members, in their order
    unsigned members = 2;        ///< adapters of each team
    unsigned vlans = 0;          ///< VLANs of the last adapter, and of the first team
    unsigned iscsiPorts = 0;     ///< entries of the list of iSCSI boot adapters, for the adapters from 1 on
    unsigned vlanSettings = 0;   ///< settings of the first VLAN of each parent

    auto operator<=>(const MachineSize&) const = default;
};

/// The instances, the network service among them.
std::string MachineText(const MachineSize& size);

/// Object paths that name the instances on whatever machine they are; all count from 1.
std::wstring AdapterId(unsigned number);
std::wstring TeamId(unsigned number);
/// A VLAN of an adapter.
std::wstring AdapterVlanId(unsigned adapter, unsigned number);
/// A VLAN of a team.
std::wstring TeamVlanId(unsigned team, unsigned number);

} // namespace quillet::tests
