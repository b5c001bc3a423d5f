// An operation of the library against the same provider calls written by hand, and the client layer's against
// the library's.
#include "Bench.h"

namespace quillet::bench {

namespace {

using Use = PlainClient::Use;

constexpr MachineSize kAdapters{.adapters = 1000};
constexpr MachineSize kSettings{.adapters = 1, .settings = 60};

/// One operation, done by the library and by hand.
struct Contest {
    const char* name;
    MachineSize size;
    HRESULT (*library)(Lab&);
    HRESULT (*client)(Lab&);
    HRESULT (*plain)(Lab&, Use);
};

/// The adapter that every machine has, as the operations name it and by its object ID.
const std::wstring kFirstAdapter = AdapterId(1);
constexpr const wchar_t* kFirstObjectId = L"{A1}";
const quillet::AdapterId kFirst(kFirstAdapter);

HRESULT Enumerated(std::size_t count, std::size_t expected) {
    return count == expected ? S_OK : E_UNEXPECTED;
}

const Contest kContests[] = {
    {"enumerate_1000_adapters", kAdapters,
     [](Lab& lab) {
         CAdapters adapters;
         const HRESULT result = lab.quillet.EnumerateAdapters(adapters);
         return FAILED(result) ? result : Enumerated(adapters.m_vecItems.size(), 1000);
     },
     [](Lab& lab) { return Enumerated(lab.session->Adapters().size(), 1000); },
     [](Lab& lab, Use use) {
         std::vector<PlainAdapter> adapters;
         const HRESULT result = lab.plain.EnumerateAdapters(adapters, use);
         return FAILED(result) ? result : Enumerated(adapters.size(), 1000);
     }},
    {"read_60_settings", kSettings,
     [](Lab& lab) {
         CSettings settings;
         const HRESULT result = lab.quillet.GetAdapterSettings(kFirstAdapter, settings);
         return FAILED(result) ? result : Enumerated(settings.m_vecItems.size(), 60);
     },
     [](Lab& lab) { return Enumerated(lab.session->Settings(kFirst).size(), 60); },
     [](Lab& lab, Use use) {
         std::vector<PlainSetting> settings;
         const HRESULT result = lab.plain.GetAdapterSettings(kFirstObjectId, settings, use);
         return FAILED(result) ? result : Enumerated(settings.size(), 60);
     }},
    {"method_call", kSettings, [](Lab& lab) { return lab.quillet.IdentifyAdapter(kFirstAdapter, 10); },
     [](Lab& lab) {
         lab.session->Identify(kFirst, std::chrono::seconds(10));
         return HRESULT(S_OK);
     },
     [](Lab& lab, Use use) {
         LONG verdict = -1;
         const HRESULT result = lab.plain.IdentifyAdapter(kFirstAdapter, 10, verdict, use);
         return FAILED(result) ? result : Enumerated(static_cast<std::size_t>(verdict), 0);
     }},
};

void Library(benchmark::State& state, const Contest& contest, Tracing tracing) {
    Lab& lab = LabOf(contest.size);
    SetTracing(tracing);
    Measure(state, lab, [&] { return contest.library(lab); });
    SetTracing(Tracing::Off);
}

void Client(benchmark::State& state, const Contest& contest) {
    Lab& lab = LabOf(contest.size);
    Measure(state, lab, [&] { return contest.client(lab); });
}

void Plain(benchmark::State& state, const Contest& contest, Use use) {
    Lab& lab = LabOf(contest.size);
    Measure(state, lab, [&] { return contest.plain(lab, use); });
}

} // namespace

void RegisterOperations() {
    for (const Contest& contest : kContests) {
        const std::string name = std::string("operation/") + contest.name + '/';
        benchmark::RegisterBenchmark((name + "library").c_str(), Library, contest, Tracing::Off);
        benchmark::RegisterBenchmark((name + "library_traced").c_str(), Library, contest, Tracing::On);
        benchmark::RegisterBenchmark((name + "client").c_str(), Client, contest);
        benchmark::RegisterBenchmark((name + "plain").c_str(), Plain, contest, Use::AnyThread);
        benchmark::RegisterBenchmark((name + "plain_one_thread").c_str(), Plain, contest, Use::ThisThread);
    }
}

} // namespace quillet::bench
