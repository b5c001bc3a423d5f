// Runs the operations of link security in every way that they can go: as they are, with each of their calls
// failing, and with each of their answers damaged.
#pragma once

#include "Operations.h"

#include <algorithm>

/// What all secrets of LinkSecurityOperations() contain, and nothing else does.
inline constexpr const char* CANARY = "CANARY";

class EveryWayTest : public ProviderTest, public testing::WithParamInterface<OperationCase> {
  protected:
    /// Calls `check` once for each way, with a function that runs the operation in it. Each run has a machine
    /// and a session of its own; the calls that stay with the client are in its journal.
    void EveryWay(const std::function<void(const std::function<HRESULT()>& run)>& check) {
        constexpr Effect effects[] = {
            Effect::Fail,      Effect::NullObject,        Effect::NoOutParameters, Effect::NullValue,
            Effect::Absent,    Effect::WrongType,         Effect::ShiftedArray,    Effect::EmptyArray,
            Effect::NullArray, Effect::UnreadableElement, Effect::HugeString};
        Prepare();
        const std::function<HRESULT()> run = [this] {
            Outputs outputs;
            return GetParam().run(quillet, outputs);
        };
        ASSERT_TRUE(SUCCEEDED(run())) << "the operation fails without any fault";
        const std::vector<JournalEntry> calls = Calls();
        Prepare();
        check(run);
        for (std::size_t index = 0; index < calls.size(); ++index) {
            FaultRule rule;
            rule.operation = calls[index].operation;
            rule.nth = static_cast<unsigned>(
                std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(index) + 1,
                              [&](const JournalEntry& call) { return call.operation == rule.operation; }));
            rule.size = 1000;
            for (const Effect effect : effects) {
                if (effect != Effect::Fail && !quillet::simulator::Applies(effect, *rule.operation)) {
                    continue;
                }
                rule.effect = effect;
                SCOPED_TRACE(Describe(calls[index]) + " " + Narrow(quillet::simulator::EffectName(effect)));
                Prepare();
                Inject(rule);
                check(run);
                ++m_ways;
            }
        }
        EXPECT_GT(m_ways, calls.size());
    }

    /// A new machine with the secrets, connected to, and nothing called or traced yet.
    void Prepare() {
        if (QuilletTestAccess::ServiceCookie(quillet) != 0) {
            quillet.UninitQuillet();
        }
        UseText(LinkSecurityOperations().machine);
        Connect();
        RecordLocalCalls();
    }

    std::size_t Ways() const { return m_ways; }

  private:
    std::size_t m_ways = 0;
};

inline void PrintTo(const OperationCase& operation, std::ostream* out) {
    *out << operation.name;
}

inline std::string CaseName(const testing::TestParamInfo<OperationCase>& info) {
    return info.param.name;
}
