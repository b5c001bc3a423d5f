// The program: COM, the labs and the trace log around Google Benchmark's own main.
#include "Bench.h"

#include "LumDebug.h"

#include <quillet-wmi/Text.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <stdexcept>

namespace quillet::bench {

namespace {

namespace fs = std::filesystem;

/// A directory of the process's own.
class Scratch {
  public:
    Scratch()
        : m_path(fs::temp_directory_path() / ("quillet-bench-" + std::to_string(GetCurrentProcessId()))) {
        fs::create_directories(m_path);
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    const fs::path& Path() const { return m_path; }

  private:
    fs::path m_path;
};

const Scratch& Directory() {
    static const Scratch kScratch;
    return kScratch;
}

std::map<MachineSize, std::unique_ptr<Lab>>& Labs() {
    static std::map<MachineSize, std::unique_ptr<Lab>> labs;
    return labs;
}

void Require(HRESULT result, const char* what) {
    if (FAILED(result)) {
        throw std::runtime_error(what);
    }
}

} // namespace

Lab::Lab(const std::string& text) : machine(simulator::Machine::FromText(text, "benchmark.mof")) {
    const simulator::Registration registration(machine);
    Require(registration.Result(), "the machine can not be registered");
    Require(quillet.InitQuillet(), "the library can not connect");
    Require(plain.Connect(), "the hand-written client can not connect");
    session.emplace();
}

Lab::~Lab() {
    quillet.UninitQuillet();
}

Lab& LabOf(const MachineSize& size) {
    std::unique_ptr<Lab>& lab = Labs()[size];
    if (!lab) {
        lab = std::make_unique<Lab>(tests::MachineText(size));
    }
    return *lab;
}

void CloseLabs() {
    Labs().clear();
}

std::wstring ScratchFile(const wchar_t* name) {
    return (Directory().Path() / simulator::ToUtf8(name)).wstring();
}

void SetTracing(Tracing tracing) {
    // As "RvSetup" the log takes the file's full name.
    const LONG configured = LumTrace().Configure(
        L"RvSetup", ScratchFile(L"trace.txt").c_str(),
        tracing == Tracing::On ? CLumDebug::LevelAllUnconditional : CLumDebug::LevelOff, false, 0);
    if (tracing == Tracing::On && configured != 0) {
        throw std::runtime_error("the trace log can not be opened");
    }
}

} // namespace quillet::bench

int main(int argc, char** argv) {
    using namespace quillet::bench;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    KeepFreedMemory();
    const Apartment apartment;
    try {
        SetTracing(Tracing::Off);
        RegisterOperations();
        RegisterTrace();
        RegisterThreads();
        RegisterGrowth();
        RegisterSimulator();
        RegisterFlash();
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        CloseLabs();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "benchmarks: %s\n", failure.what());
        return 1;
    }
    return 0;
}
