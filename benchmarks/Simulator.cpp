// The simulator by itself: loading machines, and finding things in a small and in a large one.
#include "Bench.h"

#include <algorithm>
#include <fstream>
#include <iterator>
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

/// So many small instances of a class of their own.
constexpr unsigned kSmall = 1000;
std::string SmallInstances() {
    std::string text = "class Bench_Small { [Key] uint32 Number; string Name; uint32 Size; boolean On; };\n";
    for (unsigned number = 1; number <= kSmall; ++number) {
        const std::string digits = std::to_string(number);
        text += "instance of Bench_Small { Number = " + digits + "; Name = \"Instance " + digits +
                "\"; Size = " + digits + "00; On = TRUE; };\n";
    }
    return text;
}

/// From a text to a machine. The schema is there already, as for all machines of a process but its first.
void Compile(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        const auto machine = simulator::Machine::FromText(text, "benchmark.mof");
        benchmark::DoNotOptimize(machine);
    }
}

void CompileSmall(benchmark::State& state) {
    Compile(state, SmallInstances());
}

constexpr const char* kBuiltIn = QUILLET_SIMULATOR_DIRECTORY "/machines/builtin.mof";

void CompileBuiltIn(benchmark::State& state) {
    std::ifstream file(kBuiltIn, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (text.empty()) {
        state.SkipWithError("the built-in machine's text is not there");
        return;
    }
    Compile(state, text);
}

/// A start of a program: in a namespace of its own a machine has nothing from those before it, neither the
/// schema.
void StartBuiltIn(benchmark::State& state) {
    static unsigned starts = 0;
    for (auto _ : state) {
        simulator::MachineOptions options;
        options.namespaceName = L"ROOT\\Start" + std::to_wstring(++starts);
        const auto machine = simulator::Machine::BuiltIn(options);
        benchmark::DoNotOptimize(machine);
    }
}

/// The same as it would be without the packed form.
void StartFromTexts(benchmark::State& state) {
    for (auto _ : state) {
        simulator::Repository repository(L"BENCH", L"ROOT\\MarloLUM2");
        for (const char* text : {QUILLET_SIMULATOR_DIRECTORY "/schema/zorel.mof",
                                 QUILLET_SIMULATOR_DIRECTORY "/schema/simulator.mof", kBuiltIn}) {
            CompileMofFile(repository, text);
        }
        const simulator::Repository copy(repository);
        benchmark::DoNotOptimize(copy.Generation());
    }
}

void EnumerateSmall(benchmark::State& state) {
    Lab lab(tests::MachineText({}) + SmallInstances());
    const CComBSTR name(L"Bench_Small");
    Measure(state, lab, [&] {
        CComPtr<IEnumWbemClassObject> objects;
        HRESULT result = lab.plain.Services()->CreateInstanceEnum(name.m_str, 0, nullptr, &objects);
        unsigned found = 0;
        while (result == S_OK) {
            CComPtr<IWbemClassObject> object;
            ULONG count = 0;
            result = objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &count);
            found += count;
        }
        return result == WBEM_S_FALSE && found == kSmall ? S_OK : E_FAIL;
    });
}

void GetSmall(benchmark::State& state) {
    Lab lab(tests::MachineText({}) + SmallInstances());
    std::vector<CComBSTR> paths;
    for (unsigned number = 1; number <= kSmall; ++number) {
        paths.emplace_back((L"Bench_Small.Number=" + std::to_wstring(number)).c_str());
    }
    std::shuffle(paths.begin(), paths.end(), std::mt19937(1)); // the same order every time
    std::size_t next = 0;
    Measure(state, lab, [&] {
        next = next + 1 == paths.size() ? 0 : next + 1;
        CComPtr<IWbemClassObject> object;
        return lab.plain.Services()->GetObject(paths[next].m_str, 0, nullptr, &object, nullptr);
    });
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
    benchmark::RegisterBenchmark("simulator/compile_1000_small", CompileSmall)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("simulator/enumerate_1000_small", EnumerateSmall);
    benchmark::RegisterBenchmark("simulator/get_1_of_1000_small", GetSmall);
    benchmark::RegisterBenchmark("simulator/compile_builtin", CompileBuiltIn)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("simulator/start_builtin", StartBuiltIn)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("simulator/start_builtin_texts", StartFromTexts)
        ->Unit(benchmark::kMillisecond);
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
