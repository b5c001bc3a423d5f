// VLANs on an adapter or a team.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <string>

/// One VLAN, an instance of "Zorel_VLAN".
class QUILLET_API CVLAN {
  public:
    /// "StatusInfo" of the VLAN: the provider's number, unchanged; others than these may come.
    enum VlanStatus : LONG {
        VlanStatusOther = 1,
        VlanStatusUnknown = 2,
        VlanStatusEnabled = 3,
        VlanStatusDisabled = 4,
        VlanStatusNotApplicable = 5
    };
    /// What the checks of new and changed VLANs find: bits of their mask.
    enum Problem : ULONGLONG {
        UntaggedAlone = 0x8, ///< the untagged VLAN would be the parent's only one
        IDTaken = 0x10,      ///< the parent has a VLAN of this ID
        NameTaken = 0x20,    ///< the parent has a VLAN of this name
        TooMany = 0x40,      ///< the parent has, or would have, too many VLANs
        IDOutOfRange = 0x100
    };
    /// `ParentSupportingVLAN`: the adapter is a team's member, so VLANs go on the team.
    static constexpr HRESULT ParentIsTeamMember = 0x1000;

    /// "Name".
    std::wstring m_wsName;
    /// The display name ("Caption").
    std::wstring m_wsCaption;
    /// The object ID of the adapter or team that carries the VLAN ("ParentID").
    std::wstring m_wsParentID;
    /// The user's name for the VLAN ("VLANName").
    std::wstring m_wsVLANName;
    /// The IEEE 802.1Q VLAN ID; 0 for the untagged VLAN ("VLANNumber").
    LONG m_lVLANNumber = 0;
    /// The VLAN's identifier in every operation: its object path ("__PATH").
    std::wstring m_wsVLANID;
    /// "StatusInfo".
    VlanStatus m_eStatus = VlanStatus(0);
};

/// The VLANs of an adapter or a team.
class QUILLET_API CVLANs : public CPointerArray<CVLAN*> {};
