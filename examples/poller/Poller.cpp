// Watches every adapter's link from a thread of its own per adapter, all through one session, and tells each
// change. Simulated, it pulls the cable of the first adapter, plugs it in again, and ends; otherwise it ends
// with the input.
#include "../Simulation.h"
#include "../Text.h"

#include <quillet/Quillet.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using Speed = CAdapterDynamicInfo::LinkSpeed;

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

/// One adapter's thread. The session is shared; what belongs to the thread is COM itself.
void Watch(CQuillet& quillet, const CAdapter& adapter, const std::atomic<bool>& stop, Reporter& reporter) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        return;
    }
    bool known = false;
    bool had = false;
    while (!stop) {
        CAdapter now;
        // An adapter that cannot be read at the moment, say while its driver is updated, is asked again
        // later.
        if (SUCCEEDED(quillet.GetAdapterDynamicInfo(adapter.m_wsAdapterID, now))) {
            const bool has = now.m_pAdapterDynamicInfo != nullptr &&
                             now.m_pAdapterDynamicInfo->m_eLinkSpeed != Speed::LinkSpeedNone;
            if (!known || has != had) {
                reporter.Tell(adapter.m_wsName, has);
            }
            known = true;
            had = has;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    CoUninitialize();
}

int Run(CQuillet& quillet, Simulation& simulation) {
    CAdapters adapters;
    if (FAILED(quillet.EnumerateAdapters(adapters))) {
        std::fputs("the adapters cannot be listed\n", stderr);
        return 1;
    }
    std::atomic<bool> stop = false;
    Reporter reporter;
    std::vector<std::thread> threads;
    for (const CAdapter* adapter : adapters.m_vecItems) {
        threads.emplace_back([&, adapter] { Watch(quillet, *adapter, stop, reporter); });
    }
    bool told = true;
    if (simulation.machine) {
        const auto count = static_cast<unsigned>(threads.size());
        const std::wstring device = adapters.m_vecItems.front()->m_wsDeviceID;
        told = reporter.WaitFor(count);
        simulation.machine->SetHardwareStatus(device, 2); // the cable is out
        told = reporter.WaitFor(count + 1) && told;
        simulation.machine->SetHardwareStatus(device, 3); // and in again
        told = reporter.WaitFor(count + 2) && told;
    } else {
        while (std::getchar() != EOF) {
        }
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    return told ? 0 : 1;
}

} // namespace

int main(int count, char** arguments) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        return 1;
    }
    int status = 1;
    {
        Simulation simulation(count, arguments);
        CQuillet quillet;
        if (SUCCEEDED(quillet.InitQuillet())) {
            status = Run(quillet, simulation);
        }
        quillet.UninitQuillet();
    }
    CoUninitialize();
    return status;
}
