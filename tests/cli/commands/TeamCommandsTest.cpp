// The commands about teams, against machines that keep what was done to them.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

constexpr const char* kTeamId = "{233D64CB-B845-581B-A807-C628FFE690C9}";
constexpr const char* kFirst = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}";
constexpr const char* kSecond = "{5DB8F12F-BC1D-503E-8302-0ED98B178FB8}";
constexpr const char* kMember = "{DF69224E-BBCB-576F-A929-C8858BAF7155}";
constexpr const char* kOtherMember = "{D2BC81D1-8495-5F60-84AD-B2450A03D882}";
constexpr const char* kFastEthernet = "{B7C745E2-5F95-594C-84B8-FEF21E7B75F5}";

/// The shipped machine under a fixed name, kept in a file from one command to the next.
class TeamsTest : public CommandLine {
  protected:
    Outcome Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(),
                         {"--simulate", TestMachine("golden.mof"), "--state", Utf8(InFolder("state.mof"))});
        return RunCommandLine(arguments);
    }
    Json RunJson(std::vector<std::string> arguments, int status = 0) {
        arguments.push_back("--json");
        const Outcome outcome = Run(std::move(arguments));
        EXPECT_EQ(outcome.status, status) << outcome.err;
        return Json::parse(outcome.out, nullptr, false);
    }
    /// The names and roles of a team's members.
    std::vector<std::string> Members(const std::string& team) {
        std::vector<std::string> members;
        const Json shown = RunJson({"team", "show", team});
        for (const Json& member : shown.at("members")) {
            members.push_back(member.at("deviceId").get<std::string>() + " " +
                              member.at("role").at("text").get<std::string>());
        }
        return members;
    }
};

TEST_F(TeamsTest, List_IsATable) {
    const Outcome outcome = Run({"team", "list"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "NAME           MODE                     STATUS   MEMBERS                    "
                           "                                                                  OBJECT ID\n"
                           "TEAM : Zürich  adaptive load balancing  enabled  Zorel Quad Port Gigabit "
                           "Server Adapter (up), Zorel Quad Port Gigabit Server Adapter #2 (up)  "
                           "{233D64CB-B845-581B-A807-C628FFE690C9}\n");
}

TEST_F(TeamsTest, List_JsonHasItsKeysInOrder) {
    EXPECT_EQ(
        RunJson({"team", "list"}).dump(),
        R"({"teams":[{"path":"\\\\LAB-SERVER\\ROOT\\MarloLUM2:Zorel_TeamOfAdapters.)"
        R"(Name=\"{233D64CB-B845-581B-A807-C628FFE690C9}\"",)"
        R"("objectId":"{233D64CB-B845-581B-A807-C628FFE690C9}","name":"TEAM : Zürich",)"
        R"("mode":{"code":1,"text":"adaptive load balancing"},"status":{"code":3,"text":"enabled"},)"
        R"("members":2,"adapters":[)"
        R"({"path":"\\\\LAB-SERVER\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter.)"
        R"(DeviceID=\"{DF69224E-BBCB-576F-A929-C8858BAF7155}\"",)"
        R"("objectId":"{DF69224E-BBCB-576F-A929-C8858BAF7155}",)"
        R"("name":"Zorel Quad Port Gigabit Server Adapter","role":{"code":1,"text":"primary"},"link":"up"},)"
        R"({"path":"\\\\LAB-SERVER\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter.)"
        R"(DeviceID=\"{D2BC81D1-8495-5F60-84AD-B2450A03D882}\"",)"
        R"("objectId":"{D2BC81D1-8495-5F60-84AD-B2450A03D882}",)"
        R"("name":"Zorel Quad Port Gigabit Server Adapter #2","role":{"code":2,"text":"secondary"},)"
        R"("link":"up"}]}]})");
}

TEST_F(TeamsTest, List_OfAMachineWithoutTeams) {
    const std::string machine = MachineFile("");
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "team", "list"}).out, "no teams\n");
    EXPECT_EQ(Json::parse(RunCommandLine({"--simulate", machine, "team", "list", "--json"}).out),
              (Json{{"teams", Json::array()}}));
}

