// Reading a boot agent's flash memory against copying the same bytes.
#include "FlashMemory.h"

#include <cstring>
#include <new>

namespace quillet::bench {

namespace {

constexpr std::size_t kBytes = 16u << 20;

/// A machine whose boot agent has the image.
Lab& FlashLab() {
    static const bool kWritten = [] {
        Lab& lab = LabOf({.adapters = 1, .iscsiPorts = 1});
        return WriteFlash(lab.quillet, kBytes);
    }();
    Lab& lab = LabOf({.adapters = 1, .iscsiPorts = 1});
    if (!kWritten) {
        throw std::runtime_error("the flash memory can not be written");
    }
    return lab;
}

void ReadFlash(benchmark::State& state) {
    Lab& lab = FlashLab();
    Measure(state, lab, [&]() -> HRESULT {
        LONG size = 0;
        unsigned char* data = nullptr;
        const HRESULT result = lab.quillet.ReadBootAgentFlash(kBootAgent, size, &data);
        benchmark::DoNotOptimize(data);
        ::operator delete(data);
        return FAILED(result) ? result : size == LONG{kBytes} ? S_OK : E_UNEXPECTED;
    });
    state.SetBytesProcessed(state.iterations() * std::int64_t{kBytes});
}

/// Into a buffer that the caller then owns, as the operation does it.
void CopyBytes(benchmark::State& state) {
    const std::vector<std::uint8_t> image = FlashImage(kBytes);
    for (auto _ : state) {
        void* const data = ::operator new(kBytes);
        std::memcpy(data, image.data(), kBytes);
        benchmark::DoNotOptimize(data);
        benchmark::ClobberMemory();
        ::operator delete(data);
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{kBytes});
}

/// Into one buffer again and again: no page of it is new.
void CopyBytesInPlace(benchmark::State& state) {
    const std::vector<std::uint8_t> image = FlashImage(kBytes);
    std::vector<std::uint8_t> target(kBytes);
    for (auto _ : state) {
        std::memcpy(target.data(), image.data(), kBytes);
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{kBytes});
}

} // namespace

void RegisterFlash() {
    benchmark::RegisterBenchmark("flash/read_16_MiB/library", ReadFlash);
    benchmark::RegisterBenchmark("flash/read_16_MiB/memcpy", CopyBytes);
    benchmark::RegisterBenchmark("flash/read_16_MiB/memcpy_in_place", CopyBytesInPlace);
}

} // namespace quillet::bench
