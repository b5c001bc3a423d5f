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
        Calls();
        Traced();
        if (rule) {
            Inject(*rule);
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

TEST_P(ClientOperationsTest, WithoutAFault_MakesTheSameProviderCalls) {
    ASSERT_TRUE(SUCCEEDED(RunLibrary({})));
    const std::vector<std::string> wanted = Called();
    const Ended ended = RunLayer({});
    EXPECT_EQ(Code(ended.code), "0x00000000") << ended.operation;
    EXPECT_EQ(m_called, wanted);
}

TEST_P(ClientOperationsTest, EachProviderCallFails_TheErrorHasTheLibrarysCodeAndItsOperation) {
    ASSERT_TRUE(SUCCEEDED(RunLibrary({})));
    const std::vector<JournalEntry> calls = Calls();
    for (std::size_t index = 0; index < calls.size(); ++index) {
        SCOPED_TRACE(Describe(calls[index]));
        FaultRule rule;
        rule.operation = calls[index].operation;
        rule.code = kFault;
        rule.nth = static_cast<unsigned>(
            std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                          [&](const JournalEntry& call) { return call.operation == rule.operation; }));
        const HRESULT code = RunLibrary(rule);
        const std::vector<std::string> wanted = Called();
        const Ended ended = RunLayer(rule);
        EXPECT_EQ(Code(ended.code), FAILED(code) ? Code(code) : "0x00000000");
        EXPECT_EQ(m_called, wanted);
        if (FAILED(code)) {
            const std::string& named = Counterpart().operation;
            EXPECT_EQ(ended.operation, named.empty() ? GetParam().operation.name : named);
        }
        EXPECT_EQ(machine->OpenClientSet(), m_openSet);
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
