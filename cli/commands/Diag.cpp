// quilletctl diag: the diagnostic tests of an adapter.
#include "commands/AdapterCommand.h"
#include "commands/Commands.h"
#include "names/ObjectPath.h"
#include "terminal/Progress.h"
#include "terminal/Sheet.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace quilletctl {

namespace {

using Clock = std::chrono::steady_clock;

using quillet::Diagnostic;
using quillet::TestResult;
using quillet::TestState;

/// How often the bar moves.
constexpr auto kLookAgain = std::chrono::milliseconds(100);
/// How long a test may take to stop.
constexpr auto kStopPatience = std::chrono::seconds(2);

std::vector<Diagnostic> ReadTests(quillet::Session& session, const ListedAdapter& adapter) {
    return Attempt("list the tests of " + adapter.Called(), [&] { return session.Diagnostics(adapter.id); });
}

/// The test of an adapter that a text names: by path, number, name, or the beginning of its name where only
/// one begins so.
Diagnostic FindTest(quillet::Session& session, const ListedAdapter& adapter, const std::string& text) {
    const std::vector<Diagnostic> tests = ReadTests(session, adapter);
    std::vector<Named> names;
    for (const Diagnostic& test : tests) {
        const std::string number = std::to_string(test.number);
        const std::string name = ToUtf8(test.name);
        names.push_back({number, name, {PathOf(test.id), number, name}});
    }
    const std::optional<std::size_t> found = FindOneNamed(names, text, "tests of " + adapter.Called(),
                                                          {Match::Whole, Match::Beginning, Match::Shortened});
    if (!found) {
        throw UsageError("no test of " + adapter.Called() + " is called \"" + text +
                         "\"; see quilletctl diag list");
    }
    return tests[*found];
}

Json Messages(const TestResult& result) {
    Json messages = Json::array();
    for (const quillet::TestMessage& message : result.messages) {
        messages.push_back(
            Json{{"id", message.id}, {"attribute", message.attribute ? Json(*message.attribute) : Json()}});
    }
    return messages;
}

Json MembersAsJson(const TestResult& package) {
    Json members = Json::array();
    for (const TestResult& member : package.members) {
        members.push_back(Json{{"name", ToUtf8(member.name)},
                               {"title", ToUtf8(member.title)},
                               {"result", ToUtf8(member.result)},
                               {"description", ToUtf8(member.description)},
                               {"resultCode", member.code},
                               {"members", MembersAsJson(member)}});
    }
    return members;
}

/// The state in the provider's words.
std::string StateText(const TestResult& result) {
    return result.stateText.empty() ? UnknownText(static_cast<std::int32_t>(result.state))
                                    : ToUtf8(result.stateText);
}

Json ResultAsJson(const Diagnostic& test, const TestResult& result) {
    return Json{{"test", ToUtf8(test.name)},
                {"testId", test.number},
                {"passed", result.Passed()},
                {"state", Coded(static_cast<std::int32_t>(result.state), StateText(result))},
                {"title", ToUtf8(result.title)},
                {"result", ToUtf8(result.result)},
                {"description", ToUtf8(result.description)},
                {"resultCode", result.code},
                {"messages", Messages(result)},
                {"members", MembersAsJson(result)}};
}

/// The outcome in the provider's words, with its number.
std::string OutcomeText(const TestResult& result) {
    return result.result.empty() ? UnknownText(result.code)
                                 : ToUtf8(result.result) + " (" + std::to_string(result.code) + ')';
}

void AddMembers(Table& table, const TestResult& package, const std::string& indentation) {
    for (const TestResult& member : package.members) {
        const std::wstring& name = member.name.empty() ? member.title : member.name;
        table.AddRow({indentation + ToUtf8(name), OutcomeText(member)});
        AddMembers(table, member, indentation + "  ");
    }
}

void Print(Invocation& run, const Diagnostic& test, const TestResult& result) {
    if (run.WantsJson()) {
        run.Print(ResultAsJson(test, result));
        return;
    }
    std::string messages;
    for (const quillet::TestMessage& message : result.messages) {
        messages += (messages.empty() ? "" : ", ") + UnknownText(message.id, L"message");
    }
    Sheet sheet;
    sheet.Add("Test", ToUtf8(test.name))
        .Add("State", StateText(result))
        .Add("Result", OutcomeText(result))
        .Add("Details", ToUtf8(result.description))
        .Add("Messages", messages);
    sheet.Print(run.Screen());
    if (!result.members.empty()) {
        run.Out() << '\n';
        Table table({{"MEMBER", Fit::MayShorten}, {"RESULT", Fit::MayShorten}});
        AddMembers(table, result, "");
        table.Print(run.Screen());
    }
}

class ListTests final : public AdapterListCommand {
  public:
    ListTests() : AdapterListCommand({{"ID"}, {"TEST", Fit::MayShorten}, {"GROUP"}}) {}

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) override {
        List list = NewList();
        for (const Diagnostic& test : ReadTests(run.Session(), adapter)) {
            const std::string name = ToUtf8(test.name);
            list.AddRow({std::to_string(test.number), name, test.group ? std::to_string(*test.group) : ""},
                        Json{{"name", name},
                             {"testId", test.number},
                             {"group", test.group ? Json(*test.group) : Json()},
                             {"path", PathOf(test.id)}});
        }
        return list.Answer(run, Under("tests"), "no tests");
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

  private:
    ExitStatus RunFor(const ListedAdapter& adapter, Invocation& run) final {
        return RunForTest(adapter, FindTest(run.Session(), adapter, m_test), run);
    }
    virtual ExitStatus RunForTest(const ListedAdapter& adapter, const Diagnostic& test, Invocation& run) = 0;

    std::string m_test;
};

/// While a test is followed: keeps the bar moving, and passes on a request to end.
class Watch {
  public:
    explicit Watch(Invocation& run)
        : m_run(run), m_progress(run.Screen()), m_thread([this](const std::stop_token& end) { Go(end); }) {}
    ~Watch() {
        m_thread.request_stop();
        m_thread.join();
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    /// Requested when the test is to be stopped.
    std::stop_token Stop() const { return m_stop.get_token(); }
    void Show(const TestResult& result) {
        if (result.state != TestState::InProgress) {
            return; // the answer tells how it ended, and how it ended before is nobody's question
        }
        const std::lock_guard lock(m_mutex);
        m_text = ToUtf8(result.stateText);
        Draw();
    }

  private:
    void Go(const std::stop_token& end) {
        std::unique_lock lock(m_mutex);
        while (!m_changed.wait_for(lock, end, kLookAgain, [&end] { return end.stop_requested(); })) {
            if (!m_run.MayGoOn()) {
                m_stop.request_stop();
            }
            if (m_text) {
                Draw();
            }
        }
    }
    void Draw() {
        if (m_run.WantsJson()) {
            return;
        }
        m_progress.Show(*m_text);
    }

    Invocation& m_run;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    std::optional<std::string> m_text; ///< nothing before the first look
    Progress m_progress;
    std::stop_source m_stop;
    std::jthread m_thread;
};

class RunTest final : public TestCommand {
  public:
    void Declare(Syntax& syntax) override {
        TestCommand::Declare(syntax);
        syntax.Number("--interval", m_interval, 10, 60000,
                      "Milliseconds from one look at the test to the next");
    }

