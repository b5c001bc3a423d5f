// Every operation under everything that can go wrong with a call: each one that it makes fails, in turn, and
// then answers damaged data. The run must end with a code and a line that says where, and touch nothing after
// that. What exactly it then says and leaves is written down in the golden files.
#include "Operations.h"
#include "TemporaryDirectory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

/// A code that neither COM nor the simulator would produce.
constexpr HRESULT kFault = static_cast<HRESULT>(0x8004A5F7);

class AnomalyTest : public OperationsTest {
  protected:
    void SetUp() override {
        OperationsTest::SetUp();
        RecordLocalCalls();
        Calls();
        Traced();
        ASSERT_TRUE(SUCCEEDED(Run(m_outputs))) << "the operation fails without any fault";
        m_calls = Calls();
        m_trace = Traced();
        ASSERT_FALSE(m_calls.empty());
    }

    void TearDown() override {
        std::printf("anomaly: %-32s %4u runs\n", GetParam().operation.name, m_runs);
        RecordProperty("runs", static_cast<int>(m_runs));
    }

    /// The call's number among the calls of its operation: how a rule finds it again.
    unsigned Ordinal(std::size_t index) const {
        return static_cast<unsigned>(std::count_if(
            m_calls.begin(), m_calls.begin() + static_cast<std::ptrdiff_t>(index) + 1,
            [&](const JournalEntry& call) { return call.operation == m_calls[index].operation; }));
    }

    /// A rule for this call.
    FaultRule RuleFor(std::size_t index) const {
        FaultRule rule;
        rule.operation = m_calls[index].operation;
        rule.nth = Ordinal(index);
        return rule;
    }

    /// Runs the operation with one rule.
    HRESULT RunWith(FaultRule rule, Outputs& outputs) {
        ++m_runs;
        if (GetParam().changes) {
            RenewAfterChange();
            RecordLocalCalls();
            Calls();
            Traced();
        }
        Inject(std::move(rule));
        const HRESULT result = Run(outputs);
        machine->Rules().Clear();
        return result;
    }

    /// The lines that a good run does not have.
    std::vector<std::string> NewLines(std::vector<std::string> lines) const {
        std::erase_if(lines, [this](const std::string& line) {
            return std::find(m_trace.begin(), m_trace.end(), line) != m_trace.end();
        });
        return lines;
    }

    /// Whether the operation goes on after this call although it fails: a context that refuses a value only
    /// loses the provider's optimisation. The last value of a client set, however, is the operation's result.
    bool MayFailSilently(std::size_t index) const {
        return m_calls[index].operation == Operation::SetContextValue && index + 1 != m_calls.size();
    }

    HRESULT Expected(const JournalEntry& call) const {
        if (GetParam().operation.neverFails) {
            return S_OK;
        }
        if (call.operation == Operation::SetBlanket) {
            return static_cast<HRESULT>(WBEM_E_FAILED); // no service to be had
        }
        const auto& documented = GetParam().operation.documented;
        return documented ? documented(call, kFault) : kFault;
    }

    bool Ignores(std::size_t index) const {
        const auto& ignores = GetParam().operation.ignores;
        return ignores && ignores(m_calls, index);
    }

    bool GoesOn(const JournalEntry& call) const {
        const auto& goesOn = GetParam().operation.goesOn;
        return goesOn && goesOn(call);
    }

    std::vector<JournalEntry> m_calls;
    std::vector<std::string> m_trace;
    Outputs m_outputs;
    unsigned m_runs = 0;
};

/// A paragraph of a golden file: a run, how it ended, and what it traced.
std::string Paragraph(const std::string& title, HRESULT result, const Outputs& outputs,
                      const std::vector<std::string>& lines) {
    std::string text = title + "\n  = " + Code(result) + outputs.Text() + "\n";
    for (const std::string& line : lines) {
        text += "  | " + line + "\n";
    }
    return text;
}

