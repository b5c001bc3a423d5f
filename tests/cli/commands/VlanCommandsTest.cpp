// The commands about VLANs, on the shipped machine: its team carries the VLANs 0, 12 and 340.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

constexpr const char* kTeam = "TEAM : Zürich";
constexpr const char* kTeamId = "{233D64CB-B845-581B-A807-C628FFE690C9}";
constexpr const char* kTeamPath =
    "\\\\LAB-SERVER\\ROOT\\MarloLUM2:Zorel_TeamOfAdapters.Name=\"{233D64CB-B845-581B-A807-C628FFE690C9}\"";
constexpr const char* kBackup = "Zorel Gigabit Desktop Adapter";             // can carry VLANs, and has none
constexpr const char* kMember = "Zorel Quad Port Gigabit Server Adapter #2"; // of the team
constexpr const char* kManagement = "Zorel Fast Ethernet Adapter";           // cannot carry VLANs

class VlanCommandsTest : public CommandLine {
  protected:
    /// Runs a command on a machine that stays as the command leaves it.
    Outcome Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "vlan");
        arguments.insert(arguments.end(),
                         {"--state", Utf8(InFolder("lab.mof")), "--simulate", TestMachine("golden.mof")});
        return RunCommandLine(arguments);
    }
    Json RunJson(std::vector<std::string> arguments, int status = 0) {
        arguments.push_back("--json");
        const Outcome outcome = Run(std::move(arguments));
        EXPECT_EQ(outcome.status, status) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    /// The numbers of a parent's VLANs.
    std::vector<int> Numbers(const char* parent) {
        std::vector<int> numbers;
        const Json listed = RunJson({"list", parent});
        for (const Json& vlan : listed.at("vlans")) {
            numbers.push_back(vlan.at("number"));
        }
        return numbers;
    }
    void ExpectText(const Outcome& outcome, int status, const std::string& text) {
        EXPECT_EQ(outcome.status, status) << outcome.err;
        EXPECT_EQ(outcome.out, text);
        EXPECT_EQ(outcome.err, "");
    }
    void ExpectUsage(const Outcome& outcome, const std::string& message) {
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "quilletctl: " + message + "\n");
    }
};

TEST_F(VlanCommandsTest, List_OfATeam_IsATable) {
    ExpectText(Run({"list", kTeam}), 0,
               "PARENT         KIND  VLAN      NAME      STATUS   OBJECT ID\n"
               "TEAM : Zürich  team  untagged  Untagged  enabled  {1A168EBD-0D7A-586D-9410-EF345AD0CFDB}\n"
               "TEAM : Zürich  team  12        Büro      enabled  {063ED469-BA26-5EFF-991F-22031C2B1C4A}\n"
               "TEAM : Zürich  team  340       VoIP      enabled  {709617B6-441D-542D-A0CC-BC23D94665A0}\n");
}

TEST_F(VlanCommandsTest, List_OfAllParents_IsTheSameHere) {
    EXPECT_EQ(Run({"list"}).out, Run({"list", kTeam}).out);
    const Json all = RunJson({"list"});
    ASSERT_EQ(all.at("vlans").size(), 3u);
    const Json& first = all.at("vlans").at(1);
    EXPECT_EQ(first.at("parent"),
              (Json{{"kind", "team"}, {"path", kTeamPath}, {"objectId", kTeamId}, {"name", kTeam}}));
    EXPECT_EQ(first.at("number"), 12);
    EXPECT_EQ(first.at("name"), "Büro");
    EXPECT_EQ(first.at("caption"), "TEAM : Zürich - VLAN : Büro");
    EXPECT_EQ(first.at("status"), (Json{{"code", 3}, {"text", "enabled"}}));
}

TEST_F(VlanCommandsTest, List_OfAParentWithout_SaysSo) {
    ExpectText(Run({"list", kBackup}), 0, "no VLANs\n");
    EXPECT_EQ(RunJson({"list", kBackup}), (Json{{"vlans", Json::array()}}));
}

TEST_F(VlanCommandsTest, Parents_GoByEveryName) {
    for (const char* name :
         {kTeam, "team : Zürich", kTeamId, "233d64cb-b845-581b-a807-c628ffe690c9", kTeamPath,
          "Zorel_TeamOfAdapters.Name='{233D64CB-B845-581B-A807-C628FFE690C9}'"}) {
        EXPECT_EQ(Numbers(name), (std::vector<int>{0, 12, 340})) << name;
    }
    ExpectUsage(Run({"list", "nobody"}), "no adapter is called \"nobody\"; see quilletctl adapter list");
    ExpectUsage(Run({"list", ""}), "an adapter or a team is needed: its name, object ID or path");
}

