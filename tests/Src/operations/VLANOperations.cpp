// VLANs: listing, checking, adding, changing and removing them.
#include "Operations.h"

namespace {

constexpr const char* kVLANMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Caption = "Alpha"; };
    instance of Zorel_TeamOfAdapters { Name = "{T}"; Caption = "Team"; };
    instance of Zorel_802dot1QVLANService { Name = "{A}"; };
    instance of Zorel_802dot1QVLANService { Name = "{T}"; };
    instance of Zorel_VLAN { Name = "{V}"; Caption = "Alpha - VLAN : Voice"; ParentID = "{A}"; VLANName = "Voice";
        VLANNumber = 10; StatusInfo = 3; };
    instance of Zorel_VLAN { Name = "{W}"; Caption = "Team - VLAN : Voice"; ParentID = "{T}"; VLANName = "Voice";
        VLANNumber = 10; StatusInfo = 3; };)";

constexpr const wchar_t* kVLANAdapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
constexpr const wchar_t* kVLANTeam = LR"(Zorel_TeamOfAdapters.Name="{T}")";
constexpr const wchar_t* kVLANVlan = LR"(Zorel_VLAN.Name="{V}")";

/// A record whose number and name are taken on either parent.
CVLAN Taken() {
    CVLAN vlan;
    vlan.m_lVLANNumber = 10;
    vlan.m_wsVLANName = L"Voice";
    return vlan;
}

OperationCase Listing(const char* name, HRESULT (*list)(CQuillet&, CVLANs&)) {
    return {name, [list](CQuillet& q, Outputs& out) {
                CVLANs all;
                const HRESULT result = list(q, all);
                out("vlans", all.m_vecItems);
                return result;
            }};
}

OperationCase Adding(const char* name, HRESULT (*add)(CQuillet&, CVLAN&)) {
    return {name, [add](CQuillet& q, Outputs& out) {
                CVLAN vlan;
                vlan.m_lVLANNumber = 20;
                vlan.m_wsVLANName = L"Data";
                vlan.m_wsCaption = L"kept";
                const HRESULT result = add(q, vlan);
                out("number", vlan.m_lVLANNumber)("caption", vlan.m_wsCaption);
                return result;
            }};
}

/// A check: it has no result code, and a list that cannot be read is an empty one.
template <class Answer>
OperationCase Checking(const char* name, Answer (*check)(CQuillet&)) {
    OperationCase operation{name, [check](CQuillet& q, Outputs& out) {
                                out("answer", check(q));
                                return S_OK;
                            }};
    operation.neverFails = true;
    return operation;
}

/// A membership that cannot be looked up is one code, whatever the provider's.
HRESULT MembershipUnknown(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::ExecQuery || failed.operation == Operation::Next
               ? static_cast<HRESULT>(WBEM_E_FAILED)
               : code;
}

/// What asks the provider nothing loses nothing with its context.
HRESULT AsksNothing(const JournalEntry&, HRESULT) {
    return S_OK;
}

} // namespace

