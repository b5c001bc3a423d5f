// The checks that a client makes before it adds or changes VLANs.
#include <quillet/Quillet.h>

#include "Provider/Trace.h"
#include "Vlans/VlanRules.h"

#include <algorithm>

namespace {

void TraceCandidate(const CVLAN& vlan) {
    TraceText(L"Checking for VLAN Unique ID, Names");
    LumTrace().Print(L"%ld", static_cast<long>(vlan.m_lVLANNumber));
    TraceText(vlan.m_wsVLANName.c_str());
}

} // namespace

CVLANs CQuillet::ExistingVLANs(const std::wstring& parentId, bool isTeam) {
    CVLANs existing;
    if (FAILED(isTeam ? EnumerateVLANsOfTeam(parentId, existing)
                      : EnumerateVLANsOfAdapter(parentId, existing))) {
        // A part of the list would only look like an answer.
        existing.RemoveAll();
    }
    return existing;
}

ULONGLONG CQuillet::CreateVLANAdapterCheck(const std::wstring& adapterId, const CVLAN& vlan) {
    const OperationTrace trace(L"CreateVLANAdapterCheck");
    return CheckForUniqueID(adapterId, false, vlan);
}

ULONGLONG CQuillet::CreateVLANTeamCheck(const std::wstring& teamId, const CVLAN& vlan) {
    const OperationTrace trace(L"CreateVLANTeamCheck");
    return CheckForUniqueID(teamId, true, vlan);
}

ULONGLONG CQuillet::CreateUnTaggedVLANAdapterCheck(const std::wstring& adapterId, const CVLAN& vlan) {
    const OperationTrace trace(L"CreateUnTaggedVLANAdapterCheck");
    return CheckForUniqueIDForUnTaggedVLAN(adapterId, false, vlan);
}

ULONGLONG CQuillet::CreateUnTaggedVLANTeamCheck(const std::wstring& teamId, const CVLAN& vlan) {
    const OperationTrace trace(L"CreateUnTaggedVLANTeamCheck");
    return CheckForUniqueIDForUnTaggedVLAN(teamId, true, vlan);
}

ULONGLONG CQuillet::CreateMultipleVLANAdapterCheck(const std::wstring& adapterId, const CVLANs& vlans) {
    const OperationTrace trace(L"CreateMultipleVLANAdapterCheck");
    return CheckForUniqueIDForMultipleVLANs(adapterId, false, vlans);
}

ULONGLONG CQuillet::CreateMultipleVLANTeamCheck(const std::wstring& teamId, const CVLANs& vlans) {
    const OperationTrace trace(L"CreateMultipleVLANTeamCheck");
    return CheckForUniqueIDForMultipleVLANs(teamId, true, vlans);
}

ULONGLONG CQuillet::CheckForUniqueID(const std::wstring& parentId, bool isTeam, const CVLAN& vlan) {
    const OperationTrace trace(L"CheckForUniqueID");
    TraceCandidate(vlan);
    const ULONGLONG problems = VlanRules::CheckTaggedID(vlan);
    return problems | VlanRules::CheckTagged(ExistingVLANs(parentId, isTeam), vlan, m_bVlanIsModify);
}

ULONGLONG CQuillet::CheckForUniqueIDForUnTaggedVLAN(const std::wstring& parentId, bool isTeam,
                                                    const CVLAN& vlan) {
    const OperationTrace trace(L"CheckForUniqueIDForUnTaggedVLAN");
    TraceCandidate(vlan);
    const ULONGLONG problems = VlanRules::CheckUntaggedID(vlan);
    return problems | VlanRules::CheckUntagged(ExistingVLANs(parentId, isTeam), vlan, m_bVlanIsModify);
}

ULONGLONG CQuillet::CheckForUniqueIDForMultipleVLANs(const std::wstring& parentId, bool isTeam,
                                                     const CVLANs& vlans) {
    const OperationTrace trace(L"CheckForUniqueIDForMultipleVLANs");
    return VlanRules::CheckSeveral(ExistingVLANs(parentId, isTeam), vlans, isTeam);
}

ULONGLONG CQuillet::CheckForUntaggedVLANOnAdapter(const std::wstring& adapterId, int vlanNumber) {
    const OperationTrace trace(L"CheckForUntaggedVLANOnAdapter");
    return CheckForUntaggedVLAN(adapterId, false, vlanNumber);
}

ULONGLONG CQuillet::CheckForUntaggedVLANOnTeam(const std::wstring& teamId, int vlanNumber) {
    const OperationTrace trace(L"CheckForUntaggedVLANOnTeam");
    return CheckForUntaggedVLAN(teamId, true, vlanNumber);
}

ULONGLONG CQuillet::CheckForUntaggedVLAN(const std::wstring& parentId, bool isTeam, int vlanNumber) {
    const CVLANs existing = ExistingVLANs(parentId, isTeam);
    const bool isTaken =
        std::any_of(existing.m_vecItems.begin(), existing.m_vecItems.end(),
                    [vlanNumber](const CVLAN* vlan) { return vlan->m_lVLANNumber == vlanNumber; });
    if (!isTaken) {
        return 0;
    }
    TraceText(L"Untagged VLAN ID not Unique. In an adapter");
    return CVLAN::IDTaken;
}

int CQuillet::CheckForTaggedVLANOnAdapter(const std::wstring& adapterId) {
    const OperationTrace trace(L"CheckForTaggedVLANOnAdapter");
    return CheckForTaggedVLAN(adapterId, false);
}

int CQuillet::CheckForTaggedVLANOnTeam(const std::wstring& teamId) {
    const OperationTrace trace(L"CheckForTaggedVLANOnTeam");
    return CheckForTaggedVLAN(teamId, true);
}

int CQuillet::CheckForTaggedVLAN(const std::wstring& parentId, bool isTeam) {
    const CVLANs existing = ExistingVLANs(parentId, isTeam);
    return static_cast<int>(std::count_if(existing.m_vecItems.begin(), existing.m_vecItems.end(),
                                          [](const CVLAN* vlan) { return vlan->m_lVLANNumber != 0; }));
}

void CQuillet::RemoveIntVectorElement(std::vector<int>& values, int value) {
    std::erase(values, value);
}

void CQuillet::SetVlanIsModify(bool isModify) {
    const OperationTrace trace(L"SetVlanIsModify");
    m_bVlanIsModify = isModify;
}

bool CQuillet::GetVlanIsModify() const {
    const OperationTrace trace(L"GetVlanIsModify");
    return m_bVlanIsModify;
}