  private:
    ExitStatus RunForTest(const ListedAdapter& adapter, const Diagnostic& test, Invocation& run) override {
        const std::string name = ToUtf8(test.name);
        // Before the start: a test that was started is stopped, whenever the person loses patience.
        run.BeginChanges({"run " + name + " on " + adapter.Called()});
        const quillet::FollowedRun followed = Follow(adapter, test, run);
        switch (followed.end) {
        case quillet::RunEnd::NoResult:
            throw Refusal("follow " + name, WBEM_S_FALSE, "the provider has no result of it");
        case quillet::RunEnd::NothingSeen:
            throw NotTaken("run " + name, "its result is the one from before");
        case quillet::RunEnd::Ended:
            break;
        }
        Print(run, test, followed.result);
        return followed.result.Passed() ? ExitStatus::Done : ExitStatus::Findings;
    }

    quillet::FollowedRun Follow(const ListedAdapter& adapter, const Diagnostic& test, Invocation& run) const {
        Watch watch(run);
        quillet::Following following;
        following.interval = std::chrono::milliseconds(m_interval);
        following.seen = [&watch](const TestResult& result) { watch.Show(result); };
        following.stop = watch.Stop();
        try {
            return run.Session().RunDiagnostic(test.id, adapter.id, following);
        } catch (const quillet::Error& failure) {
            const char* asked = failure.Operation() == "RunDiagnostics"    ? "start "
                                : failure.Operation() == "StopDiagnostics" ? "stop "
                                                                           : "read the result of ";
            throw Refusal(asked + ToUtf8(test.name), failure.Code());
        }
    }

    std::uint32_t m_interval = 500;
};

class StopTest final : public TestCommand {
    ExitStatus RunForTest(const ListedAdapter& adapter, const Diagnostic& test, Invocation& run) override {
        quillet::Session& session = run.Session();
        const std::string name = ToUtf8(test.name);
        run.BeginChanges({"stop " + name + " on " + adapter.Called()});
        Attempt("stop " + name, [&] { session.StopDiagnostic(test.id, adapter.id); });
        // A test may need a moment to come to its end.
        const auto until = Clock::now() + kStopPatience;
        const auto read = [&] {
            return Attempt("read the result of " + name, [&] { return session.ReadResult(test.id); });
        };
        std::optional<TestResult> result = read();
        while (result && result->state == TestState::InProgress && Clock::now() < until) {
            std::this_thread::sleep_for(kLookAgain);
            result = read();
        }
        const TestResult last = result.value_or(TestResult());
        if (run.WantsJson()) {
            run.Print(ResultAsJson(test, last));
        } else {
            run.Out() << Printable(name) << ": " << Printable(StateText(last)) << '\n';
        }
        if (last.state == TestState::InProgress) {
            throw NotTaken("stop " + name, "it still runs");
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