TEST_F(TeamsTest, Show_TellsTheTeamAndItsMembers) {
    const Outcome outcome = Run({"team", "show", kTeamId});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Name:                      TEAM : Zürich\n"
                           "Object ID:                 {233D64CB-B845-581B-A807-C628FFE690C9}\n"
                           "Mode:                      adaptive load balancing\n"
                           "Status:                    enabled\n"
                           "MAC address:               02-00-5E-00-20-01\n"
                           "Adapters of other makers:  no\n"
                           "Link security:             no\n"
                           "Bound to Hyper-V:          no\n"
                           "Enabled members:           2 of 2\n"
                           "\n"
                           "MEMBER                                     ROLE       STATUS  LINK  OBJECT ID\n"
                           "Zorel Quad Port Gigabit Server Adapter     primary    active  up    "
                           "{DF69224E-BBCB-576F-A929-C8858BAF7155}\n"
                           "Zorel Quad Port Gigabit Server Adapter #2  secondary  active  up    "
                           "{D2BC81D1-8495-5F60-84AD-B2450A03D882}\n");
    const Json member = RunJson({"team", "show", kTeamId}).at("members").at(1);
    EXPECT_EQ(member.at("name"), "Zorel Quad Port Gigabit Server Adapter #2");
    EXPECT_EQ(member.at("caption"), "Zürich 2");
    EXPECT_EQ(member.at("objectId"), kOtherMember);
}

TEST_F(TeamsTest, Show_FindsATeamByAllItsNames) {
    const std::string path = RunJson({"team", "list"}).at("teams").at(0).at("path");
    for (const std::string& name :
         {std::string("TEAM : Zürich"), std::string("team : Zürich"), std::string(kTeamId),
          std::string("233d64cb-b845-581b-a807-c628ffe690c9"), path,
          std::string("Zorel_TeamOfAdapters.Name='{233D64CB-B845-581B-A807-C628FFE690C9}'")}) {
        EXPECT_EQ(RunJson({"team", "show", name}).at("objectId"), kTeamId) << name;
    }
    const Outcome nobody = Run({"team", "show", "nobody"});
    EXPECT_EQ(nobody.status, 2);
    EXPECT_EQ(nobody.err, "quilletctl: no team is called \"nobody\"; see quilletctl team list\n");
    EXPECT_EQ(Run({"team", "show"}).status, 2);
    EXPECT_EQ(Run({"team", "show", ""}).status, 2);
    EXPECT_EQ(Run({"team", "show", "Zorel_TeamOfAdapters.Name='{0}'"}).status, 1);
}

TEST_F(TeamsTest, Show_NameOfSeveral_TellsTheirIds) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_TeamOfAdapters { Name = "{1}"; Caption = "twin"; TeamingMode = 0; MFOEnabled = FALSE;
            LinksecEnabled = FALSE; };
        instance of Zorel_TeamOfAdapters { Name = "{2}"; Caption = "Twin"; TeamingMode = 0; MFOEnabled = FALSE;
            LinksecEnabled = FALSE; };)");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "team", "show", "twin"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "quilletctl: several teams are called \"twin\": {1}, {2}\n");
    const Outcome listed = RunCommandLine({"--simulate", machine, "team", "list"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_NE(listed.out.find("not told: 0x80041001"), std::string::npos)
        << "a team without its logical adapter is shown all the same";
}

TEST_F(TeamsTest, Modes_AreThoseThatAllAdaptersSupport) {
    const Outcome outcome = Run({"team", "modes", kFirst, kSecond});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("5     switch fault tolerance"), std::string::npos) << outcome.out;
    const Json three = RunJson({"team", "modes", kFirst, kSecond, kMember});
    EXPECT_EQ(three.at("adapters"), 3);
    EXPECT_EQ(three.at("modes").size(), 6u);
    const Json free = RunJson({"team", "modes"});
    EXPECT_EQ(free.at("adapters"), 8) << "those that are in no team";
    EXPECT_EQ(free.at("modes").at(0), (Json{{"code", 0}, {"text", "Fault tolerance team"}}));
    EXPECT_EQ(Run({"team", "modes", kFirst, "--team", kTeamId}).status, 2);
}

TEST_F(TeamsTest, Modes_OfATeam_AsksForTheBest) {
    const Outcome outcome = Run({"team", "modes", "--team", kTeamId});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Detection:  completed\n"
                           "Coverage:   100 %\n"
                           "Best mode:  IEEE 802.3ad Dynamic Link Aggregation (4)\n");
    const Json json = RunJson({"team", "modes", "--team", kTeamId});
    EXPECT_EQ(json.at("coverage"), 100);
    EXPECT_EQ(json.at("mode").at("code"), 4);
}

