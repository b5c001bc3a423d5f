// VLANs as values, and the checks of new and changed ones.
#pragma once

#include <quillet/client/Adapter.h>
#include <quillet/client/Flags.h>
#include <quillet/client/Id.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quillet {

/// One VLAN (Zorel_VLAN).
struct Vlan {
    VlanId id;
    std::wstring objectId;   ///< "Name"
    std::wstring caption;    ///< the display name ("Caption")
    std::wstring parentId;   ///< the object ID of the adapter or team that carries it ("ParentID")
    std::wstring name;       ///< the user's name for it ("VLANName")
    std::int32_t number = 0; ///< the IEEE 802.1Q VLAN ID; 0 for the untagged VLAN ("VLANNumber")
    StatusInfo status{};     ///< "StatusInfo"
};

/// A VLAN that is to be made, or what one is to become.
struct NewVlan {
    std::int32_t id = 0; ///< the VLAN ID, 1 to 4094; 0 for the untagged VLAN
    std::wstring name{}; ///< the user's name for it
};

/// What the checks of VLANs find.
enum class VlanProblem : std::uint64_t {
    UntaggedAlone = 0x8, ///< the untagged VLAN would be the parent's only one
    IdTaken = 0x10,      ///< the parent has a VLAN of this ID
    NameTaken = 0x20,    ///< the parent has a VLAN of this name
    TooMany = 0x40,      ///< the parent has, or would have, too many VLANs
    IdOutOfRange = 0x100
};
/// The problems as sentences without a full stop, the lowest bit first.
std::vector<std::wstring> Texts(Flags<VlanProblem> problems);

/// Whether VLANs may be put on an adapter or a team.
enum class VlanSupport {
    Supported,
    TeamMember, ///< the adapter is a team's member, so VLANs go on the team
    None        ///< there is no VLAN service for it
};
/// Why not, as a sentence without a full stop; empty for `Supported`.
std::wstring Text(VlanSupport support);

} // namespace quillet
