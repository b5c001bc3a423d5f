// Diagnostic tests and their results as values.
#pragma once

#include <quillet/client/Id.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace quillet {

/// A test that an adapter offers (Zorel_DiagTest).
struct Diagnostic {
    DiagnosticId id;
    std::wstring name;                 ///< the display name ("Name")
    std::int32_t number = 0;           ///< "TestId"
    std::optional<std::int32_t> group; ///< "GroupId", of a test that belongs to a group ("Grouped")
};

/// "TestState". Others may come.
enum class TestState : std::int32_t { Failed = 3, InProgress = 4, Stopped = 5 };

/// A message of a test's outcome.
struct TestMessage {
    std::int32_t id = 0;                   ///< "TestResultIds"
    std::optional<std::int32_t> attribute; ///< "TestResultsAttr"
    friend bool operator==(const TestMessage&, const TestMessage&) = default;
};

/// What is known of a test while it runs and after it has ended (Zorel_DiagResult).
struct TestResult {
    std::wstring path;        ///< the result's object path ("__PATH")
    std::wstring name;        ///< of the test ("DiagnosticName")
    std::int32_t number = 0;  ///< "TestId" of the test
    TestState state{};        ///< "TestState"
    std::wstring stateText;   ///< the state in the language of the connection
    std::int32_t code = 0;    ///< the outcome as a number ("ResultCode")
    std::wstring title;       ///< "Title"
    std::wstring result;      ///< the outcome in words ("Result")
    std::wstring description; ///< details of the outcome ("Description")
    std::wstring packageName; ///< the package that it belongs to ("PackageName")
    bool isPackage = false;   ///< whether it stands for the results of a package of tests ("IsPackage")
    std::vector<TestMessage> messages;
    std::vector<TestResult> members; ///< of a package; they have no number, state or messages
    friend bool operator==(const TestResult&, const TestResult&) = default;

    /// Whether it has ended, and well.
    bool Passed() const noexcept;
};

/// How following a test ended.
enum class RunEnd {
    Ended,      ///< the test ran to its end, or was stopped
    NoResult,   ///< the provider has no result of it: it was not started
    NothingSeen ///< nothing but the result from before was seen: it was not started
};

/// A test that was run and followed.
struct [[nodiscard]] FollowedRun {
    RunEnd end{};
    TestResult result; ///< the last one seen
};

/// How `Session::RunDiagnostic` follows a test.
struct Following {
    /// From one look at the test to the next.
    std::chrono::milliseconds interval{500};
    /// How long a test may take to begin. One that the provider refuses to start does not tell so: nothing is
    /// seen of it but the result from before.
    std::chrono::milliseconds patience{2000};
    /// Told what every look sees. What it throws ends the following; the test runs on.
    std::function<void(const TestResult&)> seen;
    /// A request to stop stops the test; it is followed until it has ended.
    std::stop_token stop;
};

} // namespace quillet
