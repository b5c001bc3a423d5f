// Commands that make several changes, or one of which a part is done: what is there afterwards, what is not,
// and whether a restart is needed.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

constexpr const char* kPartialWorkTeam = "TEAM : Zürich";
constexpr const char* kPartialWorkFree = "Zorel Gigabit Desktop Adapter";
constexpr const char* kMember = "Zorel Quad Port Gigabit Server Adapter";
constexpr const char* kOtherMember = "Zorel Quad Port Gigabit Server Adapter #2";
constexpr const char* kFirst = "Zorel 10G Dual Port Server Adapter";
constexpr const char* kSecond = "Zorel 10G Dual Port Server Adapter #2";

class PartialWorkTest : public CommandLine {
  protected:
    /// Runs a command on the shipped machine with faults, and keeps what it left.
    Outcome Run(std::vector<std::string> command, const std::string& faults) {
        WriteFile(InFolder("faulty.mof"),
                  ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof") + faults);
        command.insert(command.end(), {"--simulate", Utf8(InFolder("faulty.mof"))});
        return RunCommandLine(command);
    }
    Json RunJson(std::vector<std::string> command, const std::string& faults) {
        command.push_back("--json");
        const Outcome outcome = Run(std::move(command), faults);
        EXPECT_EQ(outcome.status, 1);
        return Json::parse(outcome.out, nullptr, false);
    }
    static std::string Fault(const std::string& what) {
        return "instance of QuilletSimulator_Fault { Id = 1; Code = 0x80041003; " + what + " };\n";
    }
    static std::string Restart(const std::string& className) {
        return "instance of QuilletSimulator_FollowUp { ClassName = \"" + className + "\"; };\n";
    }
};

const std::string kSecondVlan = "Operation = \"ExecMethod\"; MethodName = \"CreateVLAN\"; Nth = 2;";
const std::string kApply = "Operation = \"ExecMethod\"; MethodName = \"Apply\";";

TEST_F(PartialWorkTest, VlanAdd_StopsAtTheFirstRefusal_AndTellsWhatIsThereAndWhatIsNot) {
    const Outcome outcome = Run({"vlan", "add", kPartialWorkFree, "7", "Lab", "--through", "9"},
                                Fault(kSecondVlan) + Restart("Zorel_VLAN"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "added VLAN 7 \"Lab 7\" to Zorel Gigabit Desktop Adapter\n"
                           "not added: VLAN 8 \"Lab 8\"\n"
                           "not added: VLAN 9 \"Lab 9\"\n"
                           "a restart is needed\n");
    EXPECT_EQ(outcome.err, "quilletctl: could not add VLAN 8 \"Lab 8\" to Zorel Gigabit Desktop Adapter: "
                           "access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n");
}

TEST_F(PartialWorkTest, VlanAdd_Json) {
    const Json json = RunJson({"vlan", "add", kPartialWorkFree, "7", "Lab", "--through", "9"},
                              Fault(kSecondVlan) + Restart("Zorel_VLAN"));
    ASSERT_EQ(json.at("vlans").size(), 1u);
    EXPECT_EQ(json.at("vlans").at(0).at("number"), 7);
    EXPECT_EQ(json.at("notAdded"),
              Json::array({{{"number", 8}, {"name", "Lab 8"}, {"code", "0x80041003 WBEM_E_ACCESS_DENIED"}},
                           {{"number", 9}, {"name", "Lab 9"}, {"code", nullptr}}}));
    EXPECT_EQ(json.at("restartNeeded"), true);
}

TEST_F(PartialWorkTest, VlanAdd_AVlanThatWasMadeButCannotBeRead_IsThere) {
    const Outcome outcome = Run({"vlan", "add", kPartialWorkFree, "7", "Lab"},
                                Fault("Operation = \"GetObject\"; Target = \"Zorel_VLAN\";"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "added VLAN 7 \"Lab\" to Zorel Gigabit Desktop Adapter\nno restart is needed\n");
    EXPECT_THAT(outcome.err, HasSubstr("could not add VLAN 7"));
}

TEST_F(PartialWorkTest, VlanAdd_TheVlanBehindTheOneThatCannotBeRead_WasNotTried) {
    const Json json = RunJson({"vlan", "add", kPartialWorkFree, "7", "Lab", "--through", "8"},
                              Fault("Operation = \"GetObject\"; Target = \"Zorel_VLAN\";"));
    ASSERT_EQ(json.at("vlans").size(), 1u);
    EXPECT_EQ(json.at("vlans").at(0).at("number"), 7);
    EXPECT_EQ(json.at("notAdded"), Json::array({{{"number", 8}, {"name", "Lab 8"}, {"code", nullptr}}}));
}

TEST_F(PartialWorkTest, VlanAdd_TheOnlyOneRefused_IsAnError) {
    const Json error = RunJson({"vlan", "add", kPartialWorkFree, "7", "Lab"},
                               Fault("Operation = \"ExecMethod\"; MethodName = \"CreateVLAN\";"))
                           .at("error");
    EXPECT_EQ(error.at("name"), "WBEM_E_ACCESS_DENIED");
    EXPECT_EQ(error.at("restartNeeded"), false);
}

TEST_F(PartialWorkTest, VlanModify_ThatCannotBeReadBack_WasSent) {
    const Outcome outcome = Run({"vlan", "modify", kPartialWorkTeam, "12", "--name", "Kontor"},
                                Fault("Operation = \"GetObject\"; Target = \"Zorel_VLAN\"; Nth = 2;"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "sent, but whether it took could not be read\nno restart is needed\n");
    EXPECT_EQ(
        outcome.err,
        "quilletctl: could not read VLAN 12 \"Kontor\": access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n");
}

TEST_F(PartialWorkTest, TeamAdd_TellsWhoWasAdded) {
    const std::string fault = Fault("Operation = \"PutInstance\"; Nth = 2;");
    const Outcome outcome = Run({"team", "add", kPartialWorkTeam, kFirst, kSecond}, fault);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "not added: Zorel 10G Dual Port Server Adapter #2\n"
                           "TEAM : Zürich has 3 members: no restart is needed\n");
    EXPECT_EQ(outcome.err, "quilletctl: could not add Zorel 10G Dual Port Server Adapter #2 to TEAM : "
                           "Zürich: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n");
    const Json json = RunJson({"team", "add", kPartialWorkTeam, kFirst, kSecond}, fault);
    EXPECT_EQ(json.at("done").size(), 1u);
    ASSERT_EQ(json.at("notDone").size(), 1u);
    EXPECT_EQ(json.at("notDone").at(0).at("code"), "0x80041003 WBEM_E_ACCESS_DENIED");
}

TEST_F(PartialWorkTest, TeamRemove_TellsWhoIsStillThere) {
    const Outcome outcome = Run({"team", "remove", kPartialWorkTeam, kMember, kOtherMember, kMember, "--yes"},
                                Fault("Operation = \"DeleteInstance\"; Nth = 2;"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "not taken out: Zorel Quad Port Gigabit Server Adapter #2\n"
                           "TEAM : Zürich has 1 member: no restart is needed\n");
    EXPECT_THAT(outcome.err,
                HasSubstr("could not take Zorel Quad Port Gigabit Server Adapter #2 out of TEAM"));
}

TEST_F(PartialWorkTest, TeamCreate_ATeamThatWasMadeButCannotBeRead_IsTold) {
    const Outcome outcome =
        Run({"team", "create", "Fast", kFirst, kSecond, "--force", "--journal"},
            Fault("Operation = \"GetObject\"; Target = \"Zorel_TeamOfAdapters\"; Nth = 2;"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, testing::StartsWith("created the team Fast: no restart is needed\n"));
    EXPECT_THAT(outcome.err, HasSubstr("could not create the team Fast: access is denied: 0x80041003"));
}

TEST_F(PartialWorkTest, TeamPrimary_ThatCannotBeReadBack_WasSent) {
    const std::string fault = Fault("Operation = \"ExecQuery\"; Nth = 2;");
    const Outcome outcome = Run({"team", "primary", kOtherMember}, fault);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out,
              "Zorel Quad Port Gigabit Server Adapter #2: sent, but whether it took could not be "
              "read: no restart is needed\n");
    EXPECT_THAT(outcome.err, HasSubstr("could not list the members of TEAM : Zürich: access is denied"));
    EXPECT_TRUE(RunJson({"team", "primary", kOtherMember}, fault).at("primary").is_null());
}

TEST_F(PartialWorkTest, ASetThatCannotBeClosed_LeavesTheRestartUnknown) {
    const std::vector<std::string> command{"setting", "set", kFirst, "*JumboPacket", "4088"};
    const Outcome outcome = Run(command, Fault(kApply));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "Zorel 10G Dual Port Server Adapter: set to 4088 Bytes (4088)\n"
                           "whether a restart is needed is not known\n");
    EXPECT_EQ(
        outcome.err,
        "quilletctl: could not close the client set: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n");
    const Json json = RunJson(command, Fault(kApply));
    EXPECT_EQ(json.at("targets").at(0).at("outcome"), "changed");
    EXPECT_TRUE(json.at("restartNeeded").is_null());
}

TEST_F(PartialWorkTest, AnErrorInPlaceOfAnAnswer_TellsOfTheRestart) {
    // The VLAN is made; neither it nor the list of VLANs can be read then.
    const std::vector<std::string> command{"vlan", "add", kPartialWorkFree, "7", "Lab"};
    const std::string faults = Fault("Operation = \"GetObject\"; Target = \"Zorel_VLAN\";") +
                               "instance of QuilletSimulator_Fault { Id = 2; Code = 0x80041010; Operation = "
                               "\"ExecQuery\"; Target = \"Zorel_VLAN\"; Nth = 2; };\n" +
                               Restart("Zorel_VLAN");
    const Outcome outcome = Run(command, faults);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "a restart is needed\n");
    EXPECT_EQ(outcome.err, "quilletctl: could not add VLAN 7 \"Lab\" to Zorel Gigabit Desktop Adapter: "
                           "access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n"
                           "quilletctl: could not list the VLANs of Zorel Gigabit Desktop Adapter: the "
                           "provider knows nothing of this kind: 0x80041010 WBEM_E_INVALID_CLASS\n");
    EXPECT_EQ(RunJson(command, faults).at("error").at("restartNeeded"), true);
}

TEST_F(PartialWorkTest, RefusedAndNotClosed_AreTwoLines) {
    const Outcome outcome =
        Run({"team", "delete", kPartialWorkTeam, "--yes"},
            Fault("Operation = \"DeleteInstance\";") +
                "instance of QuilletSimulator_Fault { Id = 2; Code = 0x80041010; " + kApply + " };\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.err,
        "quilletctl: could not delete TEAM : Zürich: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED\n"
        "quilletctl: could not close the client set: the provider knows nothing of this kind: 0x80041010 "
        "WBEM_E_INVALID_CLASS\n");
}

} // namespace
