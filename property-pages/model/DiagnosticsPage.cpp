// Diagnostic tests: running them one after the other, and what came of them.
#include "model/DiagnosticsPage.h"

#include <algorithm>

namespace quillet::pages {

namespace {

bool Runs(const std::optional<TestResult>& result) {
    return result && result->state == TestState::InProgress;
}

std::wstring OutcomeOf(const TestResult& result) {
    return result.result.empty() ? Say(TextId::CodeNumber, {std::to_wstring(result.code)}) : result.result;
}

void AddLine(std::wstring& text, const std::wstring& line) {
    if (!line.empty()) {
        text += (text.empty() ? L"" : L"\r\n") + line;
    }
}

void AddMembers(std::wstring& text, const TestResult& package, const std::wstring& indentation) {
    for (const TestResult& member : package.members) {
        const std::wstring& name = member.title.empty() ? member.name : member.title;
        AddLine(text, indentation + Say(TextId::DiagMember, {name, OutcomeOf(member)}));
        if (!member.description.empty()) {
            AddLine(text, indentation + L"    " + member.description);
        }
        AddMembers(text, member, indentation + L"    ");
    }
}

std::wstring MessagesOf(const TestResult& result) {
    std::wstring numbers;
    for (const TestMessage& message : result.messages) {
        numbers += (numbers.empty() ? L"" : L", ") + std::to_wstring(message.id);
    }
    return numbers.empty() ? std::wstring() : Say(TextId::DiagMessages, {numbers});
}

} // namespace

Job DiagnosticsPage::Reading() {
    return
        [page = Self<DiagnosticsPage>(), id = m_adapter](Session& session, const Asking& asking) -> Answer {
            std::wstring notice;
            std::vector<ListedTest> tests;
            for (Diagnostic& test : ReadWhatThereIs([&] { return session.Diagnostics(id); }, notice)) {
                if (asking.Stop().stop_requested()) {
                    break;
                }
                auto result = ReadIfThere([&] { return session.ReadResult(test.id); }, notice);
                if (result && *result && (*result)->isPackage) {
                    // With the result itself come those members that could be read; this says why others
                    // could not.
                    const auto read = [&] { return session.ReadPackageResults(test.id, **result); };
                    (*result)->members = ReadIfThere(read, notice).value_or((*result)->members);
                }
                if (result && *result && (*result)->stateText.empty() && notice.empty()) {
                    notice = Say(TextId::DiagNoWords);
                }
                tests.push_back({std::move(test), result ? std::move(*result) : std::nullopt});
            }
            return [page, tests = std::move(tests), notice] { page->Take(tests, notice); };
        };
}

void DiagnosticsPage::Take(std::vector<ListedTest> tests, std::wstring notice) {
    m_tests = std::move(tests);
    m_chosen = m_chosen < m_tests.size() ? m_chosen : 0;
    std::erase_if(m_waiting, [this](const DiagnosticId& test) { return Find(test) == nullptr; });
    if (m_running && Find(*m_running) == nullptr) {
        m_running.reset();
    }
    const auto running =
        std::ranges::find_if(m_tests, [](const ListedTest& each) { return Runs(each.result); });
    if (!m_running && running != m_tests.end()) {
        // Started before the page was opened: it is followed, and can be stopped.
        Begin(running->test.id);
        m_isSeen = true;
    }
    NoteRead(std::move(notice));
}

void DiagnosticsPage::Choose(std::size_t index) {
    if (index < m_tests.size() && index != m_chosen) {
        m_chosen = index;
        NoteChange();
    }
}

ListedTest* DiagnosticsPage::Find(const DiagnosticId& test) {
    const auto found = std::ranges::find(m_tests, test, [](const ListedTest& each) { return each.test.id; });
    return found == m_tests.end() ? nullptr : &*found;
}

const ListedTest* DiagnosticsPage::ChosenTest() const noexcept {
    return m_chosen < m_tests.size() ? &m_tests[m_chosen] : nullptr;
}

bool DiagnosticsPage::IsWaiting(const DiagnosticId& test) const {
    return std::ranges::find(m_waiting, test) != m_waiting.end();
}

std::wstring DiagnosticsPage::State(const ListedTest& of) const {
    if (IsWaiting(of.test.id)) {
        return Say(TextId::DiagWaiting);
    }
    if (!of.result) {
        return Say(TextId::DiagNeverRun);
    }
    return of.result->stateText.empty()
               ? Say(TextId::CodeNumber, {std::to_wstring(static_cast<std::int32_t>(of.result->state))})
               : of.result->stateText;
}

std::wstring DiagnosticsPage::Outcome(const ListedTest& of) {
    return !of.result || Runs(of.result) ? std::wstring() : OutcomeOf(*of.result);
}

std::wstring DiagnosticsPage::Details() const {
    const ListedTest* chosen = ChosenTest();
    if (chosen == nullptr || !chosen->result) {
        return {};
    }
    const TestResult& result = *chosen->result;
    std::wstring details;
    AddLine(details, result.title);
    AddLine(details, Outcome(*chosen));
    AddLine(details, result.description);
    AddLine(details, MessagesOf(result));
    AddMembers(details, result, L"");
    return details;
}

std::wstring DiagnosticsPage::Progress() const {
    if (!IsBusy()) {
        return Say(m_tests.empty() && IsRead() ? TextId::DiagNone : TextId::DiagBefore);
    }
    if (!m_running) {
        return {};
    }
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now() - m_begun).count();
    return Say(m_isStopWanted ? TextId::DiagStopping : TextId::DiagRunning,
               {std::to_wstring(seconds), std::to_wstring(m_waiting.size())});
}

