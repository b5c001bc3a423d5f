// The diagnostic tests that run on a machine, and what becomes of their results while simulated time passes.
#pragma once

#include <quillet-simulator/Repository.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <set>

namespace quillet::simulator {

/// Results are instances of Zorel_DiagResult, one for each test that has run. Safe for many threads.
class DiagnosticRuns {
  public:
    using Time = std::chrono::milliseconds;

    /// What the provider answers; the numbers are its "ReturnValue".
    enum class Verdict { Done = 0, NotOfThisAdapter = 1, RunsAlready = 2, NotItsResult = 3, DoesNotRun = 4 };

    /// Starts a test, or all tests of a package, one after the other.
    Verdict Start(Repository& store, const std::wstring& test, Time now);
    /// Stops a test; of a package, every test that has not ended.
    Verdict Stop(Repository& store, const std::wstring& test, Time now);
    /// Whether any test runs, cheaply.
    bool Busy() const noexcept { return m_busy; }
    /// Writes into the results what has happened until now.
    void CatchUp(Repository& store, Time now);

  private:
    struct Run {
        std::wstring test;
        std::wstring package; ///< whose results show it; empty outside a package
        bool isPackage = false;
        Time start{0};
        Time end{0};
        bool begun = false;
        InstancePtr outcome; ///< how it will end; null: as tests end that nobody said anything about
    };

    bool Runs(const std::wstring& test) const;
    static Time Plan(const Repository& store, const std::wstring& test, const std::wstring& package,
                     Time start, std::vector<Run>& planned, std::set<std::wstring>& taken);
    static void Begin(Repository& store, Run& run);
    static void End(Repository& store, const Run& run);
    void Advance(Repository& store, Time now);

    std::mutex m_mutex;
    std::vector<Run> m_runs; ///< a package behind its members
    std::atomic<bool> m_busy{false};
};

} // namespace quillet::simulator
