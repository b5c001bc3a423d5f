// The order of the steps, and what stands in their way.
#include "StateTest.h"

namespace quillet::tests {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PlanTest : public StateFixture {};

TEST_F(PlanTest, NothingToDo_IsNoStep) {
    EXPECT_THAT(Words("{}"), IsEmpty());
    EXPECT_THAT(
        Words(R"({"adapters": [{"slot": 2, "port": 1, "settings": {"*JumboPacket": "9014 bytes"}}]})"),
        IsEmpty());
}

TEST_F(PlanTest, Steps_ComeInTheOrderOfTheWork) {
    EXPECT_THAT(Words(R"({
        "adapters": [{"slot": 2, "port": 2, "iscsi": "off", "settings": {"Jumbo Packet": 4088},
                      "wakeOnLan": {"magicPacket": false}},
                     {"name": "Zorel Quad Port Gigabit Server Adapter", "vlans": [{"id": 0, "name": "Plain"}, {"id": 30, "name": "Storage"}]}],
        "teams": [{"name": "Front", "members": [{"slot": 2, "port": 1}, {"slot": 2, "port": 2}],
                   "primary": {"slot": 2, "port": 2}, "vlans": [{"id": 100, "name": "Web", "settings": {"VLANPriority": 3}}]},
                  {"name": "TEAM : Zürich", "state": "absent"}]})"),
                ElementsAre(HasSubstr("delete the team TEAM : Zürich"), HasSubstr("set *JumboPacket of"),
                            HasSubstr("set the wake-on-LAN options"), HasSubstr("make the team Front"),
                            HasSubstr("the primary member of team Front"), HasSubstr("add VLAN 100"),
                            HasSubstr("add VLAN 30"), HasSubstr("add the untagged VLAN"),
                            HasSubstr("set VLANPriority of VLAN 100 of team Front to 3"),
                            HasSubstr("set the iSCSI boot place of adapter")));
}

TEST_F(PlanTest, Problems_AreFoundBeforeAnythingIsChanged) {
    EXPECT_THAT(Problems(R"({
        "adapters": [{"name": "nobody"}, {"match": "nobody*"}, {"slot": 2, "port": 1, "settings": {"None": 1, "*JumboPacket": 7}},
                     {"slot": 2, "port": 1}],
        "teams": [{"name": "New"}, {"name": "new"},
                  {"name": "Other", "members": [{"slot": 2, "port": 1}], "primary": {"slot": 2, "port": 2}}]})"),
                testing::IsSupersetOf({HasSubstr("no adapter fits \"nobody*\""),
                                       HasSubstr("there is no adapter \"nobody\""),
                                       HasSubstr("is described twice"), HasSubstr("it has no setting None"),
                                       HasSubstr("*JumboPacket: 7 is none of its values: Disabled (1514)"),
                                       HasSubstr("without members it cannot be made"),
                                       HasSubstr("is to have a role, and will not be a member")}));
}

TEST_F(PlanTest, ChecksOfTheLibrary_AreProblems) {
    // The members differ in a setting that a team needs to be alike.
    EXPECT_THAT(Problems(R"({"teams": [{"name": "Back", "members": ["Zorel Gigabit Desktop Adapter",
                                                                     "Zorel Gigabit Server Adapter #2"]}]
})"),
                testing::Not(IsEmpty()));
    machine->Calls().Clear();
    EXPECT_THAT(
        Problems(
            R"({"adapters": [{"slot": 2, "port": 1, "vlans": [{"id": 7, "name": "A"}, {"id": 8, "name": "a"}]}]})"),
        ElementsAre(HasSubstr("VLAN 7 and VLAN 8 would both be called")));
    for (const simulator::JournalEntry& call : machine->Calls().ProviderCalls()) {
        EXPECT_FALSE(IsWrite(call)) << ToUtf8(call.Line());
    }
}

TEST_F(PlanTest, MembersOfTeamsThatNobodyDescribes_StayWhereTheyAre) {
    const std::vector<state::Step> steps;
    const auto shown = Whole();
    const std::string member = shown.at("teams").at(0).at("members").at(0).get<std::string>();
    EXPECT_THAT(Problems(R"({"teams": [{"name": "Thief", "members": [")" + member + R"("]}]})"),
                ElementsAre(HasSubstr("is a member of team")));
}

TEST_F(PlanTest, OnlyWhatIsMentioned_IsRead) {
    machine->Calls().Clear();
    Words(
        R"({"adapters": [{"name": "Zorel 10G Dual Port Server Adapter", "settings": {"*JumboPacket": 4088}}]})");
    for (const simulator::JournalEntry& call : machine->Calls().ProviderCalls()) {
        EXPECT_EQ(ToUtf8(call.Line()).find("#2"), std::string::npos);
        EXPECT_EQ(ToUtf8(call.target).find("Zorel_VLAN\""), std::string::npos);
    }
    EXPECT_LT(machine->Calls().ProviderCalls().size(), 60U);
}

} // namespace

} // namespace quillet::tests