TEST_F(TeamsTest, Create_ChecksMakesAndSaysWhetherARestartIsNeeded) {
    const Outcome outcome = Run({"team", "create", "Fast", kFirst, kSecond, "--mode", "4", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out.substr(0, outcome.out.find('\n')), "created the team Fast: no restart is needed");
    // Checks first, then one client set around the change.
    std::size_t position = 0;
    for (const char* call : {"ValidateTeamName", "ValidateTeamMode", "ValidateNewTeamMembers",
                             "ValidateSettingOnNewTeam", "BeginApply", ", CreateTeam(", ", Apply("}) {
        const std::size_t found = outcome.out.find(call, position);
        ASSERT_NE(found, std::string::npos) << call << "\n" << outcome.out;
        position = found;
    }
    const Json shown = RunJson({"team", "show", "Fast"});
    EXPECT_EQ(shown.at("mode").at("code"), 4);
    EXPECT_EQ(shown.at("linkSecurity"), false);
    EXPECT_EQ(Members("Fast"), (std::vector<std::string>{kFirst + std::string(" primary"),
                                                         kSecond + std::string(" secondary")}));
}

TEST_F(TeamsTest, Create_OptionsReachTheProvider) {
    const Json made = RunJson({"team", "create", "Fast", kFirst, kSecond, "--mode", "switch fault tolerance",
                               "--prefix", "--mfo", "--link-security", "--profile", "2"});
    EXPECT_EQ(made.at("name"), "TEAM : Fast");
    EXPECT_EQ(made.at("mode"), (Json{{"code", 5}, {"text", "switch fault tolerance"}}));
    EXPECT_EQ(made.at("restartNeeded"), false);
    const Json shown = RunJson({"team", "show", made.at("objectId").get<std::string>()});
    EXPECT_EQ(shown.at("mfo"), true);
    EXPECT_EQ(shown.at("linkSecurity"), true);
}

TEST_F(TeamsTest, Create_Problems_AreSentencesAndNothingIsMade) {
    const Outcome outcome = Run({"team", "create", "TEAM : Zürich", kFastEthernet, kMember, "--mode", "4"});
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_EQ(outcome.out, "an adapter does not support the team mode\n"
                           "an adapter is a member of a team already\n"
                           "a team with this name exists\n"
                           "the adapters differ in a setting that a team needs to be alike\n");
    const Json json = RunJson({"team", "create", "New", kFastEthernet, kFirst}, 3);
    EXPECT_EQ(json.at("mask").get<std::string>().substr(0, 2), "0x");
    EXPECT_FALSE(json.at("problems").empty());
    EXPECT_EQ(RunJson({"team", "list"}).at("teams").size(), 1u);
    EXPECT_EQ(Run({"team", "create", "New", kFastEthernet, kFirst, "--mode", "0", "--force"}).status, 0);
    EXPECT_EQ(RunJson({"team", "list"}).at("teams").size(), 2u);
}

TEST_F(TeamsTest, Create_BadUsage) {
    EXPECT_EQ(Run({"team", "create", "New"}).status, 2);
    EXPECT_EQ(Run({"team", "create", "", kFirst}).status, 2);
    EXPECT_EQ(Run({"team", "create", "New", "nobody"}).status, 2);
    const Outcome mode = Run({"team", "create", "New", kFirst, "--mode", "7"});
    EXPECT_EQ(mode.status, 2);
    EXPECT_TRUE(
        mode.err.starts_with("quilletctl: no team mode is called \"7\"; there are 0 (fault tolerance), "))
        << mode.err;
    EXPECT_EQ(Run({"team", "create", "New", kMember, "--force"}).status, 1) << "refused by the provider";
}

TEST_F(TeamsTest, AddAndRemove_ChangeTheMembers) {
    const Outcome added = Run({"team", "add", kTeamId, kFirst, kMember});
    EXPECT_EQ(added.status, 0) << added.err;
    EXPECT_EQ(added.out, "TEAM : Zürich has 3 members: no restart is needed\n");
    EXPECT_EQ(Members(kTeamId).size(), 3u);
    const Outcome removed = Run({"team", "remove", kTeamId, kMember, kFirst, "--yes"});
    EXPECT_EQ(removed.out, "TEAM : Zürich has 1 member: no restart is needed\n");
    EXPECT_EQ(Members(kTeamId), (std::vector<std::string>{kOtherMember + std::string(" primary")}));
    const Outcome stranger = Run({"team", "remove", kTeamId, kSecond, "--yes"});
    EXPECT_EQ(stranger.status, 2);
    EXPECT_NE(stranger.err.find(" is no member of TEAM : Zürich"), std::string::npos) << stranger.err;
    const Outcome rest = Run({"team", "remove", kTeamId, "*", "--yes"});
    EXPECT_EQ(rest.out, "TEAM : Zürich has 0 members: no restart is needed\n")
        << "a pattern chooses among the members";
    const Outcome problems = Run({"team", "add", kTeamId, kFastEthernet, kFirst});
    EXPECT_EQ(problems.status, 3);
    EXPECT_EQ(problems.out, "adapters of 10 gigabit and slow ones cannot be in one team\n");
}

TEST_F(TeamsTest, Modify_ChangesNameAndMode) {
    const Outcome renamed = Run({"team", "modify", kTeamId, "--name", "Core", "--mode", "4"});
    EXPECT_EQ(renamed.status, 0) << renamed.err;
    EXPECT_EQ(renamed.out, "changed TEAM : Zürich: no restart is needed\n");
    const Json shown = RunJson({"team", "show", "Core"});
    EXPECT_EQ(shown.at("mode").at("code"), 4);
    EXPECT_EQ(shown.at("objectId"), kTeamId);
    EXPECT_EQ(Run({"team", "modify", "Core"}).status, 2) << "nothing to change";
    EXPECT_EQ(Run({"team", "modify", "Core", "--mode", "none"}).status, 2);
    EXPECT_EQ(Run({"team", "add", "Core", kFirst}).status, 0);
    const Outcome problems = Run({"team", "modify", "Core", "--mode", "5"});
    EXPECT_EQ(problems.status, 3);
    EXPECT_EQ(problems.out, "a team of switch fault tolerance has two members\n");
}

TEST_F(TeamsTest, Delete_TakesTheTeamAway) {
    const Outcome outcome = Run({"team", "delete", kTeamId, "--yes"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "deleted TEAM : Zürich: no restart is needed\n");
    EXPECT_EQ(Run({"team", "list"}).out, "no teams\n");
    EXPECT_EQ(Run({"team", "delete", kTeamId, "--yes"}).status, 2);
}

TEST_F(TeamsTest, Primary_ChangesTheRole) {
    const Outcome outcome = Run({"team", "primary", kOtherMember});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "Zorel Quad Port Gigabit Server Adapter #2: primary: no restart is needed\n");
    EXPECT_EQ(Members(kTeamId), (std::vector<std::string>{kMember + std::string(" secondary"),
                                                          kOtherMember + std::string(" primary")}));
    EXPECT_EQ(RunJson({"team", "primary", kOtherMember, "--none"}).at("primary"), false);
    EXPECT_EQ(RunJson({"team", "primary", kOtherMember, "--secondary"}).at("role"),
              (Json{{"code", 2}, {"text", "secondary"}}));
    const Outcome alone = Run({"team", "primary", kFirst});
    EXPECT_EQ(alone.status, 1);
    EXPECT_EQ(alone.err,
              "quilletctl: could not change the role of Zorel 10G Dual Port Server Adapter: the adapter "
              "is in no team: 0x80041001 WBEM_E_FAILED\n");
    EXPECT_EQ(Run({"team", "primary", kMember, "--secondary", "--none"}).status, 2);
}

TEST_F(TeamsTest, SwitchTest_IsForModesThatNeedTheSwitch) {
    const Outcome outcome = Run({"team", "switch-test", kTeamId});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err,
              "quilletctl: TEAM : Zürich: adaptive load balancing asks nothing of the switch, so "
              "there is nothing to test\n");
}

