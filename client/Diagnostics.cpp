// Diagnostic tests: starting, following, stopping.
#include "Operations.h"

#include <algorithm>
#include <thread>

namespace quillet {

namespace {

using Clock = std::chrono::steady_clock;

Diagnostic FromRecord(CDiagTest&& record) {
    return {DiagnosticId(std::move(record.m_wsUniqueID)), std::move(record.m_wsName), record.m_lTestId,
            record.m_bGrouped ? std::optional<std::int32_t>(record.m_lGroupId) : std::nullopt};
}

TestResult FromRecord(CDiagResult&& record) {
    TestResult result;
    result.path = std::move(record.m_sUniqueID);
    result.name = std::move(record.m_wsDiagnosticName);
    result.number = record.m_lTestId;
    result.state = static_cast<TestState>(record.m_lTestState);
    result.stateText = std::move(record.m_wsStateText);
    result.code = record.m_lResultCode;
    result.title = std::move(record.m_wsTitle);
    result.result = std::move(record.m_wsResult);
    result.description = std::move(record.m_wsDescription);
    result.packageName = std::move(record.m_wsPackageName);
    result.isPackage = record.m_bIsPackage;
    for (std::size_t i = 0; i < record.m_vecTestResultIds.size(); ++i) {
        TestMessage message{record.m_vecTestResultIds[i], std::nullopt};
        if (i < record.m_vecTestResultAttributes.size()) {
            message.attribute = record.m_vecTestResultAttributes[i];
        }
        result.messages.push_back(message);
    }
    for (CDiagResult& member : record.m_vecPackageResults) {
        result.members.push_back(FromRecord(std::move(member)));
    }
    return result;
}

/// Sleeps, but not through a request to stop. It looks for one instead of being woken: where the system has
/// no futex, libstdc++'s semaphores, and the stop_callback that is made of one, can lose a wake-up.
void Wait(std::chrono::milliseconds time, const std::stop_token& stop) {
    const Clock::time_point end = Clock::now() + time;
    constexpr Clock::duration kLook = std::chrono::milliseconds(10);
    for (auto now = Clock::now(); now < end && !stop.stop_requested(); now = Clock::now()) {
        std::this_thread::sleep_for(stop.stop_possible() ? std::min(end - now, kLook) : end - now);
    }
}

} // namespace

bool TestResult::Passed() const noexcept {
    return code == 0 && state != TestState::Failed && state != TestState::Stopped &&
           state != TestState::InProgress;
}

std::vector<Diagnostic> Session::Diagnostics(const AdapterId& adapter) {
    return ReadList<CDiagTests>(
        "EnumerateDiagnostics", adapter.Path(),
        [&](CDiagTests& tests) { return m_state->quillet.EnumerateDiagnostics(adapter.Path(), tests); },
        [](CDiagTest&& record) { return FromRecord(std::move(record)); });
}

void Session::StartDiagnostic(const DiagnosticId& test, const AdapterId& adapter) {
    Do("RunDiagnostics", test.Path(),
       [&] { return m_state->quillet.RunDiagnostics(test.Path(), adapter.Path()); });
}

void Session::StopDiagnostic(const DiagnosticId& test, const AdapterId& adapter) {
    Do("StopDiagnostics", test.Path(),
       [&] { return m_state->quillet.StopDiagnostics(test.Path(), adapter.Path()); });
}

std::optional<TestResult> Session::ReadResult(const DiagnosticId& test) {
    CDiagResult record;
    const HRESULT result = DoInParts(
        "GetDiagnosticsResult", test.Path(),
        [&] { return m_state->quillet.GetDiagnosticsResult(test.Path(), record); },
        [&] { return FromRecord(std::move(record)); });
    const bool isThere = result == S_OK && !record.m_sUniqueID.empty();
    return isThere ? std::optional(FromRecord(std::move(record))) : std::nullopt;
}

std::vector<TestResult> Session::ReadPackageResults(const DiagnosticId& test, const TestResult& package) {
    CDiagResult record;
    record.m_sUniqueID = package.path;
    record.m_wsPackageName = package.packageName;
    record.m_wsDiagnosticName = package.name;
    record.m_bIsPackage = package.isPackage;
    const auto members = [&record] { return FromRecord(std::move(record)).members; };
    DoInParts(
        "GetDiagnosticsPackageResults", test.Path(),
        [&] { return m_state->quillet.GetDiagnosticsPackageResults(test.Path(), record); }, members);
    return members();
}

FollowedRun Session::RunDiagnostic(const DiagnosticId& test, const AdapterId& adapter,
                                   const Following& following) {
    // Until it is seen to run it is looked at closely, so that not all of the run falls between two looks.
    constexpr std::chrono::milliseconds kClosely{100};
    const std::optional<TestResult> before = ReadResult(test);
    StartDiagnostic(test, adapter);
    const Clock::time_point start = Clock::now();
    bool isSeen = false;
    bool isStopped = false;
    for (;;) {
        std::optional<TestResult> result = ReadResult(test);
        if (!result) {
            return {RunEnd::NoResult, {}};
        }
        if (following.seen) {
            following.seen(*result);
        }
        isSeen = isSeen || result->state == TestState::InProgress || before != result;
        if (isSeen && result->state != TestState::InProgress) {
            return {RunEnd::Ended, std::move(*result)};
        }
        if (!isSeen && Clock::now() - start > following.patience) {
            return {RunEnd::NothingSeen, std::move(*result)};
        }
        if (!isStopped && following.stop.stop_requested()) {
            isStopped = true;
            StopDiagnostic(test, adapter);
        }
        const bool isClose = !isSeen || isStopped; // a test that was told to stop soon does
        const auto interval = isClose ? std::min(following.interval, kClosely) : following.interval;
        // After the request there is nothing left to wake it.
        Wait(interval, isStopped ? std::stop_token() : following.stop);
    }
}

} // namespace quillet
