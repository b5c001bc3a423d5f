// quilletctl diag: the diagnostic tests of an adapter.
#include "app/Answers.h"
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "terminal/Progress.h"
#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <thread>

namespace quilletctl {

namespace {

using Clock = std::chrono::steady_clock;

/// Values of "TestState".
constexpr LONG kFailedState = 3;
constexpr LONG kInProgress = 4;
constexpr LONG kStopped = 5;

/// How often the bar moves.
constexpr auto kFrame = std::chrono::milliseconds(100);
/// How long a test may take to begin, and to stop.
constexpr auto kPatience = std::chrono::seconds(2);

CDiagTests ReadTests(CQuillet& session, const ListedAdapter& adapter) {
    CDiagTests tests;
    ThrowIfRefused(session.EnumerateDiagnostics(ToWide(adapter.path), tests),
                   "list the tests of " + adapter.Called());
    return tests;
}

/// The test of an adapter that a text names: by path, number, name, or the beginning of its name where only
/// one begins so.
CDiagTest FindTest(CQuillet& session, const ListedAdapter& adapter, const std::string& text) {
    const CDiagTests tests = ReadTests(session, adapter);
    std::vector<Named> names;
    for (const CDiagTest* test : tests.m_vecItems) {
        const std::string number = std::to_string(test->m_lTestId);
        const std::string name = ToUtf8(test->m_wsName);
        names.push_back({number, name, {ToUtf8(test->m_wsUniqueID), number, name}});
    }
    const std::optional<std::size_t> found = FindOneNamed(names, text, "tests of " + adapter.Called(),
                                                          {Match::Whole, Match::Beginning, Match::Shortened});
    if (!found) {
        throw UsageError("no test of " + adapter.Called() + " is called \"" + text +
                         "\"; see quilletctl diag list");
    }
    return *tests.m_vecItems[*found];
}

/// What is known of a test; nothing when it never ran.
bool ReadResult(CQuillet& session, const CDiagTest& test, CDiagResult& result) {
    const HRESULT code = session.GetDiagnosticsResult(test.m_wsUniqueID, result);
    ThrowIfRefused(code, "read the result of " + ToUtf8(test.m_wsName));
    return code == S_OK && !result.m_sUniqueID.empty();
}

bool Passed(const CDiagResult& result) {
    return result.m_lResultCode == 0 && result.m_lTestState != kFailedState &&
           result.m_lTestState != kStopped && result.m_lTestState != kInProgress;
}

bool IsTheSame(const CDiagResult& left, const CDiagResult& right) {
    return left.m_lTestState == right.m_lTestState && left.m_lResultCode == right.m_lResultCode &&
           left.m_wsResult == right.m_wsResult && left.m_wsDescription == right.m_wsDescription &&
           left.m_vecTestResultIds == right.m_vecTestResultIds &&
           left.m_vecTestResultAttributes == right.m_vecTestResultAttributes;
}

Json Messages(const CDiagResult& result) {
    Json messages = Json::array();
    for (std::size_t i = 0; i < result.m_vecTestResultIds.size(); ++i) {
        const bool known = i < result.m_vecTestResultAttributes.size();
        messages.push_back(Json{{"id", result.m_vecTestResultIds[i]},
                                {"attribute", known ? Json(result.m_vecTestResultAttributes[i]) : Json()}});
    }
    return messages;
}

Json Members(const CDiagResult& package) {
    Json members = Json::array();
    for (const CDiagResult& member : package.m_vecPackageResults) {
        members.push_back(Json{{"name", ToUtf8(member.m_wsDiagnosticName)},
                               {"title", ToUtf8(member.m_wsTitle)},
                               {"result", ToUtf8(member.m_wsResult)},
                               {"description", ToUtf8(member.m_wsDescription)},
                               {"resultCode", member.m_lResultCode},
                               {"members", Members(member)}});
    }
    return members;
}

Json AsJson(const CDiagTest& test, const CDiagResult& result) {
    return Json{{"test", ToUtf8(test.m_wsName)},
                {"testId", test.m_lTestId},
                {"passed", Passed(result)},
                {"state", Coded(result.m_lTestState, ToUtf8(result.m_wsStateText))},
                {"title", ToUtf8(result.m_wsTitle)},
                {"result", ToUtf8(result.m_wsResult)},
                {"description", ToUtf8(result.m_wsDescription)},
                {"resultCode", result.m_lResultCode},
                {"messages", Messages(result)},
                {"members", Members(result)}};
}

void AddMembers(Table& table, const CDiagResult& package, const std::string& indentation) {
    for (const CDiagResult& member : package.m_vecPackageResults) {
        const std::wstring& name =
            member.m_wsDiagnosticName.empty() ? member.m_wsTitle : member.m_wsDiagnosticName;
        table.AddRow(
            {indentation + ToUtf8(name), std::to_string(member.m_lResultCode), ToUtf8(member.m_wsResult)});
        AddMembers(table, member, indentation + "  ");
    }
}

void Print(Invocation& run, const CDiagTest& test, const CDiagResult& result) {
    if (run.WantsJson()) {
        run.Print(AsJson(test, result));
        return;
    }
    std::string messages;
    for (const LONG id : result.m_vecTestResultIds) {
        messages += (messages.empty() ? "" : ", ") + std::to_string(id);
    }
    Sheet sheet;
    sheet.Add("Test", ToUtf8(test.m_wsName))
        .Add("State", ToUtf8(result.m_wsStateText))
        .Add("Result", ToUtf8(result.m_wsResult))
        .Add("Details", ToUtf8(result.m_wsDescription))
        .Add("Code", std::to_string(result.m_lResultCode))
        .Add("Messages", messages);
    sheet.Print(run.Screen());
    if (!result.m_vecPackageResults.empty()) {
        run.Out() << '\n';
        Table table({{"MEMBER", Fit::MayShorten}, {"CODE", Fit::Whole}, {"RESULT", Fit::MayShorten}});
        AddMembers(table, result, "");
        table.Print(run.Screen());
    }
}

class ListTests final : public AdapterCommand {
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        const CDiagTests tests = ReadTests(run.Session(), adapter);
        Json list = Json::array();
        Table table({{"ID", Fit::Whole}, {"TEST", Fit::MayShorten}, {"GROUP", Fit::Whole}});
        for (const CDiagTest* test : tests.m_vecItems) {
            const std::string name = ToUtf8(test->m_wsName);
            list.push_back(Json{{"name", name},
                                {"testId", test->m_lTestId},
                                {"group", test->m_bGrouped ? Json(test->m_lGroupId) : Json()},
                                {"path", ToUtf8(test->m_wsUniqueID)}});
            table.AddRow({std::to_string(test->m_lTestId), name,
                          test->m_bGrouped ? std::to_string(test->m_lGroupId) : "-"});
        }
        return AnswerList(run, Json{{"tests", std::move(list)}}, table, "no tests");
    }
};

/// A command about one test of one adapter.
class TestCommand : public AdapterCommand {
  public:
    void Declare(Syntax& syntax) override {
        AdapterCommand::Declare(syntax);
        syntax.Argument("test", m_test,
                        "The test: its number, the beginning of its name, or its object path");
    }