TEST_F(VlanCommandsTest, Check_SaysWhatIsInTheWayInSentences) {
    ExpectText(Run({"check", kTeam, "100", "Labor"}), 0, "no problems\n");
    ExpectText(Run({"check", kTeam, "12", "VOIP"}), 3,
               "a VLAN with this ID exists\na VLAN with this name exists\n");
    ExpectText(Run({"check", kTeam, "4095", "Labor"}), 3,
               "the VLAN ID is out of range: 1 to 4094, or 0 for the untagged VLAN\n");
    ExpectText(Run({"check", kTeam, "0", "Labor"}), 3, "a VLAN with this ID exists\n");
    ExpectText(Run({"check", kBackup, "0", "Labor"}), 3,
               "the untagged VLAN can only stand beside tagged ones, and there are none\n");
    ExpectText(Run({"check", kMember, "5", "Labor"}), 3,
               "the adapter is a member of a team: VLANs go on the team\n");
    ExpectText(Run({"check", kManagement, "5", "Labor"}), 3,
               std::string(kManagement) + " cannot carry VLANs\n");
    const Json json = RunJson({"check", kTeam, "12", "VoIP"}, 3);
    EXPECT_EQ(json.at("problems"),
              (Json{{"mask", "0x0000000000000030"},
                    {"texts", {"a VLAN with this ID exists", "a VLAN with this name exists"}}}));
    EXPECT_EQ(json.size(), 2u);
    EXPECT_EQ(Numbers(kTeam), (std::vector<int>{0, 12, 340})) << "a check changes nothing";
}

TEST_F(VlanCommandsTest, Check_OfSeveral) {
    ExpectText(Run({"check", kTeam, "100", "Labor", "--through", "160"}), 0, "no problems\n");
    ExpectText(Run({"check", kTeam, "100", "Labor", "--through", "161"}), 3,
               "there would be too many VLANs: 64 is the limit\n");
    ExpectText(Run({"check", kTeam, "10", "Labor", "--through", "12"}), 3, "a VLAN with this ID exists\n");
    ExpectUsage(Run({"check", kTeam, "10", "Labor", "--through", "9"}),
                "--through: an ID from 10 on is needed");
    ExpectUsage(Run({"check", kTeam, "0", "Labor", "--through", "4095"}),
                "--through: an ID from 0 on is needed");
}

