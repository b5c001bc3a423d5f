// A small machine with VLANs, and how its objects are called.
#pragma once

#include "ProviderTest.h"

/// An adapter {A} with two VLANs and one, {B}, with none; {M}, a member of the team {T} with two VLANs; and
/// an adapter {N} that cannot carry any.
inline constexpr const char* VLAN_MACHINE = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Caption = "Alpha"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Caption = "Beta"; };
    instance of Zorel_PhysicalEthernetAdapter as $M { DeviceID = "{M}"; Caption = "Member"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{N}"; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "Team"; };
    instance of Zorel_LogicalEthernetAdapter { DeviceID = "{T}"; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $M; };
    instance of Zorel_802dot1QVLANService { Name = "{A}"; };
    instance of Zorel_802dot1QVLANService { Name = "{B}"; };
    instance of Zorel_802dot1QVLANService { Name = "{M}"; };
    instance of Zorel_802dot1QVLANService { Name = "{T}"; };
    instance of Zorel_VLAN { Name = "{V1}"; Caption = "Alpha - VLAN : Voice"; ParentID = "{A}"; VLANName = "Voice";
        VLANNumber = 10; StatusInfo = 3; };
    instance of Zorel_VLAN { Name = "{V2}"; Caption = "Alpha - VLAN : Data"; ParentID = "{A}"; VLANName = "Data";
        VLANNumber = 20; StatusInfo = 4; };
    instance of Zorel_VLAN { Name = "{V3}"; Caption = "Team - VLAN : Untagged"; ParentID = "{T}";
        VLANName = "Untagged"; VLANNumber = 0; StatusInfo = 3; };
    instance of Zorel_VLAN { Name = "{V4}"; Caption = "Team - VLAN : B\x00fcro"; ParentID = "{T}";
        VLANName = "B\x00fcro"; VLANNumber = 12; StatusInfo = 3; };)";

/// The full path of an instance on the machine of the tests.
inline std::wstring PathOf(const wchar_t* className, const wchar_t* key, const std::wstring& value) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:)" + std::wstring(className) + L'.' + key + L"=\"" + value + L'"';
}
inline std::wstring AdapterPath(const std::wstring& id) {
    return PathOf(L"Zorel_PhysicalEthernetAdapter", L"DeviceID", id);
}
inline std::wstring TeamPath(const std::wstring& id) {
    return PathOf(L"Zorel_TeamOfAdapters", L"Name", id);
}
inline std::wstring VlanPath(const std::wstring& id) {
    return PathOf(L"Zorel_VLAN", L"Name", id);
}

/// A record as a client fills it in to add or check a VLAN.
inline CVLAN Wanted(LONG number, const std::wstring& vlanName, const std::wstring& name = {}) {
    CVLAN vlan;
    vlan.m_lVLANNumber = number;
    vlan.m_wsVLANName = vlanName;
    vlan.m_wsName = name;
    return vlan;
}

/// A session with that machine.
class VlanTest : public ProviderTest {
  protected:
    VlanTest() : ProviderTest(VLAN_MACHINE) {}
    void SetUp() override { Connect(); }

    const std::wstring A = AdapterPath(L"{A}");
    const std::wstring B = AdapterPath(L"{B}");
    const std::wstring M = AdapterPath(L"{M}");
    const std::wstring N = AdapterPath(L"{N}");
    const std::wstring T = TeamPath(L"{T}");
    const std::wstring V1 = VlanPath(L"{V1}");
};
