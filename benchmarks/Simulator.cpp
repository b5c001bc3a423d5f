// The simulator by itself: loading a large machine, and finding things in a small and in a large one.
#include "Bench.h"

#include <algorithm>
#include <random>

namespace quillet::bench {

namespace {

using ATL::CComBSTR;
using ATL::CComPtr;

/// With its VLAN service, four settings and a test, which is associated with it, an adapter is eight
/// instances.
MachineSize WithInstances(unsigned count) {
    return {.adapters = count / 8, .settings = 4, .tests = 1, .teams = count / 80};
}

void Load(benchmark::State& state) {
    const std::string text = tests::MachineText(WithInstances(10000));
    std::size_t instances = 0;
    for (auto _ : state) {
        const auto machine = simulator::Machine::FromText(text, "benchmark.mof");
        state.PauseTiming();
        instances = machine->Store().AllInstances().size();
        state.ResumeTiming();
    }
    state.counters["instances"] = static_cast<double>(instances);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

/// One answer of a machine.
using Question = HRESULT (*)(Lab&, unsigned adapter);

HRESULT OnlyObject(IEnumWbemClassObject* objects) {
    CComPtr<IWbemClassObject> object;
    ULONG count = 0;
    return objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &count);
}

HRESULT FetchByPath(Lab& lab, unsigned adapter) {
    const CComBSTR path(AdapterId(adapter).c_str());
    CComPtr<IWbemClassObject> object;
    return lab.plain.Services()->GetObject(path.m_str, 0, nullptr, &object, nullptr);
}

HRESULT Query(Lab& lab, const std::wstring& text) {
    const CComBSTR language(L"WQL");
    const CComBSTR query(text.c_str());
    CComPtr<IEnumWbemClassObject> objects;
    const HRESULT result = lab.plain.Services()->ExecQuery(language.m_str, query.m_str, 0, nullptr, &objects);
    return FAILED(result) ? result : OnlyObject(objects);
}

HRESULT QueryByKey(Lab& lab, unsigned adapter) {
    return Query(lab, L"SELECT * FROM Zorel_PhysicalEthernetAdapter WHERE DeviceID = \"{A" +
                          std::to_wstring(adapter) + L"}\"");
}

HRESULT QueryByAssociation(Lab& lab, unsigned adapter) {
    return Query(lab, L"ASSOCIATORS OF {" + AdapterId(adapter) + L"} WHERE ResultClass = Zorel_DiagTest");
}

/// Asks about every adapter in turn, in an order in which no neighbour helps.
void Ask(benchmark::State& state, Question question) {
    const MachineSize size = WithInstances(static_cast<unsigned>(state.range(0)));
    Lab& lab = LabOf(size);
    std::vector<unsigned> adapters(size.adapters);
    for (std::size_t index = 0; index < adapters.size(); ++index) {
        adapters[index] = static_cast<unsigned>(index) + 1;
    }
    std::shuffle(adapters.begin(), adapters.end(), std::mt19937(1)); // the same order every time
    std::size_t next = 0;
    Measure(state, lab, [&] {
        next = next + 1 == adapters.size() ? 0 : next + 1;
        return question(lab, adapters[next]);
    });
}

} // namespace

void RegisterSimulator() {
    benchmark::RegisterBenchmark("simulator/load_10000_instances", Load)->Unit(benchmark::kMillisecond);
    struct Asked {
        const char* name;
        Question question;
    };
    for (const Asked& asked : {Asked{"fetch_by_path", FetchByPath}, Asked{"query_by_key", QueryByKey},
                               Asked{"query_by_association", QueryByAssociation}}) {
        benchmark::RegisterBenchmark((std::string("simulator/") + asked.name).c_str(), Ask, asked.question)
            ->Arg(100)
            ->Arg(10000);
    }
}

} // namespace quillet::bench