  protected:
    static void Stop(CQuillet& session, const ListedAdapter& adapter, const CDiagTest& test) {
        ThrowIfRefused(session.StopDiagnostics(test.m_wsUniqueID, ToWide(adapter.path)),
                       "stop " + ToUtf8(test.m_wsName));
    }

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) final {
        return RunForTest(adapter, FindTest(run.Session(), adapter, m_test), run);
    }
    virtual ExitStatus RunForTest(const ListedAdapter& adapter, const CDiagTest& test, Invocation& run) = 0;

    std::string m_test;
};

class RunTest final : public TestCommand {
  public:
    void Declare(Syntax& syntax) override {
        TestCommand::Declare(syntax);
        syntax.Number("--interval", m_interval, 10, 60000,
                      "Milliseconds from one look at the test to the next");
    }

  private:
    ExitStatus RunForTest(const ListedAdapter& adapter, const CDiagTest& test, Invocation& run) override {
        CQuillet& session = run.Session();
        // Before the start: a test that was started is stopped, whenever the person loses patience.
        run.HoldInterrupts();
        CDiagResult before;
        ReadResult(session, test, before);
        ThrowIfRefused(session.RunDiagnostics(test.m_wsUniqueID, ToWide(adapter.path)),
                       "start " + ToUtf8(test.m_wsName));
        CDiagResult result;
        if (!Follow(adapter, test, run, before, result)) {
            // The provider has no result of the test: it was not started.
            throw Refusal("follow " + ToUtf8(test.m_wsName), WBEM_S_FALSE,
                          "the provider has no result of it");
        }
        Print(run, test, result);
        return Passed(result) ? ExitStatus::Done : ExitStatus::Findings;
    }

