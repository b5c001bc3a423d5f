// How many requests the operations make over the wire, beside the calls that they are.
#include "Reads.h"
#include "WsmanLab.h"

namespace quillet::bench {

namespace {

using tests::OfAdapter, tests::OfMachine, tests::OfTeam, tests::TeamVlanId;
using wmi::Operation;

/// @param time counts from 1: what is made has another name each time
struct Row {
    const char* name;
    HRESULT (*run)(CQuillet& quillet, unsigned time);
};

constexpr MachineSize kSize{
    .adapters = 8, .settings = 12, .tests = 3, .teams = 2, .vlans = 4, .iscsiPorts = 2, .vlanSettings = 4};
constexpr unsigned kParent = 8; ///< the adapter that has the VLANs

CVLAN NewVlan(unsigned time) {
    CVLAN vlan;
    vlan.m_lVLANNumber = static_cast<LONG>(4000 + time);
    vlan.m_wsVLANName = L"New " + std::to_wstring(time);
    return vlan;
}

const Row kRows[] = {
    {"EnumerateAdapters", OfMachine<&CQuillet::EnumerateAdapters>},
    {"GetAdapterBasicInfo", OfAdapter<&CQuillet::GetAdapterBasicInfo>},
    {"GetAdapterSettings",
     [](CQuillet& q, unsigned) {
         CSettings settings;
         return q.GetAdapterSettings(AdapterId(1), settings);
     }},
    {"SetSetting",
     [](CQuillet& q, unsigned time) {
         CSettingInt setting;
         setting.m_lCurrentValue = static_cast<LONG>(512 + 8 * time);
         return q.SetSetting(
             LR"(Zorel_AdapterSettingInt.Caption="*Setting1",ParentId="{A1}",ParentType="NIC")", setting);
     }},
    {"IdentifyAdapter", [](CQuillet& q, unsigned) { return q.IdentifyAdapter(AdapterId(1), 10); }},
    {"EnumerateOtherPortOfAdapter", OfAdapter<&CQuillet::EnumerateOtherPortOfAdapter>},
    {"EnumerateDiagnostics", OfAdapter<&CQuillet::EnumerateDiagnostics>},
    {"EnumerateTeams", OfMachine<&CQuillet::EnumerateTeams>},
    {"GetMemberAdapters", OfTeam<&CQuillet::GetMemberAdapters>},
    {"CreateTeam",
     [](CQuillet& q, unsigned time) {
         CAdapters members;
         for (const unsigned number : {3 + 2 * time, 4 + 2 * time}) { // 5 and 6, then 7 and 8
             members.m_vecItems.push_back(new CAdapter);
             members.m_vecItems.back()->m_wsAdapterID = AdapterId(number);
         }
         CTeam team;
         return q.CreateTeam(CTeam::TeamMode0, L"New " + std::to_wstring(time), members, team,
                             ePERFORMANCE_PROFILE(2), false, false);
     }},
    {"EnumerateVLANsOfAdapter", OfAdapter<&CQuillet::EnumerateVLANsOfAdapter, kParent>},
    {"AddVLANToAdapter",
     [](CQuillet& q, unsigned time) {
         CVLAN vlan = NewVlan(time);
         return q.AddVLANToAdapter(AdapterId(kParent), vlan);
     }},
    {"ModifyVLANProperty",
     [](CQuillet& q, unsigned time) { return q.ModifyVLANProperty(TeamVlanId(1, 1), NewVlan(time)); }},
    {"RemoveVLAN", [](CQuillet& q, unsigned time) { return q.RemoveVLAN(TeamVlanId(1, 1 + time)); }},
    {"EnumerateISCSIAdapters", OfMachine<&CQuillet::EnumerateISCSIAdapters>},
};

/// What a client cannot do without the machine: all but what an enumeration has brought already, what a class
/// that is known tells, and what an answer has said.
unsigned Needed(const std::vector<simulator::JournalEntry>& calls) {
    return static_cast<unsigned>(std::count_if(calls.begin(), calls.end(), [](const auto& call) {
        const auto path = wmi::ObjectPath::Parse(call.target);
        const bool isOfClass = call.operation == Operation::GetObject && path && path->IsClass();
        return !isOfClass && call.operation != Operation::Next &&
               call.operation != Operation::GetCallStatus && call.operation != Operation::GetResultObject;
    }));
}

bool IsOfClass(const std::string& request) {
    return request.find("/cim-xml/2/cim-schema/2/*") != std::string::npos;
}

/// A machine and the same one behind a server.
struct Pair {
    Pair()
        : machine(simulator::Machine::FromText(tests::MachineText(kSize), "benchmark.mof")),
          served(machine->Copy()) {}

    std::shared_ptr<simulator::Machine> machine;
    ServedMachine served;
};

void Tell(benchmark::State& state, const std::vector<simulator::JournalEntry>& calls,
          const std::vector<std::string>& first, std::size_t again) {
    state.counters["calls"] = static_cast<double>(calls.size());
    state.counters["needed"] = Needed(calls);
    state.counters["first"] = static_cast<double>(first.size());
    state.counters["classes"] = static_cast<double>(std::count_if(first.begin(), first.end(), IsOfClass));
    state.counters["again"] = static_cast<double>(again);
}

void Connecting(benchmark::State& state) {
    Pair pair;
    const auto connect = [&](std::shared_ptr<wmi::Host> host) {
        const wmi::ClassRegistration registration(std::move(host));
        CQuillet quillet;
        if (FAILED(quillet.InitQuillet())) {
            state.SkipWithError("the library can not connect");
        }
        quillet.UninitQuillet();
    };
    for (auto _ : state) {
        connect(simulator::HostOf(pair.machine));
        const auto calls = pair.machine->Calls().ProviderCalls();
        const auto remote = wsman::MakeRemoteHost(OptionsFor(pair.served.Port()));
        pair.served.Record();
        connect(remote);
        const std::vector<std::string> first = pair.served.Recorded();
        pair.served.Record();
        connect(remote);
        Tell(state, calls, first, pair.served.Recorded().size());
    }
}

void Requests(benchmark::State& state, const Row& row) {
    Pair pair;
    CQuillet here;
    CQuillet there;
    const auto connect = [](CQuillet& quillet, std::shared_ptr<wmi::Host> host) {
        const wmi::ClassRegistration registration(std::move(host));
        return SUCCEEDED(quillet.InitQuillet());
    };
    if (!connect(here, simulator::HostOf(pair.machine)) ||
        !connect(there, wsman::MakeRemoteHost(OptionsFor(pair.served.Port())))) {
        state.SkipWithError("the library can not connect");
    }
    const auto run = [&](CQuillet& quillet, unsigned time) {
        if (FAILED(row.run(quillet, time))) {
            state.SkipWithError("the operation fails");
        }
    };
    for (auto _ : state) {
        pair.machine->Calls().Clear();
        run(here, 1);
        const auto calls = pair.machine->Calls().ProviderCalls();
        pair.served.Record();
        run(there, 1);
        const std::vector<std::string> first = pair.served.Recorded();
        pair.served.Record();
        run(there, 2);
        Tell(state, calls, first, pair.served.Recorded().size());
    }
    here.UninitQuillet();
    there.UninitQuillet();
}

} // namespace

void RegisterWsmanRequests() {
    benchmark::RegisterBenchmark("requests/InitQuillet", Connecting)->Iterations(1);
    for (const Row& row : kRows) {
        benchmark::RegisterBenchmark((std::string("requests/") + row.name).c_str(), Requests, row)
            ->Iterations(1);
    }
}

} // namespace quillet::bench
