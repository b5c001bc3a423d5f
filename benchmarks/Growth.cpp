// How time and provider calls of the operations grow with the machine.
#include "Bench.h"

namespace quillet::bench {

namespace {

using test::TeamVlanId;

/// An operation over a machine that is n times something.
struct Growing {
    const char* name;
    HRESULT (*run)(CQuillet&, unsigned n);
};

/// Two adapters in five are in a team of two.
constexpr unsigned TEAMS_IN = 5;

MachineSize WithAdapters(unsigned count) {
    return {.adapters = count,
            .settings = 6,
            .profiles = 3,
            .tests = 2,
            .teams = count / TEAMS_IN,
            .iscsiPorts = count / TEAMS_IN};
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

const Growing OVER_ADAPTERS[] = {
    {"EnumerateAdapters",
     [](CQuillet& q, unsigned) {
         CAdapters all;
         return q.EnumerateAdapters(all);
     }},
    {"GetTeamableAdapters",
     [](CQuillet& q, unsigned) {
         CAdapters all;
         const HRESULT result = q.EnumerateAdapters(all);
         return FAILED(result) ? result : q.GetTeamableAdapters(all);
     }},
    {"EnumerateTeams",
     [](CQuillet& q, unsigned) {
         CTeams all;
         return q.EnumerateTeams(all);
     }},
    {"EnumerateISCSIAdapters",
     [](CQuillet& q, unsigned) {
         CISCSIAdapters all;
         return q.EnumerateISCSIAdapters(all);
     }},
    {"ChangeAllAdapterProfilesFromHyperV",
     [](CQuillet& q, unsigned) { return q.ChangeAllAdapterProfilesFromHyperV(ePERFORMANCE_PROFILE(2)); }},
    {"GetAdapterBasicInfo",
     [](CQuillet& q, unsigned) {
         CAdapter adapter;
         return q.GetAdapterBasicInfo(AdapterId(1), adapter);
     }},
    {"GetAdapterSettings",
     [](CQuillet& q, unsigned) {
         CSettings all;
         return q.GetAdapterSettings(AdapterId(1), all);
     }},
    {"EnumerateOtherPortOfAdapter",
     [](CQuillet& q, unsigned) {
         CAdapterPorts all;
         return q.EnumerateOtherPortOfAdapter(AdapterId(1), all);
     }},
    {"EnumerateDiagnostics",
     [](CQuillet& q, unsigned) {
         CDiagTests all;
         return q.EnumerateDiagnostics(AdapterId(1), all);
     }},
    {"GetMemberAdapters",
     [](CQuillet& q, unsigned) {
         CTeamedAdapters all;
         return q.GetMemberAdapters(TeamId(1), all);
     }},
    {"IdentifyAdapter", [](CQuillet& q, unsigned) { return q.IdentifyAdapter(AdapterId(1), 10); }},
    {"GetWarnings",
     [](CQuillet& q, unsigned) {
         ULONGLONG warnings = 0;
         return q.GetWarnings(warnings);
     }},
};

const Growing OVER_VLANS[] = {
    {"EnumerateVLANsOfAdapter",
     [](CQuillet& q, unsigned) {
         CVLANs all;
         return q.EnumerateVLANsOfAdapter(AdapterId(3), all);
     }},
    {"EnumerateVLANsOfTeam",
     [](CQuillet& q, unsigned) {
         CVLANs all;
         return q.EnumerateVLANsOfTeam(TeamId(1), all);
     }},
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
    {"GetVlanSettings",
     [](CQuillet& q, unsigned) {
         CSettings all;
         return q.GetVlanSettings(TeamVlanId(1, 1), all);
     }},
};

const Growing ADDITIONS[] = {
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
    for (const Growing& operation : OVER_ADAPTERS) {
        const std::string name = std::string("growth/adapters/") + operation.name;
        benchmark::RegisterBenchmark(name.c_str(), Grow, operation, WithAdapters)
            ->RangeMultiplier(10)
            ->Range(10, 10000);
    }
    const auto overVlans = [](const Growing& operation, MachineSize (*size)(unsigned)) {
        const std::string name = std::string("growth/vlans/") + operation.name;
        benchmark::RegisterBenchmark(name.c_str(), Grow, operation, size)->RangeMultiplier(2)->Range(1, 64);
    };
    for (const Growing& operation : OVER_VLANS) {
        overVlans(operation, WithVlans);
    }
    for (const Growing& operation : ADDITIONS) {
        overVlans(operation, WithOneVlanLess);
    }
}

} // namespace quillet::bench
