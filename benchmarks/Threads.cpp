// Two threads on one object against one thread.
#include "Bench.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <latch>
#include <pthread.h>
#include <sched.h>
#include <thread>
#include <vector>

namespace quillet::bench {

namespace {

/// Machines that are asked in the same way, one for each thread.
constexpr MachineSize kSizes[] = {{.adapters = 100, .settings = 60},
                                  {.adapters = 100, .settings = 60, .iscsiPorts = 1}};

struct Work {
    const char* name;
    int times; ///< runs of each thread in one go, about a millisecond: seldom is a shared machine's
               ///< second core free for longer
    HRESULT (*run)(CQuillet&, const std::wstring& adapter);
    bool apart = false; ///< each thread has an object and a machine of its own
};

HRESULT EnumerateAdapters(CQuillet& quillet, const std::wstring&) {
    CAdapters adapters;
    return quillet.EnumerateAdapters(adapters);
}

HRESULT IdentifyAdapter(CQuillet& quillet, const std::wstring& adapter) {
    return quillet.IdentifyAdapter(adapter, 10);
}

const Work kWorks[] = {
    {"enumerate_100_adapters", 4, EnumerateAdapters},
    {"enumerate_100_adapters_apart", 4, EnumerateAdapters, true},
    {"read_60_settings", 4,
     [](CQuillet& quillet, const std::wstring& adapter) {
         CSettings settings;
         return quillet.GetAdapterSettings(adapter, settings);
     }},
    {"method_call", 120, IdentifyAdapter},
    {"method_call_apart", 120, IdentifyAdapter, true},
    // What there is to gain: two threads that share nothing at all.
    {"nothing_shared", 150,
     [](CQuillet&, const std::wstring&) -> HRESULT {
         std::uint64_t number = 1;
         for (int step = 0; step < 5000; ++step) {
             number = number * 6364136223846793005u + 1442695040888963407u;
             benchmark::DoNotOptimize(number);
         }
         return S_OK;
     }},
    {"basic_information", 250,
     [](CQuillet& quillet, const std::wstring& id) {
         CAdapter adapter;
         return quillet.GetAdapterBasicInfo(id, adapter);
     }},
};

/// Keeps the calling thread on a core of its own: where the scheduler puts two new threads on one core and
/// parts them some milliseconds later, that is not what is measured here.
void StayOnCore(unsigned index) {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(index % std::thread::hardware_concurrency(), &cores);
    pthread_setaffinity_np(pthread_self(), sizeof(cores), &cores); // no more than a help
}

/// Each thread does all the work: twice the threads, twice the work. What is timed begins with the first
/// thread and ends with the last.
void Threads(benchmark::State& state, const Work& work, unsigned count) {
    using Clock = std::chrono::steady_clock;
    struct Span {
        Clock::time_point begin, end;
    };
    std::vector<Lab*> labs(count);
    for (unsigned index = 0; index < count; ++index) {
        labs[index] = &LabOf(kSizes[work.apart ? index : 0]);
    }
    std::atomic<int> failures{0};
    for (auto _ : state) {
        for (Lab* lab : labs) {
            lab->machine->Calls().Clear();
        }
        std::latch ready(count);
        std::vector<Span> spans(count);
        std::vector<std::thread> threads;
        for (unsigned index = 0; index < count; ++index) {
            // Each has an adapter of its own, as the threads of a client that watches several do.
            threads.emplace_back(
                [&, index, adapter = AdapterId(index + 1), &lab = *labs[index], &span = spans[index]] {
                    StayOnCore(index);
                    const Apartment apartment;
                    const auto run = [&](int times) {
                        for (int time = 0; time < times; ++time) {
                            if (work.run(lab.quillet, adapter) != S_OK) {
                                ++failures;
                            }
                        }
                    };
                    run(work.times / 4 + 1); // a new thread's caches and memory are cold
                    ready.arrive_and_wait();
                    const Clock::time_point begin = Clock::now();
                    run(work.times);
                    span = {begin, Clock::now()};
                });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        Span whole = spans.front();
        for (const Span& span : spans) {
            whole.begin = std::min(whole.begin, span.begin);
            whole.end = std::max(whole.end, span.end);
        }
        state.SetIterationTime(std::chrono::duration<double>(whole.end - whole.begin).count());
    }
    for (Lab* lab : labs) {
        lab->machine->Calls().Clear();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * work.times * count);
    if (failures != 0) {
        state.SkipWithError("an operation fails");
    }
}

} // namespace

void RegisterThreads() {
    for (const Work& work : kWorks) {
        for (const unsigned count : {1u, 2u}) {
            const std::string name = std::string("threads/") + work.name + '/' + std::to_string(count);
            benchmark::RegisterBenchmark(name.c_str(), Threads, work, count)->UseManualTime();
        }
    }
}

} // namespace quillet::bench
