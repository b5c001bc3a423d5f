// What becomes of a machine.
#include "StateTest.h"

namespace quillet::tests {

namespace {

using state::Outcome;
using testing::HasSubstr;
using testing::IsEmpty;

class StateTest : public StateFixture {
  protected:
    /// Applies a document, and makes sure that it holds and that a second time nothing is written.
    Outcome Reach(std::string_view text) {
        const Outcome outcome = Apply(text);
        EXPECT_TRUE(outcome.IsReached())
            << outcome.failure.value_or("") << testing::PrintToString(outcome.differences);
        EXPECT_THAT(Words(text), IsEmpty());
        machine->Calls().Clear();
        EXPECT_EQ(Apply(text).done, 0U);
        for (const simulator::JournalEntry& call : machine->Calls().ProviderCalls()) {
            EXPECT_FALSE(IsWrite(call)) << ToUtf8(call.Line());
            EXPECT_NE(call.method, L"BeginApply");
        }
        return outcome;
    }
};

TEST_F(StateTest, TeamWithVlans) {
    const Outcome outcome = Reach(R"({"teams": [{
        "name": "Front", "mode": "adaptive load balancing", "members": [{"slot": 2, "port": 1}, {"slot": 2, "port": 2}],
        "primary": {"slot": 2, "port": 2}, "secondary": {"slot": 2, "port": 1},
        "vlans": [{"id": 0, "name": "Plain"}, {"id": 100, "name": "Web", "settings": {"*JumboPacket": 4088}}, {"id": 200, "name": "Data"}]}]})");
    EXPECT_EQ(outcome.restartNeeded, false);
    Reach(
        R"({"teams": [{"name": "front", "mode": 4, "vlans": [{"id": 100, "name": "Data"}, {"id": 200, "name": "Web"}, {"id": 0, "state": "absent"}]}]})");
    Reach(R"({"teams": [{"name": "Front", "members": [{"slot": 2, "port": 1}], "secondary": null}]})");
    Reach(
        R"({"teams": [{"name": "Front", "members": [{"slot": 2, "port": 2}], "primary": {"slot": 2, "port": 2}}]})");
    Reach(R"({"teams": [{"name": "Front", "state": "absent"}]})");
}

TEST_F(StateTest, AllOfAnAdapter) {
    Reach(R"({"adapters": [{"slot": 2, "port": 1,
        "settings": {"Jumbo Packet": "4088 Bytes", "NetworkAddress": "02005e00aabb"},
        "wakeOnLan": {"magicPacket": true}, "power": {"mode": 2}, "vlans": [{"id": 9, "name": "Neun"}]},
        {"match": "*", "wakeOnLan": {"pattern": false}, "settings": {"*FlowControl": 0}}]})");
}

TEST_F(StateTest, AllInOneClientSet) {
    machine->Calls().Clear();
    Reach("{}");
    Apply(
        R"({"adapters": [{"slot": 2, "port": 1, "settings": {"*JumboPacket": 1514}, "wakeOnLan": {"magicPacket": false}}],
              "teams": [{"name": "T", "members": [{"slot": 2, "port": 1}, {"slot": 2, "port": 2}]}]})");
    const auto calls = machine->Calls().ProviderCalls();
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const auto& call) { return call.method == L"BeginApply"; }),
              1);
}

TEST_F(StateTest, Exclusive_TakesTheOthersAway) {
    Reach(R"({"teams": [{"name": "Only", "members": [{"slot": 2, "port": 1}]}], "exclusive": true})");
    const state::Json whole = Whole();
    EXPECT_THAT(whole.at("teams"), testing::SizeIs(1));
    for (const state::Json& adapter : whole.at("adapters")) {
        EXPECT_FALSE(adapter.contains("vlans"));
    }
}

TEST_F(StateTest, WhatIsAcceptedAndNotDone_IsADifference) {
    simulator::FaultRule rule;
    rule.method = L"SetWakeOnLanPowerOptions";
    rule.effect = simulator::Effect::Verdict;
    machine->Rules().Add(rule);
    const Outcome outcome = Apply(
        R"({"adapters": [{"slot": 2, "port": 1, "settings": {"*JumboPacket": 1514}, "wakeOnLan": {"magicPacket": false}}]})");
    EXPECT_FALSE(outcome.failure);
    EXPECT_THAT(outcome.differences, testing::ElementsAre(HasSubstr("wakeOnLan: it is ")));
    EXPECT_TRUE(outcome.wentBack);
    EXPECT_THAT(outcome.notRestored, IsEmpty());
}

TEST_F(StateTest, WithoutConfirmation_ItGoesBack) {
    const state::Json before = Whole();
    state::ApplyOptions options;
    bool wasThere = false;
    options.isConfirmed = [&] {
        wasThere = Whole() != before;
        return false;
    };
    options.goBack = false; // which is about failures
    const Outcome outcome =
        Apply(R"({"teams": [{"name": "T", "members": [{"slot": 2, "port": 1}, {"slot": 2, "port": 2}]}]})",
              options);
    EXPECT_TRUE(wasThere);
    EXPECT_TRUE(outcome.isRefused);
    EXPECT_TRUE(outcome.wentBack);
    EXPECT_EQ(Whole(), before);
}

} // namespace

} // namespace quillet::tests
