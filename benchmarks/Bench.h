// What the benchmarks share: COM, machines that are made once, the trace log, and the loop that is timed.
#pragma once

#include "PlainClient.h"
#include "SizedMachine.h"

#include <quillet-simulator/Machine.h>
#include <quillet/Quillet.h>
#include <quillet/client.h>

#include <benchmark/benchmark.h>

#include <malloc.h>
#include <memory>
#include <optional>
#include <string>

namespace quillet::bench {

using tests::AdapterId;
using tests::MachineSize;
using tests::TeamId;

/// COM for a thread while it runs.
class Apartment {
  public:
    Apartment() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

/// The allocator keeps what was freed: otherwise it would return the memory of a flash image, or of a page of
/// objects, to the system after each one, and what is measured would be how fast the kernel hands out empty
/// pages.
inline void KeepFreedMemory() {
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
}

/// A simulated machine with three connections to it: the library's, one made by hand, and the client layer's.
struct Lab {
    explicit Lab(const std::string& text);
    ~Lab();

    std::shared_ptr<simulator::Machine> machine;
    CQuillet quillet;
    PlainClient plain;
    std::optional<Session> session;
};

/// The lab of that size. It is made when it is first asked for and lives as long as the program, so that no
/// repetition pays for it.
Lab& LabOf(const MachineSize& size);
/// Lets go of all of them.
void CloseLabs();

enum class Tracing { Off, On };
/// Switches the library's trace log. Its file lies in a directory of the program's own and begins anew.
void SetTracing(Tracing tracing);
/// A directory for this run's files; it goes with the program.
std::wstring ScratchFile(const wchar_t* name);

/// Times an operation. The journal that the simulator keeps is emptied now and then while the clock stands,
/// so that it neither grows without bound nor is freed on the operation's account. Tells the number of
/// provider calls of one run as the counter "calls".
/// @param operation a function without arguments that returns an HRESULT
template <class Operation>
void Measure(benchmark::State& state, simulator::Journal& journal, Operation operation) {
    constexpr std::size_t kLongest = 20000;
    journal.Clear();
    if (operation() != S_OK) {
        state.SkipWithError("the operation fails");
        return;
    }
    const std::size_t calls = journal.Size();
    const std::size_t period = calls == 0 ? 0 : kLongest / calls + 1;
    std::size_t runs = 0;
    HRESULT worst = S_OK;
    for (auto _ : state) {
        const HRESULT result = operation();
        worst = result != S_OK ? result : worst;
        if (++runs == period) {
            state.PauseTiming();
            journal.Clear();
            runs = 0;
            state.ResumeTiming();
        }
    }
    journal.Clear();
    if (worst != S_OK) {
        state.SkipWithError("the operation fails");
    }
    state.counters["calls"] = static_cast<double>(calls);
}
template <class Operation>
void Measure(benchmark::State& state, Lab& lab, Operation operation) {
    Measure(state, lab.machine->Calls(), std::move(operation));
}

// Each file of benchmarks lists its own; the names say what is compared with what.
void RegisterOperations();
void RegisterTrace();
void RegisterThreads();
void RegisterGrowth();
void RegisterSimulator();
void RegisterFlash();

} // namespace quillet::bench
