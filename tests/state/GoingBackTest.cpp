// Each write of a large document fails in turn.
#include "StateTest.h"

namespace quillet::tests {

namespace {

using testing::IsEmpty;

class GoingBackTest : public StateFixture {
  protected:
    static constexpr const char* kDocument = R"({
        "adapters": [{"slot": 2, "port": 1, "settings": {"*JumboPacket": 1514}, "wakeOnLan": {"magicPacket": false}},
                     {"slot": 2, "port": 2, "settings": {"*JumboPacket": 1514}},
                     {"name": "Zorel Quad Port Gigabit Server Adapter #4", "vlans": [{"id": 30, "name": "Storage"}]}],
        "teams": [{"name": "Front", "members": [{"slot": 2, "port": 1}, {"slot": 2, "port": 2}], "mode": 0,
                   "secondary": {"slot": 2, "port": 1}, "vlans": [{"id": 100, "name": "Web"}, {"id": 200, "name": "Data"}]},
                  {"name": "TEAM : Zürich", "vlans": [{"id": 77, "name": "New"}]}]})";

    /// Brings the machine back by hand.
    void Restore(state::Json before) {
        before["exclusive"] = true;
        const state::Outcome outcome = Apply(before.dump());
        ASSERT_TRUE(outcome.IsReached())
            << outcome.failure.value_or("") << testing::PrintToString(outcome.differences);
        before.erase("exclusive");
        ASSERT_EQ(nlohmann::json(Whole()), nlohmann::json(before));
    }

    std::vector<simulator::JournalEntry> WritesOf(const char* text) {
        machine->Calls().Clear();
        EXPECT_TRUE(Apply(text).IsReached());
        std::vector<simulator::JournalEntry> writes = machine->Calls().ProviderCalls();
        std::erase_if(writes, [](const simulator::JournalEntry& call) { return !IsWrite(call); });
        return writes;
    }
};

TEST_F(GoingBackTest, AfterEachFailure_TheMachineIsAsBefore) {
    const state::Json before = Whole();
    const std::vector<simulator::JournalEntry> writes = WritesOf(kDocument);
    ASSERT_GE(writes.size(), 9U);
    Restore(before);
    std::size_t hit = 0;
    for (std::size_t nth = 1; nth <= writes.size(); ++nth) {
        SCOPED_TRACE(nth);
        // The nth write, whatever it is: a rule for each kind would miss objects that are made anew.
        std::size_t count = 0;
        state::ApplyOptions options;
        options.begins = [&](const state::Step&) {
            if (++count == nth) {
                for (const auto operation :
                     {simulator::Operation::PutInstance, simulator::Operation::DeleteInstance,
                      simulator::Operation::ExecMethod}) {
                    simulator::FaultRule rule;
                    rule.operation = operation;
                    machine->Rules().Add(rule);
                }
            }
        };
        const state::Outcome outcome = Apply(kDocument, options);
        machine->Rules().Clear();
        if (!outcome.failure) {
            EXPECT_TRUE(outcome.IsReached());
            break; // there are fewer steps than writes
        }
        ++hit;
        EXPECT_TRUE(outcome.wentBack);
        // The faults that the failing step did not meet may have hit the way back: then it says what is
        // missing.
        const state::Json after = Whole();
        EXPECT_EQ(outcome.notRestored.empty(), nlohmann::json(after) == nlohmann::json(before))
            << testing::PrintToString(outcome.notRestored);
        if (after != before) {
            Restore(before);
        }
    }
    EXPECT_GE(hit, 9U);
}

TEST_F(GoingBackTest, WhatATeamThatIsMadeAgainLacks_IsTold) {
    simulator::FaultRule rule;
    rule.method = L"CreateVLAN";
    machine->Rules().Add(rule);
    const state::Document document = state::ReadDocument(
        R"({"adapters": [{"slot": 2, "port": 1, "vlans": [{"id": 7, "name": "A"}]}],
            "teams": [{"name": "TEAM : Zürich", "state": "absent"}]})");
    const state::Plan plan = state::MakePlan(*session, document);
    EXPECT_THAT(plan.losses,
                testing::Contains(testing::HasSubstr("team TEAM : Zürich: a team that is made again")));
    const state::Outcome outcome = state::Apply(*session, document, plan);
    EXPECT_TRUE(outcome.wentBack);
    EXPECT_THAT(outcome.notRestored, testing::Each(testing::HasSubstr("has no setting")));
    EXPECT_THAT(outcome.notRestored, testing::Not(IsEmpty()));
}

TEST_F(GoingBackTest, NotAskedFor_LeavesWhatWasDone) {
    simulator::FaultRule rule;
    rule.method = L"CreateVLAN";
    rule.nth = 2;
    machine->Rules().Add(rule);
    state::ApplyOptions options;
    options.goBack = false;
    const state::Outcome outcome = Apply(kDocument, options);
    EXPECT_FALSE(outcome.wentBack);
    EXPECT_THAT(outcome.failure.value_or(""), testing::HasSubstr("could not add VLAN"));
    EXPECT_EQ(outcome.code, static_cast<HRESULT>(WBEM_E_FAILED));
    EXPECT_THAT(Words(kDocument), testing::SizeIs(testing::Lt(4U)));
}

TEST_F(GoingBackTest, AProviderThatDies_IsTold) {
    simulator::FaultRule rule;
    rule.operation.reset();
    rule.repeat = true;
    state::ApplyOptions options;
    int count = 0;
    options.begins = [&](const state::Step&) {
        if (++count == 3) {
            machine->Rules().Add(rule);
        }
    };
    const state::Outcome outcome = Apply(kDocument, options);
    machine->Rules().Clear();
    EXPECT_TRUE(outcome.failure);
    EXPECT_FALSE(outcome.restartNeeded);
    EXPECT_THAT(outcome.notRestored, testing::Contains(testing::HasSubstr("could not be read again")));
}

} // namespace

} // namespace quillet::tests