OperationArea VLANOperations() {
    return {
        kVLANMachine,
        true,
        {
            Listing("EnumerateVLANsOfAdapter",
                    [](CQuillet& q, CVLANs& all) { return q.EnumerateVLANsOfAdapter(kVLANAdapter, all); }),
            Listing("EnumerateVLANsOfTeam",
                    [](CQuillet& q, CVLANs& all) { return q.EnumerateVLANsOfTeam(kVLANTeam, all); }),
            {"GetVLANInfo",
             [](CQuillet& q, Outputs& out) {
                 CVLAN vlan;
                 const HRESULT result = q.GetVLANInfo(kVLANVlan, vlan);
                 out("name", vlan.m_wsVLANName)("number", vlan.m_lVLANNumber)("status", vlan.m_eStatus);
                 return result;
             }},
            {"GetVlanStatus",
             [](CQuillet& q, Outputs& out) {
                 CVLAN::VlanStatus status{};
                 const HRESULT result = q.GetVlanStatus(kVLANVlan, status);
                 out("status", status);
                 return result;
             }},
            {"GetVLANID",
             [](CQuillet& q, Outputs& out) {
                 std::wstring path;
                 const HRESULT result = q.GetVLANID(L"{V}", path);
                 out("path",
                     path.substr(path.empty() ? 0 : path.find(L'\\', 2))); // without the computer's name
                 return result;
             },
             AsksNothing},
            {"ParentSupportingVLAN",
             [](CQuillet& q, Outputs&) { return q.ParentSupportingVLAN(kVLANAdapter); }, MembershipUnknown},
            {"ParentSupportingVLAN_Team",
             [](CQuillet& q, Outputs&) { return q.ParentSupportingVLAN(kVLANTeam); }},
            Checking(
                "CreateVLANAdapterCheck",
                +[](CQuillet& q) { return q.CreateVLANAdapterCheck(kVLANAdapter, Taken()); }),
            Checking(
                "CreateVLANTeamCheck",
                +[](CQuillet& q) { return q.CreateVLANTeamCheck(kVLANTeam, Taken()); }),
            Checking(
                "CreateUnTaggedVLANAdapterCheck",
                +[](CQuillet& q) { return q.CreateUnTaggedVLANAdapterCheck(kVLANAdapter, Taken()); }),
            Checking(
                "CreateUnTaggedVLANTeamCheck",
                +[](CQuillet& q) { return q.CreateUnTaggedVLANTeamCheck(kVLANTeam, Taken()); }),
            Checking(
                "CreateMultipleVLANAdapterCheck",
                +[](CQuillet& q) {
                    CVLANs wanted;
                    wanted.m_vecItems.push_back(new CVLAN(Taken()));
                    return q.CreateMultipleVLANAdapterCheck(kVLANAdapter, wanted);
                }),
            Checking(
                "CreateMultipleVLANTeamCheck",
                +[](CQuillet& q) {
                    CVLANs wanted;
                    wanted.m_vecItems.push_back(new CVLAN(Taken()));
                    return q.CreateMultipleVLANTeamCheck(kVLANTeam, wanted);
                }),
            Checking(
                "CheckForUniqueIDForUnTaggedVLAN",
                +[](CQuillet& q) { return q.CheckForUniqueIDForUnTaggedVLAN(kVLANTeam, true, Taken()); }),
            Checking(
                "CheckForUniqueIDForMultipleVLANs",
                +[](CQuillet& q) {
                    CVLANs wanted;
                    wanted.m_vecItems.push_back(new CVLAN(Taken()));
                    return q.CheckForUniqueIDForMultipleVLANs(kVLANAdapter, false, wanted);
                }),
            Checking(
                "CheckForUntaggedVLANOnAdapter",
                +[](CQuillet& q) { return q.CheckForUntaggedVLANOnAdapter(kVLANAdapter, 10); }),
            Checking(
                "CheckForUntaggedVLANOnTeam",
                +[](CQuillet& q) { return q.CheckForUntaggedVLANOnTeam(kVLANTeam, 10); }),
            Checking(
                "CheckForTaggedVLANOnAdapter",
                +[](CQuillet& q) { return q.CheckForTaggedVLANOnAdapter(kVLANAdapter); }),
            Checking(
                "CheckForTaggedVLANOnTeam",
                +[](CQuillet& q) { return q.CheckForTaggedVLANOnTeam(kVLANTeam); }),
            Adding("AddVLANToAdapter",
                   [](CQuillet& q, CVLAN& vlan) { return q.AddVLANToAdapter(kVLANAdapter, vlan); }),
            Adding("AddVLANToTeam",
                   [](CQuillet& q, CVLAN& vlan) { return q.AddVLANToTeam(kVLANTeam, vlan); }),
            {"ModifyVLANProperty",
             [](CQuillet& q, Outputs&) {
                 CVLAN vlan;
                 vlan.m_lVLANNumber = 20;
                 vlan.m_wsVLANName = L"Data";
                 return q.ModifyVLANProperty(kVLANVlan, vlan);
             }},
            {"RemoveVLAN", [](CQuillet& q, Outputs&) { return q.RemoveVLAN(kVLANVlan); }},
        },
    };
}