TEST_F(TeamsTest, SwitchTest_WaitsForTheResultAndTellsCausesWithSolutions) {
    const std::string machine = MachineFile(R"(
        instance of QuilletSimulator_Machine { Name = "running"; FollowRealTime = TRUE; };
        instance of Zorel_PhysicalEthernetAdapter as $A { DeviceID = "{A}"; Caption = "up"; HardwareStatus = 3; };
        instance of Zorel_PhysicalEthernetAdapter as $B { DeviceID = "{B}"; Caption = "down"; HardwareStatus = 2; };
        instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "T"; TeamingMode = 4; MFOEnabled = FALSE;
            LinksecEnabled = FALSE; };
        instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; };
        instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; };)");
    const Outcome outcome = RunCommandLine({"--simulate", machine, "team", "switch-test", "T"});
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_EQ(outcome.out, "the test of the switch: failed\n"
                           "The adapter down has no link.\n"
                           "  Connect its cable, and enable its port on the switch.\n");
    const Outcome late =
        RunCommandLine({"--simulate", machine, "team", "switch-test", "T", "--timeout", "1"});
    EXPECT_EQ(late.status, 1);
    EXPECT_EQ(late.err, "quilletctl: could not test the switch of T in time: it took too long: 0x80041069 "
                        "WBEM_E_TIMED_OUT\n");
}

TEST_F(TeamsTest, AFailureInsideTheSet_ClosesIt) {
    std::string mof = ReadFile(TestMachine("golden.mof"));
    mof += "instance of QuilletSimulator_Fault { Id = 1; Operation = \"DeleteInstance\"; Code = 0x80041003; "
           "};\n";
    // In another folder its relative path leads nowhere.
    const std::size_t include = mof.find("#pragma include");
    mof.replace(include, mof.find('\n', include) - include,
                ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof"));
    WriteFile(InFolder("faulty.mof"), mof);
    const Outcome outcome = RunCommandLine(
        {"--simulate", Utf8(InFolder("faulty.mof")), "team", "delete", kTeamId, "--yes", "--journal"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.err,
        "quilletctl: could not delete TEAM : Zürich: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n");
    EXPECT_LT(outcome.out.find("DeleteInstance"), outcome.out.find(", Apply(")) << outcome.out;
    EXPECT_NE(outcome.out.find(", Apply("), std::string::npos);
}

} // namespace
