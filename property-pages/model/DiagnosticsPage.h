// Diagnostic tests: running them one after the other, and what came of them.
#pragma once

#include "model/Page.h"

#include <chrono>
#include <deque>

namespace quillet::pages {

/// A test of the list.
struct ListedTest {
    Diagnostic test;
    std::optional<TestResult> result; ///< nothing: it never ran
};

/// The page "Diagnostics" of an adapter. A test runs inside the provider; the page asks how it is from time
/// to time.
class DiagnosticsPage : public Page {
  public:
    using Clock = std::chrono::steady_clock;

    explicit DiagnosticsPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    Job Reading() override;

    const std::vector<ListedTest>& Tests() const noexcept { return m_tests; }
    /// The test that is chosen, by its place in the list.
    std::size_t Chosen() const noexcept { return m_chosen; }
    void Choose(std::size_t index);
    /// The state of a test in words: "waiting", or the provider's.
    std::wstring State(const ListedTest& of) const;
    /// What came of it, in a line.
    static std::wstring Outcome(const ListedTest& of);
    /// All that is known of the chosen test: causes, solutions, the members of a package.
    std::wstring Details() const;
    /// What runs and how long it has; what to know before where nothing does.
    std::wstring Progress() const;

    /// Whether a test runs or waits.
    bool IsBusy() const noexcept { return m_running || !m_waiting.empty(); }
    bool IsStopping() const noexcept { return m_isStopWanted; }
    void Run();    ///< the chosen test, after those that wait
    void RunAll(); ///< all of them
    void Stop();   ///< the test that runs, and those that wait do not

    /// What is to be asked next, now and from time to time while it is busy; nothing while a question is
    /// under way. Whoever takes it asks it, and tells Fail() of its failure.
    std::optional<Job> NextQuestion();
    void Fail(const std::wstring& reason);

    /// What time it is.
    std::function<Clock::time_point()> now = Clock::now;

  private:
    void Take(std::vector<ListedTest> tests, std::wstring notice);
    void Begin(const DiagnosticId& test);
    void Look(const std::optional<TestResult>& result);
    void End(const std::wstring& notice);
    ListedTest* Find(const DiagnosticId& test);
    const ListedTest* ChosenTest() const noexcept;
    bool IsWaiting(const DiagnosticId& test) const;
    void Wait(const DiagnosticId& test);

    Job Starting(const DiagnosticId& test);
    Job Looking(const DiagnosticId& test);
    Job Stopping(const DiagnosticId& test);

    AdapterId m_adapter;
    std::vector<ListedTest> m_tests;
    std::size_t m_chosen = 0;
    std::deque<DiagnosticId> m_waiting;
    std::optional<DiagnosticId> m_running;
    std::optional<TestResult> m_before; ///< what was known before it was started
    bool m_isSeen = false;              ///< whether it was seen to run
    bool m_isAsked = false;
    bool m_isStopWanted = false;
    bool m_isStopAsked = false;
    Clock::time_point m_begun;
};

} // namespace quillet::pages
