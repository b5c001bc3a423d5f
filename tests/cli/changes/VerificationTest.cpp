// Changes that the provider accepts and does not make, or makes in part: what the tool says then.
#include "support/Descriptor.h"
#include "support/LinksecMachine.h"
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kFree = "Zorel Gigabit Server Adapter (東京)";
constexpr const char* kMember = "Zorel Quad Port Gigabit Server Adapter #2";
constexpr const char* kTeam = "TEAM : Zürich";
constexpr const char* kNotAll = ": the provider accepted it, but not all of it took\n";

/// The shipped machine with faults.
class VerifiedTest : public CommandLine {
  protected:
    /// Makes calls do something else than they should.
    void Fault(const std::string& mof) {
        m_faults +=
            "instance of QuilletSimulator_Fault { Id = " + std::to_string(++m_count) + "; " + mof + " };\n";
    }
    /// A method that does nothing and tells so only in its return value, which the library traces.
    void Refuse(const std::string& method) {
        Fault("Operation = \"ExecMethod\"; MethodName = \"" + method +
              "\"; Effect = \"Verdict\"; ReturnValue = 5; Repeat = TRUE;");
    }
    /// Stores or deletes nothing, and tells nobody.
    void Ignore(const std::string& operation) {
        Fault("Operation = \"" + operation + "\"; Effect = \"FailStatus\"; Code = 0; Repeat = TRUE;");
    }
    Outcome Run(std::vector<std::string> arguments) const {
        const std::filesystem::path file = InFolder("machine.mof");
        WriteFile(file, m_machine + m_faults);
        arguments.insert(arguments.begin(), {"--simulate", Utf8(file)});
        return RunCommandLine(arguments);
    }
    /// Runs a command that did not do what was asked for: as text and as JSON.
    void ExpectNotTaken(const std::vector<std::string>& arguments, const std::string& text,
                        const Json& differences, const std::string& asked) const {
        const Outcome told = Run(arguments);
        EXPECT_EQ(told.status, 1);
        EXPECT_EQ(told.out, text);
        EXPECT_EQ(told.err, "quilletctl: could not " + asked + kNotAll);
        std::vector<std::string> words = arguments;
        words.emplace_back("--json");
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, told.err);
        const Json json = Json::parse(outcome.out, nullptr, false);
        EXPECT_EQ(json.at("took"), false) << outcome.out;
        EXPECT_EQ(json.at("differences"), differences) << outcome.out;
    }

    std::string m_machine = ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof");

  private:
    std::string m_faults;
    int m_count = 0;
};

Json Difference(const char* what, Json wanted, Json found) {
    return Json{{"what", what}, {"wanted", std::move(wanted)}, {"found", std::move(found)}};
}

TEST_F(VerifiedTest, Power_NothingTaken_IsToldOptionByOption) {
    Refuse("SetPowerUsageOptions");
    ExpectNotTaken({"power", "set", kFree, "--mode", "1", "--smart-power-down", "on"},
                   "did not take: Power-saving mode is 0, not 1; Power down when unused is off, not on; "
                   "no restart is needed\n",
                   Json{Difference("mode", 1, 0), Difference("smartPowerDown", true, false)},
                   std::string("set the power options of ") + kFree);
}

TEST_F(VerifiedTest, Power_TakenInPart_TellsTheOtherPart) {
    // The second reading is the one behind the change.
    Fault("Operation = \"Get\"; Target = \"SmartPowerDown\"; Nth = 2; Effect = \"NullValue\";");
    ExpectNotTaken({"power", "set", kFree, "--mode", "1", "--smart-power-down", "on"},
                   "did not take: Power down when unused is not available, not on; no restart is needed\n",
                   Json::array({Difference("smartPowerDown", true, Json())}),
                   std::string("set the power options of ") + kFree);
}

