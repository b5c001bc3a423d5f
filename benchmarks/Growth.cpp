// How time and provider calls of the operations grow with the machine.
#include "Bench.h"
#include "Reads.h"

namespace quillet::bench {

namespace {

using tests::OfAdapter;
using tests::OfMachine;
using tests::OfTeam;
using tests::OfTeamVlan;
using tests::TeamVlanId;

/// An operation over a machine that is n times something.
struct Growing {
    const char* name;
    HRESULT (*run)(CQuillet&, unsigned n);
};

/// Two adapters in five are in a team of two.
constexpr unsigned kTeamsIn = 5;

MachineSize WithAdapters(unsigned count) {
    return {.adapters = count,
            .settings = 6,
            .profiles = 3,
            .tests = 2,
            .teams = count / kTeamsIn,
            .iscsiPorts = count / kTeamsIn};
}

MachineSize WithVlans(unsigned count) {
    return {.adapters = 3, .teams = 1, .vlans = count, .vlanSettings = 6};
}

/// One less, so that there is room for the nth.
MachineSize WithOneVlanLess(unsigned count) {
    return WithVlans(count - 1);
}

CVLAN NewVlan() {
    CVLAN vlan;
    vlan.m_lVLANNumber = 4000;
    vlan.m_wsVLANName = L"New";
    return vlan;
}

/// A check tells problems; here there are none, or as many as there have to be.
HRESULT AsExpected(ULONGLONG problems, ULONGLONG expected) {
    return problems == expected ? S_OK : E_UNEXPECTED;
}

const Growing kOverAdapters[] = {
    {"EnumerateAdapters", OfMachine<&CQuillet::EnumerateAdapters>},
    {"GetTeamableAdapters",
     [](CQuillet& q, unsigned) {
         CAdapters all;
         const HRESULT result = q.EnumerateAdapters(all);
         return FAILED(result) ? result : q.GetTeamableAdapters(all);
     }},
    {"EnumerateTeams", OfMachine<&CQuillet::EnumerateTeams>},
    {"EnumerateISCSIAdapters", OfMachine<&CQuillet::EnumerateISCSIAdapters>},
    {"ChangeAllAdapterProfilesFromHyperV",
     [](CQuillet& q, unsigned) { return q.ChangeAllAdapterProfilesFromHyperV(ePERFORMANCE_PROFILE(2)); }},
    {"GetAdapterBasicInfo", OfAdapter<&CQuillet::GetAdapterBasicInfo>},
    {"GetAdapterSettings",
     [](CQuillet& q, unsigned) {
         CSettings settings;
         return q.GetAdapterSettings(AdapterId(1), settings);
     }},
    {"EnumerateOtherPortOfAdapter", OfAdapter<&CQuillet::EnumerateOtherPortOfAdapter>},
    {"EnumerateDiagnostics", OfAdapter<&CQuillet::EnumerateDiagnostics>},
    {"GetMemberAdapters", OfTeam<&CQuillet::GetMemberAdapters>},
    {"IdentifyAdapter", [](CQuillet& q, unsigned) { return q.IdentifyAdapter(AdapterId(1), 10); }},
    {"GetWarnings", OfMachine<&CQuillet::GetWarnings>},
};

const Growing kOverVlans[] = {
    {"EnumerateVLANsOfAdapter", OfAdapter<&CQuillet::EnumerateVLANsOfAdapter, 3>},
    {"EnumerateVLANsOfTeam", OfTeam<&CQuillet::EnumerateVLANsOfTeam>},
    {"CreateVLANAdapterCheck",
     [](CQuillet& q, unsigned n) {
         return AsExpected(q.CreateVLANAdapterCheck(AdapterId(3), NewVlan()),
                           n == 64 ? ULONGLONG{CVLAN::TooMany} : 0);
     }},
    {"CreateVLANTeamCheck",
     [](CQuillet& q, unsigned n) {
         return AsExpected(q.CreateVLANTeamCheck(TeamId(1), NewVlan()),
                           n == 64 ? ULONGLONG{CVLAN::TooMany} : 0);
     }},
    {"GetVLANInfo",
     [](CQuillet& q, unsigned) {
         CVLAN vlan;
         return q.GetVLANInfo(TeamVlanId(1, 1), vlan);
     }},
    {"GetVlanSettings", OfTeamVlan<&CQuillet::GetVlanSettings>},
};

const Growing kAdditions[] = {
    {"AddVLANToTeam_and_RemoveVLAN",
     [](CQuillet& q, unsigned) {
         CVLAN vlan = NewVlan();
         const HRESULT result = q.AddVLANToTeam(TeamId(1), vlan);
         return FAILED(result) ? result : q.RemoveVLAN(vlan.m_wsVLANID);
     }},
};

void Grow(benchmark::State& state, const Growing& operation, MachineSize (*size)(unsigned)) {
    const auto n = static_cast<unsigned>(state.range(0));
    Lab& lab = LabOf(size(n));
    Measure(state, lab, [&] { return operation.run(lab.quillet, n); });
}

} // namespace

void RegisterGrowth() {
    for (const Growing& operation : kOverAdapters) {
        const std::string name = std::string("growth/adapters/") + operation.name;
        benchmark::RegisterBenchmark(name.c_str(), Grow, operation, WithAdapters)
            ->RangeMultiplier(10)
            ->Range(10, 10000);
    }
    const auto overVlans = [](const Growing& operation, MachineSize (*size)(unsigned)) {
        const std::string name = std::string("growth/vlans/") + operation.name;
        benchmark::RegisterBenchmark(name.c_str(), Grow, operation, size)->RangeMultiplier(2)->Range(1, 64);
    };
    for (const Growing& operation : kOverVlans) {
        overVlans(operation, WithVlans);
    }
    for (const Growing& operation : kAdditions) {
        overVlans(operation, WithOneVlanLess);
    }
}

} // namespace quillet::bench