TEST_F(VlanCommandsTest, Add_ToATeam_AddsInAClientSetAndTellsOfTheRestart) {
    const Outcome outcome = Run({"add", kTeam, "100", "Labor", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(
        outcome.out.starts_with("added VLAN 100 \"Labor\" to TEAM : Zürich\nno restart is needed\n\n"))
        << outcome.out;
    EXPECT_NE(outcome.out.find("CreateVLAN(VLANNumber=100, Name=\"Labor\") -> 0x00000000"),
              std::string::npos);
    EXPECT_EQ(outcome.out.find("outside a client set"), std::string::npos);
    EXPECT_EQ(Numbers(kTeam), (std::vector<int>{0, 12, 340, 100}));
}

TEST_F(VlanCommandsTest, Add_Several_CallsThemByTheirIds) {
    ExpectText(Run({"add", kBackup, "7", "Lab", "--through", "8"}), 0,
               "added VLAN 7 \"Lab 7\" to Zorel Gigabit Desktop Adapter\n"
               "added VLAN 8 \"Lab 8\" to Zorel Gigabit Desktop Adapter\nno restart is needed\n");
    ExpectText(Run({"add", kBackup, "0", "Rest"}), 0,
               "added the untagged VLAN \"Rest\" to Zorel Gigabit Desktop Adapter\nno restart is needed\n");
    EXPECT_EQ(Numbers(kBackup), (std::vector<int>{7, 8, 0}));
}

TEST_F(VlanCommandsTest, Add_WithSomethingInTheWay_ChangesNothing) {
    ExpectText(Run({"add", kTeam, "12", "Labor"}), 3, "a VLAN with this ID exists\nnothing was changed\n");
    EXPECT_EQ(RunJson({"add", kTeam, "12", "Labor"}, 3).size(), 2u);
    EXPECT_EQ(Numbers(kTeam), (std::vector<int>{0, 12, 340}));
}

TEST_F(VlanCommandsTest, Add_JsonHasTheNewVlans) {
    const Json json = RunJson({"add", kTeam, "100", "Labor"});
    EXPECT_EQ(json.at("parent").at("objectId"), kTeamId);
    EXPECT_EQ(json.at("problems"), (Json{{"mask", "0x0000000000000000"}, {"texts", Json::array()}}));
    ASSERT_EQ(json.at("vlans").size(), 1u);
    EXPECT_EQ(json.at("vlans").at(0).at("caption"), "TEAM : Zürich - VLAN : Labor");
    EXPECT_EQ(json.at("restartNeeded"), false);
}

TEST_F(VlanCommandsTest, Add_WhereTheMachineSaysSo_NeedsARestart) {
    const std::string machine = InFolder("restart.mof").string();
    WriteFile(InFolder("restart.mof"),
              ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
                  "instance of QuilletSimulator_FollowUp { ClassName = \"Zorel_VLAN\"; };\n");
    const Outcome outcome = RunCommandLine({"vlan", "add", kTeam, "100", "Labor", "--simulate", machine});
    ExpectText(outcome, 0, "added VLAN 100 \"Labor\" to TEAM : Zürich\na restart is needed\n");
}

TEST_F(VlanCommandsTest, Modify_ChangesNameAndId) {
    ExpectText(Run({"modify", kTeam, "12", "--name", "Kontor", "--id", "13"}), 0,
               "changed VLAN 12 \"Büro\" of TEAM : Zürich to VLAN 13 \"Kontor\"\nno restart is needed\n");
    EXPECT_EQ(Numbers(kTeam), (std::vector<int>{0, 13, 340}));
    ExpectText(Run({"modify", kTeam, "13", "--name", "KONTOR"}), 0,
               "changed VLAN 13 \"Kontor\" of TEAM : Zürich to VLAN 13 \"KONTOR\"\nno restart is needed\n");
    ExpectText(Run({"modify", kTeam, "0", "--name", "Rest"}), 0,
               "changed the untagged VLAN \"Untagged\" of TEAM : Zürich to the untagged VLAN \"Rest\"\n"
               "no restart is needed\n");
    const Json json = RunJson({"modify", kTeam, "13", "--id", "14"});
    EXPECT_EQ(json.at("vlan").at("number"), 14);
    EXPECT_EQ(json.at("vlan").at("name"), "KONTOR");
    EXPECT_EQ(json.at("restartNeeded"), false);
}

TEST_F(VlanCommandsTest, Modify_WithSomethingInTheWay_ChangesNothing) {
    ExpectText(Run({"modify", kTeam, "12", "--id", "340"}), 3,
               "a VLAN with this ID exists\nnothing was changed\n");
    ExpectText(Run({"modify", kTeam, "12", "--name", "voip"}), 3,
               "a VLAN with this name exists\nnothing was changed\n");
    ExpectText(Run({"modify", kTeam, "12", "--id", "0"}), 3,
               "a VLAN with this ID exists\nnothing was changed\n");
    EXPECT_EQ(RunJson({"modify", kTeam, "12", "--id", "340"}, 3).at("problems").at("mask"),
              "0x0000000000000010");
    EXPECT_EQ(Numbers(kTeam), (std::vector<int>{0, 12, 340}));
    ExpectUsage(Run({"modify", kTeam, "12"}), "a new name or a new ID is needed: --name, --id");
    ExpectUsage(Run({"modify", kTeam, "99", "--id", "5"}),
                "TEAM : Zürich has no VLAN 99; see quilletctl vlan list");
    ExpectUsage(Run({"modify", kTeam, "12", "--id", "five"}),
                "\"five\" is no VLAN ID: a number from 1 to 4094 is needed, or 0 for the untagged VLAN");
}

TEST_F(VlanCommandsTest, Remove_TakesItAway) {
    ExpectText(Run({"remove", kTeam, "12", "--yes"}), 0,
               "removed VLAN 12 \"Büro\" from TEAM : Zürich\nno restart is needed\n");
    EXPECT_EQ(Numbers(kTeam), (std::vector<int>{0, 340}));
    ExpectUsage(Run({"remove", kTeam, "12", "--yes"}),
                "TEAM : Zürich has no VLAN 12; see quilletctl vlan list");
    ExpectUsage(Run({"remove", kTeam, "12x", "--yes"}),
                "TEAM : Zürich has no VLAN \"12x\"; see quilletctl vlan list");
    EXPECT_EQ(RunJson({"remove", kTeam, "340", "--yes"}).at("vlan").at("name"), "VoIP");
}

TEST_F(VlanCommandsTest, ProviderThatRefuses_IsOneLineAndTheSetIsClosed) {
    WriteFile(InFolder("refusing.mof"),
              ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") +
                  "instance of QuilletSimulator_Fault { Id = 1; Operation = \"ExecMethod\"; MethodName = "
                  "\"CreateVLAN\"; Code = 0x80041003; };\n");
    const Outcome outcome = RunCommandLine(
        {"vlan", "add", kTeam, "100", "Labor", "--journal", "--simulate", Utf8(InFolder("refusing.mof"))});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "quilletctl: could not add VLAN 100 \"Labor\" to TEAM : Zürich: access is denied: 0x80041003 "
              "WBEM_E_ACCESS_DENIED\n");
    EXPECT_NE(outcome.out.find(", Apply(ClientSetHandle="), std::string::npos) << outcome.out;
}

TEST_F(VlanCommandsTest, Names_CannotSteerTheTerminal) {
    const Outcome outcome = Run({"add", kTeam, "100", "a\x1b[31m\nb"});
    ExpectText(outcome, 0,
               "added VLAN 100 \"a\xEF\xBF\xBD[31m\xEF\xBF\xBD"
               "b\" to TEAM : Zürich\nno restart is needed\n");
}

} // namespace