TEST_F(VerifiedTest, Power_IsReadBackWhenTheClientSetIsClosed) {
    const Outcome outcome = Run({"power", "set", kFree, "--mode", "1", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const auto set = outcome.out.find(", SetPowerUsageOptions(");
    const auto close = outcome.out.find(", Apply(", set);
    EXPECT_NE(outcome.out.find(", GetPowerUsageOptions(", close), std::string::npos) << outcome.out;
}

TEST_F(VerifiedTest, Power_ThatCannotBeReadBack_IsLeftOpenAndIsAFailure) {
    Fault("Operation = \"ExecMethod\"; MethodName = \"GetPowerUsageOptions\"; Nth = 2; Effect = \"Fail\"; "
          "Code = 0x80041001;");
    const Outcome told = Run({"power", "set", kFree, "--mode", "1"});
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(told.out, "sent, but whether it took could not be read; no restart is needed\n");
    EXPECT_EQ(told.err, std::string("quilletctl: could not read the power options of ") + kFree +
                            ": 0x80041001 WBEM_E_FAILED\n");
    const Outcome outcome = Run({"power", "set", kFree, "--mode", "1", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(Json::parse(outcome.out, nullptr, false),
              (Json{{"restartNeeded", false}, {"took", Json()}, {"differences", Json::array()}}));
}

TEST_F(VerifiedTest, WakeOnLan_NothingTaken) {
    Refuse("SetWakeOnLanPowerOptions");
    const Json before = Json::parse(Run({"wol", "show", kFree, "--json"}).out, nullptr, false);
    const bool magic = before.at("magicPacket");
    ExpectNotTaken({"wol", "set", kFree, "--magic-packet", magic ? "off" : "on"},
                   std::string("did not take: Wake on magic packet is ") +
                       (magic ? "on, not off" : "off, not on") + "; no restart is needed\n",
                   Json::array({Difference("magicPacket", !magic, magic)}),
                   std::string("set the wake-on-LAN options of ") + kFree);
}

TEST_F(VerifiedTest, WhatTellsNothingIsOnlySent) {
    Refuse("SetPowerMgmtCapabilities");
    Refuse("IdentifyAdapter");
    const Outcome reapplied = Run({"power", "reapply", kFree});
    EXPECT_EQ(reapplied.status, 0) << reapplied.err;
    EXPECT_EQ(reapplied.out, "sent; the adapter does not tell whether it took; no restart is needed\n");
    EXPECT_TRUE(Json::parse(Run({"power", "reapply", kFree, "--json"}).out).at("took").is_null());
    const Outcome blinking = Run({"adapter", "identify", kFree});
    EXPECT_EQ(blinking.status, 0) << blinking.err;
    EXPECT_THAT(blinking.out, HasSubstr("it does not tell whether it does"));
    EXPECT_TRUE(Json::parse(Run({"adapter", "identify", kFree, "--json"}).out).at("took").is_null());
}

class VerifiedLinksecTest : public VerifiedTest {
  protected:
    VerifiedLinksecTest() {
        m_machine = ReadFile(QUILLET_SOURCE_DIR "/simulator/machines/empty.mof") + kLinksecMachine;
    }
    /// As ExpectNotTaken, with a line for each secret; nothing that is written may be one.
    void ExpectNotTakenWith(const std::string& secrets, const std::vector<std::string>& arguments,
                            const std::string& text, const Json& differences,
                            const std::string& asked) const {
        for (const bool asJson : {false, true}) {
            const Descriptor descriptor(secrets);
            std::vector<std::string> words = arguments;
            words.insert(words.begin(), "linksec");
            if (!secrets.empty()) {
                words.insert(words.end(), {"--secret-fd", descriptor.Number()});
            }
            if (asJson) {
                words.emplace_back("--json");
            }
            const Outcome outcome = Run(words);
            EXPECT_EQ(outcome.status, 1) << outcome.out;
            EXPECT_THAT(outcome.out, Not(HasSubstr("CANARY")));
            EXPECT_EQ(outcome.err, "quilletctl: could not " + asked + kNotAll);
            if (asJson) {
                EXPECT_EQ(Json::parse(outcome.out, nullptr, false).at("differences"), differences)
                    << outcome.out;
            } else {
                EXPECT_EQ(outcome.out, text);
            }
        }
    }
};

TEST_F(VerifiedLinksecTest, Keys_NothingTaken) {
    Refuse("SetLinksecManualCfgKeys");
    ExpectNotTakenWith(
        "CANARY-one\nCANARY-two\n",
        {"set-keys", "A", "--tx-number2", "9", "--encryption", "off", "--rx-sci", "new"},
        "did not take: Outgoing association numbers is 1, 2, not 1, 9; Incoming channel identifier is "
        "\"rx\", not \"new\"; Encryption is on, not off; Outgoing key is another than the one that was "
        "given; Incoming key is another than the one that was given; no restart is needed\n",
        Json{Difference("outgoing.associationNumbers", {1, 9}, {1, 2}),
             Difference("incoming.channelIdentifier", "new", "rx"), Difference("encryption", false, true),
             Difference("outgoing.key", "***", "***"), Difference("incoming.key", "***", "***")},
        "set the keys of A");
}

TEST_F(VerifiedLinksecTest, Keys_TakenInPart) {
    Fault("Operation = \"Get\"; Target = \"strRXSAKey\"; Nth = 2; Effect = \"NullValue\";");
    ExpectNotTakenWith("CANARY-one\nCANARY-two\n", {"set-keys", "A", "--reload"},
                       "did not take: Incoming key is missing; no restart is needed\n",
                       Json::array({Difference("incoming.key", "***", Json())}), "set the keys of A");
}

TEST_F(VerifiedLinksecTest, Authentication_NothingTaken) {
    Refuse("SetLinksecParams");
    ExpectNotTakenWith(
        "CANARY-new\n", {"set-auth", "A", "--user", "Zoë", "--windows-credentials", "0"},
        "did not take: User name is \"user\", not \"Zoë\"; Windows credentials is 1, not 0; Password is "
        "another than the one that was given; no restart is needed\n",
        Json{Difference("userName", "Zoë", "user"), Difference("windowsCredentials", 0, 1),
             Difference("password", "***", "***")},
        "set the authentication of A");
}

TEST_F(VerifiedLinksecTest, Authentication_WhatTheOuterMethodHasNoUseForIsNotTaken) {
    ExpectNotTakenWith(
        "CANARY-new\n", {"set-auth", "A", "--outer", "1", "--user", "Zoë", "--reload"},
        "did not take: User name is \"user\", not \"Zoë\"; Password is another than the one that was "
        "given; no restart is needed\n",
        Json{Difference("userName", "Zoë", "user"), Difference("password", "***", "***")},
        "set the authentication of A");
}

TEST_F(VerifiedLinksecTest, MasterKey_NothingTaken) {
    Refuse("SetLinksecManualPMKeys");
    ExpectNotTakenWith(
        "CANARY-new\n", {"pmk", "A", "--random-mac", "on"},
        "did not take: Random MAC address is off, not on; Pairwise master key is another than the one "
        "that was given; no restart is needed\n",
        Json{Difference("randomMac", true, false), Difference("key", "***", "***")},
        "set the pairwise master key of A");
    ExpectNotTakenWith("", {"pmk", "A", "--remove"},
                       "did not take: Pairwise master key is still there; no restart is needed\n",
                       Json::array({Difference("key", Json(), "***")}), "set the pairwise master key of A");
}

TEST_F(VerifiedLinksecTest, Pac_NothingTaken) {
    Refuse("ImportManualPAC");
    Refuse("DeletePacFile");
    ExpectNotTakenWith("CANARY-file-CANARY\n", {"import-pac", "A", "C:\\pac\\new.pac"},
                       "did not take: A has no new.pac; no restart is needed\n",
                       Json::array({Difference("file", "new.pac", Json())}),
                       "import C:\\pac\\new.pac into A");
    ExpectNotTakenWith("", {"pac-delete", "A", "old.pac", "--yes"},
                       "did not take: A still has old.pac; no restart is needed\n",
                       Json::array({Difference("file", Json(), "old.pac")}), "delete old.pac from A");
}

TEST_F(VerifiedLinksecTest, Pac_OneOfTheNameThatWasThereBeforeTellsNothing) {
    const Outcome outcome = Run({"linksec", "import-pac", "A", "old.pac", "--no-password", "--reload"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "sent; the adapter does not tell whether it took; no restart is needed\n");
}

TEST_F(VerifiedTest, ISCSI_AProviderThatSaysNothingAndDoesNothing) {
    Refuse("SetiSCSI_Status");
    ExpectNotTaken({"iscsi", "set", kFree, "secondary"},
                   "did not take: its place is \"off\", not \"secondary\"; no restart is needed\n",
                   Json::array({Difference("status", "secondary", "off")}),
                   std::string("change the place of ") + kFree);
}

TEST_F(VerifiedTest, Setting_NothingTaken_IsToldOfEachOwner) {
    Fault("Operation = \"PutInstance\"; Effect = \"FailStatus\"; Code = 0; Nth = 2;");
    const Outcome told = Run({"setting", "set", "--all-adapters", "*JumboPacket", "9014"});
    EXPECT_EQ(told.status, 1);
    EXPECT_THAT(told.out,
                HasSubstr("\nZorel Quad Port Gigabit Server Adapter: set to 9014 Bytes (9014)\n"
                          "Zorel Quad Port Gigabit Server Adapter #2: did not take: it is Disabled (1514), "
                          "not 9014 Bytes (9014)\n"));
    EXPECT_EQ(told.err,
              std::string("quilletctl: could not set *JumboPacket of ") + kMember + " to 9014" + kNotAll);
    const Outcome outcome = Run({"setting", "set", "--all-adapters", "*JumboPacket", "9014", "--json"});
    EXPECT_EQ(outcome.status, 1);
    const Json targets = Json::parse(outcome.out, nullptr, false).at("targets");
    EXPECT_EQ(targets.at(2).at("outcome"), "changed");
    EXPECT_EQ(targets.at(3).at("outcome"), "notTaken");
    EXPECT_EQ(targets.at(3).at("differences"), Json::array({Difference("current", 9014, 1514)}));
    EXPECT_EQ(targets.at(4).at("outcome"), "changed");
}

TEST_F(VerifiedTest, Setting_ThatCannotBeReadBack_IsUnknown) {
    Fault("Operation = \"ExecQuery\"; Target = \"Zorel_AdapterSetting\"; Nth = 2; Effect = \"Fail\"; Code = "
          "0x80041001;");
    const Outcome outcome = Run({"setting", "set", kFree, "*FlowControl", "0", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(Json::parse(outcome.out, nullptr, false).at("targets").at(0).at("outcome"), "unknown")
        << outcome.out;
    EXPECT_THAT(outcome.err, HasSubstr("could not read the settings of "));
}

TEST_F(VerifiedTest, Setting_AnAddressMayComeBackInCapitals) {
    const Outcome outcome = Run({"setting", "set", kFree, "NetworkAddress", "02005e00aabb"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(VerifiedTest, Vlan_NothingTaken) {
    Ignore("PutInstance");
    Ignore("DeleteInstance");
    ExpectNotTaken({"vlan", "modify", kTeam, "12", "--name", "Labor", "--id", "13"},
                   "did not take: the VLAN ID is 12, not 13; the name of VLAN 13 is \"Büro\", not \"Labor\"\n"
                   "no restart is needed\n",
                   Json{Difference("number", 13, 12), Difference("name", "Labor", "Büro")},
                   std::string("change VLAN 12 \"Büro\" of ") + kTeam);
    ExpectNotTaken({"vlan", "remove", kTeam, "12", "--yes"},
                   "did not take: VLAN 12 \"Büro\" is still there\nno restart is needed\n",
                   Json::array({Difference("number", Json(), 12)}),
                   std::string("remove VLAN 12 \"Büro\" from ") + kTeam);
}

TEST_F(VerifiedTest, Vlan_ThatIsGoneWhenTheSetIsClosed) {
    // The reading behind the change ends early: what was made is not there any more.
    Fault("Operation = \"Next\"; Target = \"Zorel_VLAN\"; Nth = 8; Effect = \"EndOfData\";");
    ExpectNotTaken({"vlan", "add", kTeam, "100", "Labor"},
                   "did not take: VLAN 100 \"Labor\" is not there\nno restart is needed\n",
                   Json::array({Difference("number", 100, Json())}), std::string("add VLANs to ") + kTeam);
}

TEST_F(VerifiedTest, Team_NothingTaken) {
    Ignore("PutInstance");
    Ignore("DeleteInstance");
    ExpectNotTaken({"team", "modify", kTeam, "--name", "Back"},
                   "did not take: its name is \"TEAM : Zürich\", not \"Back\": no restart is needed\n",
                   Json::array({Difference("name", "Back", kTeam)}), std::string("change ") + kTeam);
    const Outcome added = Run({"team", "add", kTeam, kFree});
    EXPECT_EQ(added.status, 1);
    EXPECT_THAT(added.out, HasSubstr(" is no member: no restart is needed\n"));
    EXPECT_THAT(added.out, StartsWith("did not take: {"));
    const Outcome removed = Run({"team", "remove", kTeam, kMember, "--yes", "--json"});
    EXPECT_EQ(removed.status, 1);
    const Json differences = Json::parse(removed.out, nullptr, false).at("differences");
    ASSERT_EQ(differences.size(), 1u) << removed.out;
    EXPECT_EQ(differences.at(0).at("what"), "members");
    EXPECT_TRUE(differences.at(0).at("wanted").is_null());
    const Outcome deleted = Run({"team", "delete", kTeam, "--yes"});
    EXPECT_EQ(deleted.status, 1);
    EXPECT_EQ(deleted.out, "did not take: the team is still there: no restart is needed\n");
    ExpectNotTaken({"team", "primary", kMember},
                   std::string(kMember) +
                       ": did not take: its role is \"secondary\", not \"primary\": no restart is needed\n",
                   Json::array({Difference("role", "primary", "secondary")}),
                   std::string("change the role of ") + kMember);
}

TEST_F(VerifiedTest, Team_WithoutAMemberThatItWasToHave) {
    const std::vector<std::string> create{
        "team",  "create",          "Front",   kFree,   "Zorel 10G Dual Port Server Adapter",
        "--mfo", "--link-security", "--force", "--json"};
    const Outcome whole = Run(create);
    EXPECT_EQ(whole.status, 0) << whole.err;
    EXPECT_EQ(Json::parse(whole.out, nullptr, false).at("took"), true) << whole.out;
    // The adapters are looked for in a list of ten, and its end is seen; then the team's members are read,
    // one and not the other.
    Fault("Operation = \"Next\"; Target = \"Zorel_PhysicalEthernetAdapter\"; Nth = 13; Effect = "
          "\"EndOfData\";");
    const Outcome outcome = Run(create);
    EXPECT_EQ(outcome.status, 1) << outcome.out;
    const Json differences = Json::parse(outcome.out, nullptr, false).at("differences");
    ASSERT_EQ(differences.size(), 1u) << outcome.out;
    EXPECT_EQ(differences.at(0).at("what"), "members");
    EXPECT_TRUE(differences.at(0).at("found").is_null());
}

TEST_F(VerifiedTest, Diag_ATestThatDoesNotStop) {
    // One that began before the machine was saved, and that nothing here lets go on.
    const std::string running = "DiagnosticName = \"Register test - Zorel 10G Dual Port Server Adapter\";";
    const auto state = m_machine.find("TestState = 2;", m_machine.find(running));
    ASSERT_NE(state, std::string::npos);
    m_machine.replace(state, 14, "TestState = 4;");
    const Outcome outcome = Run({"diag", "stop", "Zorel 10G Dual Port Server Adapter", "Register test"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "quilletctl: could not stop Register test - Zorel 10G Dual Port Server Adapter: "
                           "it still runs\n");
}

TEST_F(VerifiedTest, Diag_ATestThatDoesNotBegin_IsNotToldByItsLastResult) {
    Refuse("RunTest");
    for (const bool asJson : {false, true}) {
        std::vector<std::string> words{"diag",          "run",        "Zorel 10G Dual Port Server Adapter",
                                       "Register test", "--interval", "50"};
        if (asJson) {
            words.emplace_back("--json");
        }
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out.find("The registers answer."), std::string::npos) << outcome.out;
        EXPECT_THAT(outcome.err,
                    HasSubstr("quilletctl: could not run Register test - Zorel 10G Dual Port Server "
                              "Adapter: its result is the one from before\n"));
    }
}

TEST_F(VerifiedTest, Warnings_ThatAreNotToldAreNotNone) {
    Refuse("GetKavlorWarnings");
    const Outcome outcome = Run({"warnings"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "quilletctl: could not read the warnings: the provider does not tell them\n");
    EXPECT_EQ(Json::parse(Run({"warnings", "--json"}).out).at("error").at("status"), 1);
}

} // namespace