std::string GoldenFile(const char* operation) {
    return std::string(QUILLET_SOURCE_DIR "/tests/Src/operations/golden/") + operation + ".txt";
}

std::string Contents(const std::string& file) {
    std::string text = quillet::tests::ReadFile(file);
    std::erase(text, '\r'); // a checkout on Windows may have put them in
    return text;
}

TEST_P(AnomalyTest, EachCallFails_ItsCodeComesBackItIsNamedAndNothingFollows) {
    std::string told = Paragraph("no fault", S_OK, m_outputs, m_trace);
    for (std::size_t index = 0; index < m_calls.size(); ++index) {
        const JournalEntry& call = m_calls[index];
        const std::string title = "call " + std::to_string(index + 1) + ": " + Describe(call);
        SCOPED_TRACE(title);
        FaultRule rule = RuleFor(index);
        rule.code = kFault;
        Outputs outputs;
        const HRESULT result = RunWith(rule, outputs);
        const std::vector<JournalEntry> calls = Calls();
        const std::vector<std::string> traced = Traced();
        const std::vector<std::string> lines = NewLines(traced);
        told += Paragraph(title, result, outputs, lines);
        ASSERT_GT(calls.size(), index) << "the fault was never met";
        EXPECT_EQ(Code(calls[index].result), Code(kFault));
        if (MayFailSilently(index)) {
            EXPECT_TRUE(SUCCEEDED(result) || GetParam().operation.differs) << Code(result);
            continue;
        }
        if (!GetParam().operation.differs && (FAILED(result) || !GoesOn(call))) {
            EXPECT_EQ(Code(result), Code(Ignores(index) ? S_OK : Expected(call)));
        }
        if (FAILED(result)) {
            const bool last = index + 1 == m_calls.size() && call.operation == Operation::SetContextValue;
            EXPECT_TRUE(last || !lines.empty()) << "no line names the step";
            const auto sent = std::count_if(calls.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                                            calls.end(), [](const JournalEntry& later) {
                                                return quillet::simulator::IsProviderCall(later.operation);
                                            });
            EXPECT_TRUE(sent == 0 || GoesOn(call)) << sent << " calls were sent after the failure";
        }
    }
    const std::string file = GoldenFile(GetParam().operation.name);
    if (std::getenv("QUILLET_WRITE_GOLDEN") != nullptr) {
        std::ofstream(file, std::ios::binary) << told;
        FAIL() << file << " was written anew: read it before it is committed";
    }
    EXPECT_EQ(told, Contents(file));
}

TEST_P(AnomalyTest, EachAnswerDamaged_EndsWithSuccessOrACodeAndALine) {
    constexpr Effect kEffects[] = {Effect::Verdict,           Effect::NullObject, Effect::NoOutParameters,
                                   Effect::NullValue,         Effect::Absent,     Effect::WrongType,
                                   Effect::ShiftedArray,      Effect::EmptyArray, Effect::NullArray,
                                   Effect::UnreadableElement, Effect::HugeString, Effect::EndOfData};
    constexpr VARTYPE kTypes[] = {VT_UNKNOWN, VT_DISPATCH,      VT_EMPTY,         VT_R8,   VT_DATE,
                                  VT_BSTR,    VT_BYREF | VT_I4, VT_ARRAY | VT_I4, VT_ERROR};
    for (std::size_t index = 0; index < m_calls.size(); ++index) {
        const JournalEntry& call = m_calls[index];
        for (const Effect effect : kEffects) {
            if (!quillet::simulator::Applies(effect, call.operation)) {
                continue;
            }
            for (const VARTYPE type : kTypes) {
                SCOPED_TRACE(Describe(call) + " " + Narrow(quillet::simulator::EffectName(effect)) +
                             " type " + std::to_string(type));
                FaultRule rule = RuleFor(index);
                rule.effect = effect;
                rule.vt = type;
                rule.size = 100'000;
                Outputs outputs;
                const HRESULT result = RunWith(rule, outputs);
                Calls();
                const std::vector<std::string> lines = NewLines(Traced());
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
