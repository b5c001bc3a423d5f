// The fixture of everything that talks to a provider.
#include "ProviderTest.h"

#include "LeakCheck.h"
#include "Way.h"

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <tuple>

using quillet::simulator::Scalar;

namespace {

/// A context value with its type where that is not plain from the value.
std::string ContextText(const NamedValue& value) {
    std::string text = Narrow(value.name) + "=";
    const Scalar* scalar = value.value.AsScalar();
    if (value.vt == VT_I4 && scalar && std::holds_alternative<std::int64_t>(*scalar)) {
        return text + std::to_string(std::get<std::int64_t>(*scalar));
    }
    if (value.vt == VT_BOOL && scalar && std::holds_alternative<bool>(*scalar)) {
        return text + (std::get<bool>(*scalar) ? "true" : "false");
    }
    return text + "a VARIANT of type " + std::to_string(value.vt);
}

/// Makes the leak check of every program with this fixture count the simulator's objects, too.
[[maybe_unused]] const bool kObjectsAreCounted = [] {
    quillet::tests::RegisterLeakCounter("COM objects of the simulator", Machine::LiveObjects);
    return true;
}();

} // namespace

std::string Code(ResultCode result) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(result.value));
    return text;
}

std::string Narrow(std::wstring_view text) {
    return quillet::simulator::ToUtf8(text);
}

ProviderTest::ProviderTest() {
    Use(Machine::BuiltIn(Options()));
}

ProviderTest::ProviderTest(std::string_view mof) {
    UseText(mof);
}

ProviderTest::~ProviderTest() {
    if (QuilletTestAccess::ServiceCookie(quillet) != 0) {
        quillet.UninitQuillet();
    }
}

MachineOptions ProviderTest::Options() {
    MachineOptions options;
    options.serverName = kServer;
    return options;
}

void ProviderTest::Use(std::shared_ptr<Machine> replacement) {
    m_registration.reset();
    m_way.reset();
    machine = std::move(replacement);
    if (machine) {
        m_way = quillet::tests::WayTo(machine);
        m_registration.emplace(m_way->Host());
        ASSERT_EQ(Code(m_registration->Result()), "0x00000000");
    }
}

void ProviderTest::UseText(std::string_view mof, MachineOptions options) {
    // The same few texts make the machines of thousands of tests, and to compile one takes longer than most.
    static std::map<std::tuple<std::string, std::wstring, std::wstring, bool>, std::shared_ptr<Machine>>
        fresh;
    const auto key =
        std::make_tuple(std::string(mof), options.serverName, options.namespaceName, options.strict);
    auto found = fresh.find(key);
    if (found == fresh.end()) {
        constexpr std::size_t kKept = 8;
        if (fresh.size() == kKept) {
            fresh.clear();
        }
        found = fresh.emplace(key, Machine::FromText(mof, "test.mof", std::move(options))).first;
    }
    Use(found->second->Copy());
}

void ProviderTest::Connect() {
    ASSERT_EQ(Code(quillet.InitQuillet()), "0x00000000");
    ForgetCalls();
    Traced();
}

void ProviderTest::Fail(Operation operation, ResultCode code, const wchar_t* target, unsigned nth) {
    FaultRule rule;
    rule.operation = operation;
    rule.target = target;
    rule.nth = nth;
    rule.code = code.value;
    Inject(std::move(rule));
}

void ProviderTest::Spoil(Operation operation, Effect effect, const wchar_t* target, unsigned nth) {
    FaultRule rule;
    rule.operation = operation;
    rule.target = target;
    rule.nth = nth;
    rule.effect = effect;
    Inject(std::move(rule));
}

std::vector<std::string> ProviderTest::Traced() {
    std::vector<std::string> texts;
    for (const std::wstring& text : m_trace.NewTexts()) {
        texts.push_back(Narrow(text));
    }
    return texts;
}

std::vector<JournalEntry> ProviderTest::Calls() {
    std::vector<JournalEntry> entries = m_way->Calls();
    ForgetCalls();
    return entries;
}

std::vector<JournalEntry> ProviderTest::CallsOf(Operation operation) const {
    std::vector<JournalEntry> entries = m_way->Calls();
    std::erase_if(entries, [operation](const JournalEntry& entry) { return entry.operation != operation; });
    return entries;
}

void ProviderTest::ForgetCalls() {
    m_way->ForgetCalls();
}

std::vector<std::string> ProviderTest::Called() {
    std::vector<std::string> lines;
    for (const JournalEntry& entry : Calls()) {
        lines.push_back(Describe(entry));
    }
    return lines;
}

std::string ProviderTest::Describe(const JournalEntry& entry) {
    std::string line = Narrow(entry.Line());
    if (entry.hasContext) {
        line += " {";
        for (const NamedValue& value : entry.context) {
            line += (&value == &entry.context.front() ? "" : ", ") + ContextText(value);
        }
        line += "}";
    }
    return line;
}

void ProviderTest::FailEachProviderCall(
    const std::function<HRESULT()>& operation,
    const std::function<HRESULT(const JournalEntry& failed, HRESULT code)>& expected) {
    // A code that neither COM nor the simulator would produce.
    const HRESULT code = static_cast<HRESULT>(0x8004A5F7);
    Calls();
    Traced();
    ASSERT_TRUE(SUCCEEDED(operation())) << "the operation fails without any fault";
    const std::size_t count = Calls().size();
    const std::vector<std::string> ordinary = Traced();
    ASSERT_GT(count, 0u) << "the operation makes no provider call";
    for (unsigned nth = 1; nth <= count; ++nth) {
        SCOPED_TRACE("provider call " + std::to_string(nth) + " of " + std::to_string(count));
        FaultRule rule;
        rule.operation.reset();
        rule.nth = nth;
        rule.code = code;
        Inject(rule);
        const HRESULT result = operation();
        machine->Rules().Clear();

        const std::vector<JournalEntry> calls = Calls();
        const std::vector<std::string> trace = Traced();
        ASSERT_EQ(calls.size(), nth) << "calls after the failed one: " << Describe(calls.back());
        EXPECT_EQ(Code(calls.back().result), Code(code));
        EXPECT_EQ(Code(result), Code(expected ? expected(calls.back(), code) : code))
            << Describe(calls.back());
        EXPECT_TRUE(std::any_of(trace.begin(), trace.end(),
                                [&ordinary](const std::string& line) {
                                    return std::find(ordinary.begin(), ordinary.end(), line) ==
                                           ordinary.end();
                                }))
            << "no line names the failed step: " << Describe(calls.back());
    }
}
