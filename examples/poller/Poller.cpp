// Watches every adapter's link from a thread of its own per adapter, all through one session, and tells each
// change. Simulated, it pulls the cable of the first adapter, plugs it in again, and ends; otherwise it ends
// with the input.
#include "../Simulation.h"
#include "../Text.h"

#include <quillet/client.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace {

/// What the watching threads tell, one line at a time.
class Reporter {
  public:
    void Tell(const std::wstring& adapter, bool hasLink) {
        const std::lock_guard lock(m_mutex);
        std::printf("%s: %s\n", Utf8(adapter).c_str(), hasLink ? "link" : "no link");
        std::fflush(stdout);
        ++m_told;
        m_changed.notify_all();
    }
    /// Waits until so many lines were told; false when that takes too long.
    bool WaitFor(unsigned lines) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(30), [&] { return m_told >= lines; });
    }

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    unsigned m_told = 0;
};

/// One adapter's thread. The session is shared, and asks nothing of the thread.
void Watch(quillet::Session& session, const quillet::Adapter& adapter, const std::stop_token& stop,
           Reporter& reporter) {
    std::optional<bool> had;
    while (!stop.stop_requested()) {
        try {
            const bool has = session.ReadState(adapter.id).speed != quillet::LinkSpeed::None;
            if (has != had) {
                reporter.Tell(adapter.name, has);
            }
            had = has;
        } catch (const quillet::Error&) {
            // One that cannot be read at the moment, say while its driver is updated, is asked again later.
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

int Run(const Simulation& simulation) {
    quillet::Session session;
    const std::vector<quillet::Adapter> adapters = session.Adapters();
    Reporter reporter;
    std::vector<std::jthread> threads; // which stop when they go
    threads.reserve(adapters.size());
    for (const quillet::Adapter& adapter : adapters) {
        threads.emplace_back([&](const std::stop_token& stop) { Watch(session, adapter, stop, reporter); });
    }
    if (!simulation.machine) {
        while (std::getchar() != EOF) {
        }
        return 0;
    }
    const auto count = static_cast<unsigned>(threads.size());
    const std::wstring& device = adapters.front().deviceId;
    bool told = reporter.WaitFor(count);
    simulation.machine->SetHardwareStatus(device, 2); // the cable is out
    told = reporter.WaitFor(count + 1) && told;
    simulation.machine->SetHardwareStatus(device, 3); // and in again
    return reporter.WaitFor(count + 2) && told ? 0 : 1;
}

} // namespace

int main(int count, char** arguments) {
    try {
        const quillet::ComUsage com; // for the simulator
        return Run(Simulation(count, arguments));
    } catch (const quillet::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