void DiagnosticsPage::Wait(const DiagnosticId& test) {
    if (test != m_running && !IsWaiting(test)) {
        m_waiting.push_back(test);
    }
}

void DiagnosticsPage::Run() {
    if (const ListedTest* chosen = ChosenTest()) {
        Wait(chosen->test.id);
        SetNotice({});
    }
}

void DiagnosticsPage::RunAll() {
    for (const ListedTest& each : m_tests) {
        Wait(each.test.id);
    }
    SetNotice({});
}

void DiagnosticsPage::Stop() {
    m_waiting.clear();
    m_isStopWanted = m_running.has_value();
    NoteChange();
}

std::optional<Job> DiagnosticsPage::NextQuestion() {
    if (m_isAsked || !IsBusy()) {
        return std::nullopt;
    }
    m_isAsked = true;
    if (!m_running) {
        Begin(m_waiting.front());
        m_waiting.pop_front();
        return Starting(*m_running);
    }
    if (m_isStopWanted && !m_isStopAsked) {
        m_isStopAsked = true;
        return Stopping(*m_running);
    }
    return Looking(*m_running);
}

void DiagnosticsPage::Begin(const DiagnosticId& test) {
    m_running = test;
    m_before.reset();
    m_isSeen = false;
    m_isStopWanted = false;
    m_isStopAsked = false;
    m_begun = now();
}

Job DiagnosticsPage::Starting(const DiagnosticId& test) {
    return [page = Self<DiagnosticsPage>(), test, id = m_adapter](Session& session, const Asking&) -> Answer {
        const std::optional<TestResult> before = session.ReadResult(test);
        session.StartDiagnostic(test, id);
        return [page, before, result = session.ReadResult(test)] {
            page->m_before = before;
            page->m_begun = page->now();
            page->Look(result);
        };
    };
}

Job DiagnosticsPage::Looking(const DiagnosticId& test) {
    return [page = Self<DiagnosticsPage>(), test](Session& session, const Asking&) -> Answer {
        return [page, result = session.ReadResult(test)] { page->Look(result); };
    };
}

Job DiagnosticsPage::Stopping(const DiagnosticId& test) {
    return [page = Self<DiagnosticsPage>(), test, id = m_adapter](Session& session, const Asking&) -> Answer {
        session.StopDiagnostic(test, id);
        return [page, result = session.ReadResult(test)] { page->Look(result); };
    };
}

void DiagnosticsPage::Look(const std::optional<TestResult>& result) {
    m_isAsked = false;
    ListedTest* running = m_running ? Find(*m_running) : nullptr;
    if (running == nullptr) {
        return; // it has gone from the list meanwhile
    }
    running->result = result;
    m_isSeen = m_isSeen || Runs(result) || result != m_before;
    if (m_isSeen && !Runs(result)) {
        End({});
    } else if (!m_isSeen && now() - m_begun > Following().patience) {
        // A provider that refuses to start a test does not say so: nothing but the old result is seen.
        End(Say(TextId::DiagNotStarted, {running->test.name}));
    } else {
        NoteChange();
    }
}

void DiagnosticsPage::End(const std::wstring& notice) {
    m_running.reset();
    m_isStopWanted = false;
    if (notice.empty()) {
        NoteChange();
    } else {
        SetNotice(notice);
    }
}

void DiagnosticsPage::Fail(const std::wstring& reason) {
    m_isAsked = false;
    const bool isStopRefused = m_isStopWanted && m_isStopAsked && m_running;
    if (isStopRefused) {
        // The test runs on, and is followed.
        m_isStopWanted = false;
        m_isStopAsked = false;
    } else {
        m_waiting.clear();
        m_running.reset();
    }
    SetNotice(Say(TextId::NotDone, {reason}));
}

} // namespace quillet::pages
