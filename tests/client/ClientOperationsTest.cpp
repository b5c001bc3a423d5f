// Every operation through the client layer, side by side with the library's own: the same provider calls, and
// when one of them fails an error with the same code.
#include "ClientOperations.h"

#include "Operations.h"

#include <algorithm>
#include <set>

namespace quillet::tests {

namespace {

/// A code that neither COM nor the simulator would produce.
constexpr HRESULT kFault = static_cast<HRESULT>(0x8004A5F7);

/// What ended a run through the layer.
struct Ended {
    HRESULT code = S_OK;
    std::string operation;
};

class ClientOperationsTest : public OperationsTest {
  protected:
    const ClientOperation& Counterpart() const { return *FindClientOperation(GetParam().operation.name); }

    void Prepare(const std::optional<FaultRule>& rule) {
        RecordLocalCalls();
        Calls();
        Traced();
        if (rule) {
            Inject(*rule);
        }
    }

    /// All calls of a run without a fault, also those that stay with the client.
    std::vector<JournalEntry> CallsOfAGoodRun() {
        EXPECT_TRUE(SUCCEEDED(RunLibrary({})));
        return Calls();
    }

    /// A rule for one of these calls.
    static FaultRule RuleFor(const std::vector<JournalEntry>& calls, std::size_t index) {
        FaultRule rule;
        rule.operation = calls[index].operation;
        rule.nth = static_cast<unsigned>(
            std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                          [&](const JournalEntry& call) { return call.operation == rule.operation; }));
        return rule;
    }

    /// Runs both with a fault, and compares.
    void RunBoth(const FaultRule& rule) {
        const HRESULT code = RunLibrary(rule);
        const std::vector<std::string> wanted = Called();
        const Ended ended = RunLayer(rule);
        EXPECT_EQ(m_called, wanted);
        EXPECT_EQ(machine->OpenClientSet(), m_openSet);
        if (ended.code != code) {
            // Codes of success tell the library's callers more than one thing; and that there is no such
            // object is an answer of some operations.
            EXPECT_EQ(Code(ended.code), "0x00000000");
            EXPECT_TRUE(SUCCEEDED(code) || code == static_cast<HRESULT>(WBEM_E_NOT_FOUND)) << Code(code);
        }
        if (ended.code != S_OK) {
            const std::string& named = Counterpart().operation;
            EXPECT_EQ(ended.operation, named.empty() ? GetParam().operation.name : named);
        }
    }

    HRESULT RunLibrary(const std::optional<FaultRule>& rule) {
        RenewAfterChange();
        // An object of its own each time: it remembers the client set that it opened last.
        CQuillet library;
        EXPECT_EQ(Code(library.InitQuillet()), "0x00000000");
        Prepare(rule);
        Outputs outputs;
        const HRESULT result = GetParam().operation.run(library, outputs);
        machine->Rules().Clear();
        m_openSet = machine->OpenClientSet();
        library.UninitQuillet();
        return result;
    }

    Ended RunLayer(const std::optional<FaultRule>& rule) {
        RenewAfterChange();
        Session session;
        Prepare(rule);
        Ended ended;
        try {
            Counterpart().run(session);
        } catch (const Error& error) {
            ended = {error.Code(), error.Operation()};
        }
        machine->Rules().Clear();
        m_called = Called();
        return ended;
    }

    std::vector<std::string> m_called; ///< by the layer
    LONG m_openSet = 0; ///< what the library left open: a set that the provider would not close
};

TEST_P(ClientOperationsTest, WithoutAFault_MakesTheSameCalls) {
    ASSERT_TRUE(SUCCEEDED(RunLibrary({})));
    const std::vector<std::string> wanted = Called();
    const Ended ended = RunLayer({});
    EXPECT_EQ(Code(ended.code), "0x00000000") << ended.operation;
    EXPECT_EQ(m_called, wanted);
}

TEST_P(ClientOperationsTest, EachCallFails_TheErrorHasTheLibrarysCodeAndItsOperation) {
    const std::vector<JournalEntry> calls = CallsOfAGoodRun();
    for (std::size_t index = 0; index < calls.size(); ++index) {
        SCOPED_TRACE(Describe(calls[index]));
        FaultRule rule = RuleFor(calls, index);
        rule.code = kFault;
        RunBoth(rule);
    }
}

TEST_P(ClientOperationsTest, EachAnswerDamaged_EndsAsTheLibraryDoes) {
    const std::vector<JournalEntry> calls = CallsOfAGoodRun();
    std::set<std::string> seen;
    for (std::size_t index = 0; index < calls.size(); ++index) {
        if (!seen.insert(Describe(calls[index])).second) {
            continue; // the same of another instance
        }
        for (const Effect effect :
             {Effect::Verdict, Effect::NullObject, Effect::NoOutParameters, Effect::NullValue,
              Effect::WrongType, Effect::NullArray, Effect::UnreadableElement, Effect::EndOfData}) {
            if (simulator::Applies(effect, calls[index].operation)) {
                SCOPED_TRACE(Describe(calls[index]) + " " + Narrow(simulator::EffectName(effect)));
                FaultRule rule = RuleFor(calls, index);
                rule.effect = effect;
                rule.vt = VT_UNKNOWN;
                RunBoth(rule);
            }
        }
    }
}

/// What of the library's tests the layer has no operation for: the client set, which is Transaction's, and
/// parts of operations.
bool IsOfTheLayer(const PreparedOperation& prepared) {
    static const std::set<std::string> kNot{
        "BeginApply",        "ApplyDone",           "GetSettingOnTeamOrAdapter",
        "GetDataFromValues", "GetDataFromValueMap", "GetTeamsEthernetAdapterPath"};
    return !kNot.contains(prepared.operation.name);
}

std::vector<PreparedOperation> OperationsOfTheLayer() {
    std::vector<PreparedOperation> operations;
    std::copy_if(Operations().begin(), Operations().end(), std::back_inserter(operations),
                 [](const PreparedOperation& each) {
                     return IsOfTheLayer(each) && FindClientOperation(each.operation.name) != nullptr;
                 });
    return operations;
}

TEST(ClientOperationsTableTest, EveryOperationOfTheLibrary_HasItsCounterpart) {
    for (const PreparedOperation& each : Operations()) {
        EXPECT_EQ(FindClientOperation(each.operation.name) != nullptr, IsOfTheLayer(each))
            << each.operation.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, ClientOperationsTest, testing::ValuesIn(OperationsOfTheLayer()),
                         OperationTestName);

} // namespace

} // namespace quillet::tests
