// VLANs on an adapter or a team.
#pragma once

#include <windows.h>

#include <quillet/Export.h>
#include <quillet/PointerArray.h>

#include <string>

/// One VLAN, an instance of "Zorel_VLAN".
class QUILLET_API CVLAN {
  public:
    /// "StatusInfo" of the VLAN: the provider's number, unchanged.
    enum VlanStatus : LONG {};

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
