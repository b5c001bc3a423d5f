// The machine as a document.
#include "StateTest.h"

namespace quillet::tests {

namespace {

using testing::IsEmpty;
using testing::Not;

class ShowTest : public StateFixture {};

TEST_F(ShowTest, Whole_AppliedToItself_ChangesNothing) {
    const state::Json whole = Whole();
    EXPECT_THAT(whole.at("adapters"), testing::SizeIs(10));
    EXPECT_THAT(Words(whole.dump()), IsEmpty());
    EXPECT_THAT(Problems(whole.dump()), IsEmpty());
    state::Json exclusive = whole;
    exclusive["exclusive"] = true;
    EXPECT_THAT(Words(exclusive.dump()), IsEmpty());
}

TEST_F(ShowTest, Adapters_GoByWhatIsAskedFor) {
    for (const state::NamedBy by : {state::NamedBy::Slot, state::NamedBy::Mac}) {
        state::ShowOptions options;
        options.by = by;
        const state::Json shown = state::Show(*session, options).document;
        EXPECT_TRUE(shown.at("adapters").at(0).contains(by == state::NamedBy::Slot ? "slot" : "mac"));
        if (by == state::NamedBy::Slot) { // members of a team may all report the team's address
            EXPECT_THAT(Words(shown.dump()), IsEmpty());
        }
    }
}

TEST_F(ShowTest, OnlyChanged_LeavesDefaultsOut) {
    state::ShowOptions options;
    options.onlyChanged = true;
    const state::Json shown = state::Show(*session, options).document;
    EXPECT_EQ(shown.at("adapters").at(0).at("settings").at("*JumboPacket"), 9014);
    EXPECT_LT(shown.dump().size(), Whole().dump().size() / 2);
    EXPECT_THAT(Words(shown.dump()), IsEmpty());
}

TEST_F(ShowTest, Patterns_Choose) {
    state::ShowOptions options;
    options.match = {"zorel 10g*"};
    const state::Json shown = state::Show(*session, options).document;
    EXPECT_THAT(shown.at("adapters"), testing::SizeIs(2));
    EXPECT_THAT(shown.at("teams"), IsEmpty());
}

TEST_F(ShowTest, Like_HasTheDocumentsOwnTerms) {
    const char* text = R"({
        "adapters": [{"slot": "2", "port": "1", "settings": {"Jumbo Packet": "9014 BYTES"}, "vlans": [{"id": 4000, "state": "absent"}]}],
        "teams": [{"name": "Nowhere", "state": "absent"}]})";
    EXPECT_EQ(state::ShowLike(*session, state::ReadDocument(text)), state::Json::parse(text));
    // A pattern stays one where all that fit agree.
    const char* pattern = R"({"adapters": [{"match": "Zorel 10G*", "settings": {"*JumboPacket": 9014}}]})";
    EXPECT_EQ(state::ShowLike(*session, state::ReadDocument(pattern)), state::Json::parse(pattern));
    EXPECT_THAT(state::ShowLike(*session,
                                state::ReadDocument(
                                    R"({"adapters": [{"match": "*", "settings": {"*JumboPacket": 9014}}]})"))
                    .at("adapters"),
                testing::SizeIs(10));
    const state::Json other = state::ShowLike(
        *session,
        state::ReadDocument(R"({"adapters": [{"slot": 2, "port": 1, "settings": {"*JumboPacket": 1514}}]})"));
    EXPECT_EQ(other.at("adapters").at(0).at("settings").at("*JumboPacket"), 9014);
}

TEST_F(ShowTest, WhatAnAdapterDoesNotTell_DoesNotHideTheRest) {
    simulator::FaultRule rule;
    rule.method = L"GetPowerUsageOptions";
    machine->Rules().Add(rule);
    const state::Shown shown = state::Show(*session);
    EXPECT_THAT(shown.unread, testing::ElementsAre(testing::HasSubstr("the power options of Zorel 10G")));
    EXPECT_FALSE(shown.document.at("adapters").at(0).contains("power"));
    EXPECT_TRUE(shown.document.at("adapters").at(1).contains("power"));
}

} // namespace

} // namespace quillet::tests
