// Every operation under everything that can go wrong with a call: each one that it makes fails, in turn, and
// then answers damaged data. The run must end with a code and a line that says where, and touch nothing after
// that.
#include "Operations.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace {

/// A code that neither COM nor the simulator would produce.
constexpr HRESULT FAULT = static_cast<HRESULT>(0x8004A5F7);

class AnomalyTest : public OperationsTest {
  protected:
    void SetUp() override {
        OperationsTest::SetUp();
        RecordLocalCalls();
        Calls();
        Traced();
        ASSERT_TRUE(SUCCEEDED(GetParam().run(quillet))) << "the operation fails without any fault";
        m_calls = Calls();
        m_trace = Traced();
        ASSERT_FALSE(m_calls.empty());
    }

    void TearDown() override {
        std::printf("anomaly: %-28s %4u runs\n", GetParam().name, m_runs);
        RecordProperty("runs", static_cast<int>(m_runs));
    }

    /// The call's number among the calls of its operation: how a rule finds it again.
    unsigned Ordinal(std::size_t index) const {
        return static_cast<unsigned>(std::count_if(
            m_calls.begin(), m_calls.begin() + static_cast<std::ptrdiff_t>(index) + 1,
            [&](const JournalEntry& call) { return call.operation == m_calls[index].operation; }));
    }

    /// Runs the operation with one rule.
    HRESULT RunWith(FaultRule rule) {
        ++m_runs;
        Inject(std::move(rule));
        const HRESULT result = GetParam().run(quillet);
        machine->Rules().Clear();
        return result;
    }

    /// Lines that a good run does not have.
    std::vector<std::string> NewLines() {
        std::vector<std::string> lines;
        for (std::string& line : Traced()) {
            if (std::find(m_trace.begin(), m_trace.end(), line) == m_trace.end()) {
                lines.push_back(std::move(line));
            }
        }
        return lines;
    }

    /// Whether the operation goes on after this call although it fails: a context that refuses a value only
    /// loses the provider's optimisation. The last value of a client set, however, is the operation's result.
    bool MayFailSilently(std::size_t index) const {
        return m_calls[index].operation == Operation::SetContextValue && index + 1 != m_calls.size();
    }

    HRESULT Expected(const JournalEntry& call) const {
        if (call.operation == Operation::SetBlanket) {
            return static_cast<HRESULT>(WBEM_E_FAILED); // no service to be had
        }
        return GetParam().documented ? GetParam().documented(call, FAULT) : FAULT;
    }

    std::vector<JournalEntry> m_calls;
    std::vector<std::string> m_trace;
    unsigned m_runs = 0;
};

TEST_P(AnomalyTest, EachCallFails_ItsCodeComesBackItIsNamedAndNothingFollows) {
    for (std::size_t index = 0; index < m_calls.size(); ++index) {
        const JournalEntry& call = m_calls[index];
        SCOPED_TRACE("call " + std::to_string(index + 1) + " of " + std::to_string(m_calls.size()) + ": " +
                     Describe(call));
        FaultRule rule;
        rule.operation = call.operation;
        rule.nth = Ordinal(index);
        rule.code = FAULT;
        const HRESULT result = RunWith(rule);
        const std::vector<JournalEntry> calls = Calls();
        const std::vector<std::string> lines = NewLines();
        ASSERT_GT(calls.size(), index) << "the fault was never met";
        EXPECT_EQ(Code(calls[index].result), Code(FAULT));
        if (MayFailSilently(index)) {
            EXPECT_TRUE(SUCCEEDED(result)) << Code(result);
            continue;
        }
        EXPECT_EQ(Code(result), Code(Expected(call)));
        if (FAILED(result)) {
            const bool last = index + 1 == m_calls.size() && call.operation == Operation::SetContextValue;
            EXPECT_TRUE(last || !lines.empty()) << "no line names the step";
            const auto sent = std::count_if(calls.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                                            calls.end(), [](const JournalEntry& later) {
                                                return quillet::simulator::IsProviderCall(later.operation);
                                            });
            EXPECT_EQ(sent, 0) << "something was sent after the failure";
        }
    }
}

TEST_P(AnomalyTest, EachAnswerDamaged_EndsWithSuccessOrACodeAndALine) {
    constexpr Effect effects[] = {Effect::NullObject, Effect::NoOutParameters, Effect::NullValue,
                                  Effect::Absent,     Effect::WrongType,       Effect::ShiftedArray,
                                  Effect::EmptyArray, Effect::NullArray,       Effect::UnreadableElement,
                                  Effect::HugeString, Effect::EndOfData};
    constexpr VARTYPE types[] = {VT_UNKNOWN, VT_DISPATCH,      VT_EMPTY,         VT_R8,   VT_DATE,
                                 VT_BSTR,    VT_BYREF | VT_I4, VT_ARRAY | VT_I4, VT_ERROR};
    for (std::size_t index = 0; index < m_calls.size(); ++index) {
        const JournalEntry& call = m_calls[index];
        for (const Effect effect : effects) {
            if (!quillet::simulator::Applies(effect, call.operation)) {
                continue;
            }
            for (const VARTYPE type : types) {
                SCOPED_TRACE(Describe(call) + " " + Narrow(quillet::simulator::EffectName(effect)) +
                             " type " + std::to_string(type));
                FaultRule rule;
                rule.operation = call.operation;
                rule.nth = Ordinal(index);
                rule.effect = effect;
                rule.vt = type;
                rule.size = 100'000;
                const HRESULT result = RunWith(rule);
                Calls();
                const std::vector<std::string> lines = NewLines();
                EXPECT_TRUE(SUCCEEDED(result) || !lines.empty()) << Code(result) << " and no line says why";
                if (effect != Effect::WrongType) {
                    break; // the types are for that effect only
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, AnomalyTest, testing::ValuesIn(Operations()), OperationTestName);

} // namespace