    /// Looks at the test until it has ended. False when there is nothing to look at. Throws NotTaken when
    /// nothing but the result from before is ever seen: a refused start shows in no other way.
    bool Follow(const ListedAdapter& adapter, const CDiagTest& test, Invocation& run,
                const CDiagResult& before, CDiagResult& result) const {
        CQuillet& session = run.Session();
        Progress progress(run.Screen());
        const auto start = Clock::now();
        bool stopping = false;
        bool isSeen = false;
        for (;;) {
            result = CDiagResult();
            if (!ReadResult(session, test, result)) {
                return false;
            }
            isSeen = isSeen || result.m_lTestState == kInProgress || !IsTheSame(before, result);
            if (result.m_lTestState != kInProgress && isSeen) {
                return true;
            }
            if (!isSeen && Clock::now() - start > kPatience) {
                throw NotTaken("run " + ToUtf8(test.m_wsName), "its result is the one from before");
            }
            // Until it is seen to run it is looked at closely, so that not all of the run falls between two
            // looks.
            const std::chrono::milliseconds interval(m_interval);
            const auto next = Clock::now() + (isSeen ? interval : std::min(interval, kFrame));
            do {
                if (!stopping && !run.MayGoOn()) {
                    stopping = true;
                    Stop(session, adapter, test);
                    break;
                }
                Show(progress, run, result, Clock::now() - start);
                std::this_thread::sleep_for(std::min<Clock::duration>(kFrame, next - Clock::now()));
            } while (Clock::now() < next);
        }
    }

    static void Show(Progress& progress, const Invocation& run, const CDiagResult& result,
                     Clock::duration elapsed) {
        if (run.WantsJson()) {
            return;
        }
        std::string text = ToUtf8(result.m_wsStateText);
        if (run.Screen().outIsTerminal) {
            text += "  " + std::to_string(std::chrono::duration_cast<std::chrono::seconds>(elapsed).count()) +
                    " s";
        }
        progress.Show(text);
    }

    std::uint32_t m_interval = 500;
};

class StopTest final : public TestCommand {
    ExitStatus RunForTest(const ListedAdapter& adapter, const CDiagTest& test, Invocation& run) override {
        run.HoldInterrupts();
        Stop(run.Session(), adapter, test);
        CDiagResult result;
        // A test may need a moment to come to its end.
        const auto until = Clock::now() + kPatience;
        while (ReadResult(run.Session(), test, result) && result.m_lTestState == kInProgress &&
               Clock::now() < until) {
            std::this_thread::sleep_for(kFrame);
        }
        if (run.WantsJson()) {
            run.Print(AsJson(test, result));
        } else {
            run.Out() << Printable(ToUtf8(test.m_wsName)) << ": " << Printable(ToUtf8(result.m_wsStateText))
                      << '\n';
        }
        if (result.m_lTestState == kInProgress) {
            throw NotTaken("stop " + ToUtf8(test.m_wsName), "it still runs");
        }
        return ExitStatus::Done;
    }
};

} // namespace

void AddDiagCommands(CommandTree& tree) {
    tree.AddNoun("diag", "Diagnostic tests of an adapter")
        .Query("list", "List the tests", std::make_unique<ListTests>())
        .Verb("run", "Run a test and tell its outcome; Ctrl-C stops it", std::make_unique<RunTest>())
        .Verb("stop", "Stop a test", std::make_unique<StopTest>());
}

} // namespace quilletctl
