#include "machine/DiagnosticRuns.h"

#include <algorithm>

namespace quillet::simulator {

namespace {

// Values of "TestState".
constexpr std::int64_t kUnknown = 0;
constexpr std::int64_t kPassed = 2;
constexpr std::int64_t kFailed = 3;
constexpr std::int64_t kInProgress = 4;
constexpr std::int64_t kStopped = 5;

constexpr const wchar_t* kTestClass = L"Zorel_DiagTest";
constexpr const wchar_t* kResultClass = L"Zorel_DiagResult";
constexpr const wchar_t* kBehaviourClass = L"QuilletSimulator_DiagnosticTest";

constexpr std::int64_t kUsualMilliseconds = 2000;

InstancePtr FindByName(const Repository& store, const wchar_t* className, const std::wstring& name) {
    ObjectPath path{{}, {}, className, {}, false};
    path.keys.push_back({L"Name", Scalar(name)});
    return store.FindInstance(path);
}

/// An identifier that a test's result always gets, so that machines that do the same are the same.
std::wstring ResultId(const std::wstring& test) {
    static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    std::wstring id = L"{";
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (int half = 0; half < 2; ++half) {
        for (const wchar_t character : test) {
            hash = (hash ^ static_cast<char32_t>(character)) * 0x100000001B3u;
        }
        for (int shift = 60; shift >= 0; shift -= 4) {
            const std::size_t length = id.size();
            if (length == 9 || length == 14 || length == 19 || length == 24) {
                id += L'-';
            }
            id += kDigits[(hash >> shift) & 0xF];
        }
    }
    return id + L'}';
}

/// The first result of a test; where there is none, a new one.
Instance ResultOf(const Repository& store, const std::wstring& test) {
    for (const auto& result : store.Instances(kResultClass)) {
        if (result->Text(L"DiagnosticName") == test) {
            return *result;
        }
    }
    Instance result(store.FindClass(kResultClass));
    result.Set(L"Name", Value::Text(ResultId(test)));
    result.Set(L"DiagnosticName", Value::Text(test));
    return result;
}

/// The names of the tests of a package, by its behaviour or by the results of its last run; nothing for a
/// test that is no package.
std::optional<std::vector<std::wstring>> MembersOf(const Repository& store, const std::wstring& test) {
    std::vector<std::wstring> names;
    if (const auto behaviour = FindByName(store, kBehaviourClass, test)) {
        const Value* members = behaviour->Find(L"Members");
        if (members == nullptr || members->IsNull()) {
            return std::nullopt;
        }
        for (const auto& member : members->Elements()) {
            if (const auto* name = member ? std::get_if<std::wstring>(&*member) : nullptr) {
                names.push_back(*name);
            }
        }
        return names;
    }
    if (ResultOf(store, test).Number(L"IsPackage") == 0) {
        return std::nullopt;
    }
    for (const auto& result : store.Instances(kResultClass)) {
        if (result->Text(L"PackageName") == test) {
            names.push_back(result->Text(L"DiagnosticName"));
        }
    }
    return names;
}

/// How the test is going to end: as its behaviour says or, without one, as it ended the last time. Null when
/// there is no telling.
InstancePtr OutcomeOf(const Repository& store, const std::wstring& test, const Instance& earlier) {
    if (auto behaviour = FindByName(store, kBehaviourClass, test)) {
        return behaviour;
    }
    const auto state = earlier.Number(L"TestState");
    return state == kPassed || state == kFailed ? std::make_shared<Instance>(earlier) : nullptr;
}

/// A property of the outcome, where there is one with a value.
Value Of(const InstancePtr& outcome, const wchar_t* property, const Value& otherwise) {
    const Value* value = outcome != nullptr ? outcome->Find(property) : nullptr;
    return value != nullptr && !value->IsNull() ? *value : otherwise;
}

void SetState(Instance& result, std::int64_t state) {
    result.Set(L"TestState", Value::Signed(state));
}

/// How many of a package's results tell of something else than a test that has passed.
std::int64_t NotPassed(const Repository& store, const std::wstring& package) {
    const auto results = store.Instances(kResultClass);
    return std::count_if(results.begin(), results.end(), [&](const InstancePtr& result) {
        return result->Text(L"PackageName") == package && result->Text(L"DiagnosticName") != package &&
               result->Number(L"TestState") != kPassed;
    });
}

} // namespace

bool DiagnosticRuns::Runs(const std::wstring& test) const {
    return std::any_of(m_runs.begin(), m_runs.end(), [&](const Run& run) { return run.test == test; });
}

DiagnosticRuns::Time DiagnosticRuns::Plan(const Repository& store, const std::wstring& test,
                                          const std::wstring& package, Time start, std::vector<Run>& planned,
                                          std::set<std::wstring>& taken) {
    taken.insert(test);
    const auto members = MembersOf(store, test);
    Run run{test, package, members.has_value(), start, start, false, nullptr};
    if (members) {
        run.package = package.empty() ? test : package;
        for (const std::wstring& name : *members) {
            // A test runs once, also in a package that names it twice, or itself.
            if (taken.count(name) == 0 && FindByName(store, kTestClass, name) != nullptr) {
                run.end = Plan(store, name, test, run.end, planned, taken);
            }
        }
    } else {
        const auto behaviour = FindByName(store, kBehaviourClass, test);
        run.end += Time(behaviour != nullptr ? behaviour->Number(L"Milliseconds", kUsualMilliseconds)
                                             : kUsualMilliseconds);
    }
    planned.push_back(run);
    return run.end;
}

/// The result of a test that is to run: its outcome is open again.
void DiagnosticRuns::Begin(Repository& store, Run& run) {
    Instance result = ResultOf(store, run.test);
    run.outcome = OutcomeOf(store, run.test, result);
    // A test that runs alone stays a member of its package.
    if (!run.package.empty()) {
        result.Set(L"PackageName", Value::Text(run.package));
    }
    result.Set(L"IsPackage", Value::Bool(run.isPackage));
    result.Set(L"Title", Of(run.outcome, L"Title", Value::Text(run.test)));
    result.Set(L"Result", Value::Text(L""));
    result.Set(L"Description", Value::Text(L""));
    result.Set(L"ResultCode", Value::Signed(0));
    result.Set(L"TestResultIds", Value(Value::Array{}));
    result.Set(L"TestResultsAttr", Value(Value::Array{}));
    SetState(result, kUnknown);
    store.PutInstance(std::move(result));
}

void DiagnosticRuns::End(Repository& store, const Run& run) {
    const auto& outcome = run.outcome;
    std::int64_t state = outcome != nullptr ? outcome->Number(L"TestState", kPassed) : kPassed;
    std::int64_t code = outcome != nullptr ? outcome->Number(L"ResultCode") : 0;
    Value text = Of(outcome, L"Result", Value());
    if (run.isPackage) {
        const std::int64_t others = NotPassed(store, run.test);
        // What was said about a package holds as long as its tests bear it out.
        if ((others == 0) != (state == kPassed)) {
            state = others == 0 ? kPassed : kFailed;
            code = others;
            text = Value();
        }
    }
    if (text.IsNull()) {
        text = Value::Text(state == kPassed ? L"The test passed." : L"The test failed.");
    }
    Instance result = ResultOf(store, run.test);
    SetState(result, state);
    result.Set(L"ResultCode", Value::Signed(code));
    result.Set(L"Result", text);
    result.Set(L"Description", Of(outcome, L"Description", Value::Text(L"")));
    result.Set(L"TestResultIds", Of(outcome, L"TestResultIds", Value(Value::Array{})));
    result.Set(L"TestResultsAttr", Of(outcome, L"TestResultsAttr", Value(Value::Array{})));
    store.PutInstance(std::move(result));
}

DiagnosticRuns::Verdict DiagnosticRuns::Start(Repository& store, const std::wstring& test, Time now) {
    const std::lock_guard lock(m_mutex);
    Advance(store, now);
    std::vector<Run> planned;
    std::set<std::wstring> taken;
    Plan(store, test, {}, now, planned, taken);
    if (std::any_of(planned.begin(), planned.end(), [&](const Run& run) { return Runs(run.test); })) {
        return Verdict::RunsAlready;
    }
    for (Run& run : planned) {
        Begin(store, run);
    }
    m_runs.insert(m_runs.end(), planned.begin(), planned.end());
    Advance(store, now);
    return Verdict::Done;
}

DiagnosticRuns::Verdict DiagnosticRuns::Stop(Repository& store, const std::wstring& test, Time now) {
    const std::lock_guard lock(m_mutex);
    Advance(store, now);
    if (!Runs(test)) {
        return Verdict::DoesNotRun;
    }
    std::set<std::wstring> stopped{test};
    // Members stand before their package, so the packages within one are found from the end.
    for (auto run = m_runs.rbegin(); run != m_runs.rend(); ++run) {
        if (stopped.count(run->package) != 0) {
            stopped.insert(run->test);
        }
    }
    for (auto run = m_runs.begin(); run != m_runs.end();) {
        if (stopped.count(run->test) == 0) {
            ++run;
            continue;
        }
        Instance result = ResultOf(store, run->test);
        SetState(result, kStopped);
        result.Set(L"Result", Value::Text(L"The test was stopped."));
        store.PutInstance(std::move(result));
        run = m_runs.erase(run);
    }
    m_busy = !m_runs.empty();
    return Verdict::Done;
}

void DiagnosticRuns::CatchUp(Repository& store, Time now) {
    if (m_busy) {
        const std::lock_guard lock(m_mutex);
        Advance(store, now);
    }
}

void DiagnosticRuns::Advance(Repository& store, Time now) {
    for (auto run = m_runs.begin(); run != m_runs.end();) {
        if (now >= run->end) {
            End(store, *run);
            run = m_runs.erase(run);
            continue;
        }
        if (!run->begun && now >= run->start) {
            Instance result = ResultOf(store, run->test);
            SetState(result, kInProgress);
            store.PutInstance(std::move(result));
            run->begun = true;
        }
        ++run;
    }
    m_busy = !m_runs.empty();
}

} // namespace quillet::simulator
