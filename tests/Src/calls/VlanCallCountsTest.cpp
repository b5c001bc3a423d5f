// Provider calls of the operations on VLANs.
#include "CallCounts.h"

namespace quillet::tests {

namespace {

/// The last of three adapters and the one team, each with so many VLANs.
MachineSize Vlans(unsigned n) {
    return {.adapters = 3, .teams = 1, .vlans = n};
}
MachineSize OneMoreVlan(unsigned n) {
    return Vlans(n + 1);
}
/// One less, so that there is room for another.
MachineSize OneLessVlan(unsigned n) {
    return Vlans(n > 0 ? n - 1 : 0);
}

constexpr unsigned kParent = 3;

CVLAN NewVlan() {
    CVLAN vlan;
    vlan.m_lVLANNumber = 4000;
    vlan.m_wsVLANName = L"New";
    return vlan;
}

/// Two of them.
CVLANs NewVlans() {
    CVLANs vlans;
    for (const LONG number : {4000, 4001}) {
        vlans.m_vecItems.push_back(new CVLAN(NewVlan()));
        vlans.m_vecItems.back()->m_lVLANNumber = number;
    }
    return vlans;
}

/// A check answers with problems, of which there may be some: whatever it finds, it has read the VLANs once.
template <class Check>
HRESULT Run(Check check) {
    check();
    return S_OK;
}

constexpr auto kAllVlans = [](unsigned n) { return Query(n); };

/// The parent's service, which makes VLANs, by its path; the method; and what it has made.
constexpr Count kAddition{.objects = 1 + 1 + 1, .methods = 1};

const Operation kVlanCallCountsOperations[] = {
    {"EnumerateVLANsOfAdapter", Vlans, OfAdapter<&CQuillet::EnumerateVLANsOfAdapter, kParent>,
     // The parent's object ID is in its path; a VLAN's properties come with it.
     kAllVlans},
    {"EnumerateVLANsOfTeam", Vlans, OfTeam<&CQuillet::EnumerateVLANsOfTeam>, kAllVlans},
    {"GetVLANInfo", OneMoreVlan,
     [](CQuillet& q, unsigned) {
         CVLAN vlan;
         return q.GetVLANInfo(AdapterVlanId(kParent, 1), vlan);
     },
     kOneObject},
    {"GetVlanStatus", OneMoreVlan, OfTeamVlan<&CQuillet::GetVlanStatus>, kOneObject},
    {"GetVlanSettings", [](unsigned n) { return MachineSize{.adapters = 1, .vlans = 2, .vlanSettings = n}; },
     OfAdapterVlan<&CQuillet::GetVlanSettings, 1>, [](unsigned n) { return Query(n); }},
    {"ParentSupportingVLAN_Adapter", Vlans,
     [](CQuillet& q, unsigned) { return q.ParentSupportingVLAN(AdapterId(kParent)); },
     // The service, and whether the adapter is a member of a team.
     [](unsigned) { return kObject + kFirstOfQuery; }},
    {"ParentSupportingVLAN_Team", Vlans,
     [](CQuillet& q, unsigned) { return q.ParentSupportingVLAN(TeamId(1)); }, kOneObject},
    {"CreateVLANAdapterCheck", Vlans,
     [](CQuillet& q, unsigned) {
         return Run([&] { q.CreateVLANAdapterCheck(AdapterId(kParent), NewVlan()); });
     },
     kAllVlans},
    {"CreateVLANTeamCheck", Vlans,
     [](CQuillet& q, unsigned) { return Run([&] { q.CreateVLANTeamCheck(TeamId(1), NewVlan()); }); },
     kAllVlans},
    {"CreateUnTaggedVLANAdapterCheck", Vlans,
     [](CQuillet& q, unsigned) {
         return Run([&] { q.CreateUnTaggedVLANAdapterCheck(AdapterId(kParent), NewVlan()); });
     },
     kAllVlans},
    {"CreateUnTaggedVLANTeamCheck", Vlans,
     [](CQuillet& q, unsigned) { return Run([&] { q.CreateUnTaggedVLANTeamCheck(TeamId(1), NewVlan()); }); },
     kAllVlans},
    {"CreateMultipleVLANAdapterCheck", Vlans,
     [](CQuillet& q, unsigned) {
         return Run([&] { q.CreateMultipleVLANAdapterCheck(AdapterId(kParent), NewVlans()); });
     },
     // However many are new, those that are there are read once.
     kAllVlans},
    {"CreateMultipleVLANTeamCheck", Vlans,
     [](CQuillet& q, unsigned) { return Run([&] { q.CreateMultipleVLANTeamCheck(TeamId(1), NewVlans()); }); },
     kAllVlans},
    {"CheckForUntaggedVLANOnAdapter", Vlans,
     [](CQuillet& q, unsigned) {
         return Run([&] { q.CheckForUntaggedVLANOnAdapter(AdapterId(kParent), 0); });
     },
     kAllVlans},
    {"CheckForTaggedVLANOnTeam", Vlans,
     [](CQuillet& q, unsigned n) {
         return q.CheckForTaggedVLANOnTeam(TeamId(1)) == static_cast<int>(n) ? S_OK : E_UNEXPECTED;
     },
     kAllVlans},
    {"AddVLANToAdapter", OneLessVlan,
     [](CQuillet& q, unsigned) {
         CVLAN vlan = NewVlan();
         return q.AddVLANToAdapter(AdapterId(kParent), vlan);
     },
     [](unsigned) { return kAddition; }},
    {"AddVLANToTeam", OneLessVlan,
     [](CQuillet& q, unsigned) {
         CVLAN vlan = NewVlan();
         return q.AddVLANToTeam(TeamId(1), vlan);
     },
     [](unsigned) { return kAddition; }},
    {"ModifyVLANProperty", OneMoreVlan,
     [](CQuillet& q, unsigned) { return q.ModifyVLANProperty(TeamVlanId(1, 1), NewVlan()); },
     // Name and number go back together.
     [](unsigned) { return kObject + kCommit; }},
    {"RemoveVLAN", OneMoreVlan, [](CQuillet& q, unsigned) { return q.RemoveVLAN(TeamVlanId(1, 1)); },
     [](unsigned) { return Count{.deletions = 1}; }},
};

std::string VlanCaseName(const testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Vlans, CallCountsTest, testing::ValuesIn(kVlanCallCountsOperations), VlanCaseName);

} // namespace

} // namespace quillet::tests
