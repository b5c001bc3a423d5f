// A trace line against a line of a well-known logging library that also flushes every line.
#include "Bench.h"

#include "LumDebug.h"

#include <quillet-wmi/Text.h>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace quillet::bench {

namespace {

void Formatted(benchmark::State& state) {
    SetTracing(Tracing::On);
    CLumDebug& log = LumTrace();
    for (auto _ : state) {
        log.Print(L"Entering CQuillet::%s", L"EnumerateAdapters");
    }
    SetTracing(Tracing::Off);
}

/// What tracing costs those who do not want it.
void SwitchedOff(benchmark::State& state) {
    SetTracing(Tracing::Off);
    CLumDebug& log = LumTrace();
    for (auto _ : state) {
        log.Print(L"Entering CQuillet::%s", L"EnumerateAdapters");
        benchmark::ClobberMemory();
    }
}

/// @param pattern null: the library's own
void Spdlog(benchmark::State& state, const char* pattern) {
    // For many threads, as the trace log is.
    const auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(
        simulator::ToUtf8(ScratchFile(L"spdlog.txt")), true);
    spdlog::logger log("Quillet", sink);
    log.flush_on(spdlog::level::trace);
    if (pattern != nullptr) {
        log.set_pattern(pattern);
    }
    for (auto _ : state) {
        log.info("Entering CQuillet::{}", "EnumerateAdapters");
    }
}

} // namespace

void RegisterTrace() {
    benchmark::RegisterBenchmark("trace/line/quillet", Formatted);
    benchmark::RegisterBenchmark("trace/line/spdlog", Spdlog, nullptr);
    // The head of a trace line, as far as the patterns go: there is none for the performance counter.
    benchmark::RegisterBenchmark("trace/line/spdlog_same_head", Spdlog,
                                 "%n\tPID:%P\tTID:%t\t%H:%M:%S.%e\t%v");
    benchmark::RegisterBenchmark("trace/switched_off/quillet", SwitchedOff);
}

} // namespace quillet::bench
