// Which teams have their switch tested, and since when.
#pragma once

#include <quillet-wmi/Model.h>

#include <chrono>

namespace quillet::simulator {

/// The numbers of "TestSwitchConfiguration". A test takes simulated time; then it has passed or failed.
enum SwitchTestCommand : std::int64_t { SwitchTestStart = 0, SwitchTestQuery = 1, SwitchTestStop = 2 };
enum SwitchTestStatus : std::int64_t {
    SwitchTestNotStarted = 0,
    SwitchTestRunning = 1,
    SwitchTestPassed = 2,
    SwitchTestFailed = 3,
    SwitchTestStopped = 4
};
inline constexpr std::chrono::seconds kSwitchTestTime{2};

/// The tests of one machine. The caller serialises the calls.
class SwitchTests {
  public:
    void Start(const std::wstring& team, std::chrono::milliseconds now) { m_tests[team] = {now, false}; }
    /// A test that is over cannot be stopped any more.
    void Stop(const std::wstring& team, std::chrono::milliseconds now) {
        const auto test = m_tests.find(team);
        if (test != m_tests.end() && now - test->second.started < kSwitchTestTime) {
            test->second.stopped = true;
        }
    }
    void Forget(const std::wstring& team) { m_tests.erase(team); }
    /// Passed stands for one that ran to its end, whatever it found.
    SwitchTestStatus State(const std::wstring& team, std::chrono::milliseconds now) const {
        const auto test = m_tests.find(team);
        if (test == m_tests.end()) {
            return SwitchTestNotStarted;
        }
        if (test->second.stopped) {
            return SwitchTestStopped;
        }
        return now - test->second.started < kSwitchTestTime ? SwitchTestRunning : SwitchTestPassed;
    }

  private:
    struct Test {
        std::chrono::milliseconds started;
        bool stopped;
    };
    std::map<std::wstring, Test, NameLess> m_tests;
};

} // namespace quillet::simulator
