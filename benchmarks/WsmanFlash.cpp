// Flash memory over the wire: how long it takes, and how much memory client and server need for it.
#include "FlashMemory.h"
#include "WsmanLab.h"

#include <cstdio>
#include <fstream>
#include <iostream>

#include <sys/wait.h>
#include <unistd.h>

namespace quillet::bench {

namespace {

constexpr std::size_t kSize = 16u << 20;

/// The most memory that a process has had so far, in MiB.
double PeakOf(const std::string& process) {
    std::ifstream status("/proc/" + process + "/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            double kibibytes = 0;
            status >> kibibytes;
            return kibibytes / 1024;
        }
    }
    throw std::runtime_error("the kernel does not tell how much memory a process has");
}

/// Another process of this program, which serves a machine until this one lets go of it.
class FlashServer {
  public:
    FlashServer() {
        int toServer[2];
        int fromServer[2];
        if (pipe(toServer) != 0 || pipe(fromServer) != 0 || (m_process = fork()) < 0) {
            throw std::runtime_error("no process can be made");
        }
        if (m_process == 0) {
            dup2(toServer[0], STDIN_FILENO);
            dup2(fromServer[1], STDOUT_FILENO);
            for (const int end : {toServer[0], toServer[1], fromServer[0], fromServer[1]}) {
                close(end);
            }
            execl("/proc/self/exe", "wsman_benchmarks", "--serve-flash", nullptr);
            _exit(1);
        }
        close(toServer[0]);
        close(fromServer[1]);
        m_end = toServer[1];
        std::FILE* told = fdopen(fromServer[0], "r");
        const bool isTold = std::fscanf(told, "%d", &m_port) == 1;
        std::fclose(told);
        if (!isTold) {
            throw std::runtime_error("the server does not begin");
        }
    }
    ~FlashServer() {
        close(m_end);
        waitpid(m_process, nullptr, 0);
    }
    FlashServer(const FlashServer&) = delete;
    FlashServer& operator=(const FlashServer&) = delete;

    int Port() const { return m_port; }
    std::string Process() const { return std::to_string(m_process); }

  private:
    pid_t m_process = -1;
    int m_end = -1;
    int m_port = 0;
};

void ReadFlash(benchmark::State& state) {
    const FlashServer server;
    wsman::RemoteOptions options = OptionsFor(server.Port());
    options.timeout = std::chrono::minutes(10);
    const wsman::Remote remote(options);
    CQuillet quillet;
    LONG size = 0;
    if (FAILED(quillet.InitQuillet())) {
        state.SkipWithError("the library can not connect");
    }
    std::ofstream("/proc/self/clear_refs") << 5; // the peak begins anew
    const double clientBefore = PeakOf("self");
    const double serverBefore = PeakOf(server.Process());
    for (auto _ : state) {
        unsigned char* data = nullptr;
        const HRESULT result = quillet.ReadBootAgentFlash(kBootAgent, size, &data);
        ::operator delete(data);
        if (FAILED(result) || size != LONG{kSize}) {
            state.SkipWithError(("the flash memory can not be read: " + wsman::LastFailure()).c_str());
            break;
        }
    }
    quillet.UninitQuillet();
    state.counters["client_MiB"] = PeakOf("self");
    state.counters["client_before_MiB"] = clientBefore;
    state.counters["server_MiB"] = PeakOf(server.Process());
    state.counters["server_before_MiB"] = serverBefore;
}

} // namespace

int ServeFlash() {
    const auto machine =
        simulator::Machine::FromText(tests::MachineText({.adapters = 1, .iscsiPorts = 1}), "benchmark.mof");
    {
        const simulator::Registration registration(machine);
        CQuillet quillet;
        if (FAILED(quillet.InitQuillet()) || !WriteFlash(quillet, kSize)) {
            return 1;
        }
        quillet.UninitQuillet();
        machine->Calls().Clear();
    }
    const ServedMachine served(machine, {.maxEnvelope = std::size_t{1} << 30});
    std::cout << served.Port() << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
    return 0;
}

void RegisterWsmanFlash() {
    benchmark::RegisterBenchmark("memory/read_16_MiB", ReadFlash)->Iterations(1)->UseRealTime();
}

} // namespace quillet::bench
