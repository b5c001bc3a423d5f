// A recorded machine against the one that it was recorded from.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

using Words = std::vector<std::string>;

Words operator+(Words left, const Words& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Json Ask(const Words& machine, const Words& line) {
    const Outcome run = RunCommandLine(machine + Words{"--json"} + line);
    return Json{{"status", run.status}, {"answer", Json::parse(run.out)}};
}

/// Every command that only reads, about everything that the machine has; of the adapters about every
/// so manieth.
std::vector<Words> ReadingCommands(const Words& machine, std::size_t step) {
    std::vector<Words> lines{{"adapter", "list"}, {"profile", "list"}, {"vlan", "list"}, {"team", "list"},
                             {"team", "modes"},   {"iscsi", "list"},   {"warnings"}};
    const auto listed = [&](const char* noun, const char* key) {
        return Json(Ask(machine, {noun, "list"})["answer"][key]);
    };
    std::size_t number = 0;
    for (const Json& adapter : listed("adapter", "adapters")) {
        if (number++ % step != 0) {
            continue;
        }
        const std::string name = adapter["path"];
        for (const Words& verb : {Words{"adapter", "show"},
                                  {"adapter", "capabilities"},
                                  {"adapter", "ports"},
                                  {"power", "show"},
                                  {"wol", "show"},
                                  {"diag", "list"},
                                  {"boot", "show"},
                                  {"iscsi", "show"},
                                  {"linksec", "show"},
                                  {"linksec", "pmk"},
                                  {"linksec", "stats"},
                                  {"setting", "list"},
                                  {"team", "modes"}}) {
            lines.push_back(verb + Words{name});
        }
        lines.push_back({"setting", "list", name, "--vmq"});
        lines.push_back({"setting", "list", name, "--of", "boot-agent"});
        lines.push_back({"vlan", "check", name, "3000", "New"});
    }
    for (const Json& team : listed("team", "teams")) {
        const std::string path = team["path"];
        lines.push_back({"team", "show", path});
        lines.push_back({"team", "modes", "--team", path});
        lines.push_back({"setting", "list", path});
    }
    for (const Json& vlan : listed("vlan", "vlans")) {
        lines.push_back({"setting", "list", vlan["path"]});
    }
    return lines;
}

class RecordTest : public CommandLine {
  protected:
    /// Records a machine, and holds what the record answers against what the machine does.
    void ExpectSameAnswers(const Words& machine, std::size_t step) {
        const std::string record = Utf8(InFolder("record.mof"));
        const Outcome recorded = RunCommandLine(machine + Words{"machine", "record", record});
        ASSERT_EQ(recorded.status, 0) << recorded.out << recorded.err;
        const std::vector<Words> lines = ReadingCommands(machine, step);
        EXPECT_GT(lines.size(), 16 * (10 / step));
        for (const Words& line : lines) {
            EXPECT_EQ(Ask(machine, line), Ask({"--simulate", record}, line)) << testing::PrintToString(line);
        }
    }
    std::string Recorded(const std::string& mof, const Words& more = {}) {
        const std::string record = Utf8(InFolder("record.mof"));
        m_run = RunCommandLine(Words{"--simulate", MachineFile(mof), "machine", "record", record} + more);
        return ReadFile(InFolder("record.mof"));
    }
    Outcome m_run;
};

TEST_F(RecordTest, MachineAsShipped_AnswersAsItself) {
    ExpectSameAnswers({"--simulate"}, 2);
}

TEST_F(RecordTest, MachineAfterChanges_AnswersAsItself) {
    const Words machine{"--state", Utf8(InFolder("lab.mof"))};
    for (const Words& change : {Words{"team", "create", "Front \"1\" \\ <é>", "2:1", "2:2"},
                                Words{"vlan", "add", "Front \"1\" \\ <é>", "100", "Web", "--through", "104"},
                                Words{"setting", "set", "--all-adapters", "*JumboPacket", "4088"}}) {
        const Outcome run = RunCommandLine(machine + change);
        ASSERT_EQ(run.status, 0) << run.err;
    }
    ExpectSameAnswers(machine, 4);
}

TEST_F(RecordTest, FlashMemory_IsTheSame) {
    const std::string record = Utf8(InFolder("record.mof"));
    ASSERT_EQ(RunCommandLine({"--simulate", "machine", "record", record}).status, 0);
    const auto flash = [&](const Words& machine) {
        EXPECT_EQ(
            RunCommandLine(machine + Words{"boot", "read", "2:1", Utf8(InFolder("flash")), "--yes"}).status,
            0);
        return ReadFile(InFolder("flash"));
    };
    EXPECT_EQ(flash({"--simulate"}), flash({"--simulate", record}));
}

TEST_F(RecordTest, Secrets_AreNotInTheFile) {
    constexpr const char* kSecrets = R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "Left"; OriginalDisplayName = "Left"; };
        instance of Zorel_LinkSecConfiguration { DeviceID = "{A}"; LinksecCredPassword = "hush1"; strTXSAKey = "hush2";
            strRXSAKey = "hush3"; strManualPMKey = "hush4"; strPassword = "hush5"; LinksecCredUsername = "somebody"; };
        instance of Zorel_PACFile { DeviceID = "{A}"; FileName = "a.pac"; PACFilePassword = "hush6"; };
        instance of Zorel_BootAgent { Name = "{A}"; };
        instance of Zorel_BootAgentSettingString { ParentId = "{A}"; ParentType = "BOOTAGENT"; Caption = "TargetCHAPSecret";
            CurrentValue = "hush7"; DefaultValue = ""; };
        instance of Zorel_BootAgentSettingMultiString { ParentId = "{A}"; ParentType = "BOOTAGENT"; Caption = "Keys";
            Description = "Mutual passwords"; CurrentValues = {"hush8", "hush9"}; DefaultValue = "hush10"; };)";
    const std::string text = Recorded(kSecrets);
    EXPECT_THAT(text, Not(HasSubstr("hush")));
    EXPECT_THAT(text, HasSubstr("somebody"));
    EXPECT_THAT(text, HasSubstr("strPassword = \"***\""));
    EXPECT_THAT(m_run.out, HasSubstr("secrets left out: 9\n"));
    // Whether there is a secret is told as before.
    EXPECT_EQ(Ask({"--simulate", Utf8(InFolder("machine.mof"))}, {"linksec", "show", "Left"}),
              Ask({"--simulate", Utf8(InFolder("record.mof"))}, {"linksec", "show", "Left"}));
}

TEST_F(RecordTest, EverySecretOfTheSchema_IsLeftOut) {
    const auto machine = quillet::simulator::Machine::Empty();
    std::string mof;
    std::size_t count = 0;
    for (const auto& definition : machine->Store().Classes()) {
        std::string keys;
        std::string secrets;
        for (const auto& property : definition->properties) {
            const std::string name(property.name.begin(), property.name.end());
            if (property.qualifiers.Has(L"Secret")) {
                secrets += name + " = \"hush" + std::to_string(++count) + "\"; ";
            } else if (property.IsKey()) {
                keys += name + " = \"K\"; ";
            }
        }
        if (!secrets.empty()) {
            mof += "instance of " + std::string(definition->name.begin(), definition->name.end()) + " { " +
                   keys + secrets + "};\n";
        }
    }
    EXPECT_GE(count, 6U);
    EXPECT_THAT(Recorded(mof), Not(HasSubstr("hush")));
    EXPECT_THAT(m_run.out, HasSubstr("secrets left out: " + std::to_string(count) + "\n"));
}

TEST_F(RecordTest, ProviderThatRefusesAClass_RecordsTheOthersAndSaysSo) {
    const std::string record = Utf8(InFolder("record.mof"));
    const Outcome run =
        RunCommandLine({"--simulate", "--fault", "CreateInstanceEnum:Zorel_Setting=0x80041003", "--fault",
                        "CreateInstanceEnum:Zorel_VLANSettingInt:1+=0x80041003", "--fault",
                        "CreateInstanceEnum:Zorel_VLANSetting:1+=0x80041003", "machine", "record", record});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("not all recorded: Zorel_VLANSettingInt\n  access is denied"));
    EXPECT_THAT(run.err, HasSubstr("could not record Zorel_VLANSettingInt: access is denied"));
    const std::string text = ReadFile(InFolder("record.mof"));
    EXPECT_THAT(text, Not(HasSubstr("instance of Zorel_VLANSettingInt\n")));
    EXPECT_THAT(text, HasSubstr("instance of Zorel_VLANSettingEnum\n"));
    EXPECT_EQ(RunCommandLine({"--simulate", record, "adapter", "list"}).status, 0);
}

TEST_F(RecordTest, ClassThatTheProviderLacks_IsNamedAndNoFailure) {
    const Words machine{"--simulate", "--fault", "CreateInstanceEnum:Zorel_PACFile:1+=0x80041010"};
    const Json answer = Ask(machine, {"machine", "record", Utf8(InFolder("record.mof"))});
    EXPECT_EQ(answer["status"], 0);
    EXPECT_EQ(answer["answer"]["absent"], Json({"Zorel_PACFile"}));
    EXPECT_EQ(answer["answer"]["unrecorded"], Json::array());
}

TEST_F(RecordTest, ValuesOfTheWrongKind_AreLeftOutAndTold) {
    constexpr const char* kAdapter = R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "Left"; OriginalDisplayName = "Left";
            Capabilities = {3, 4}; };)";
    for (const char* fault :
         {"Get:Speed:1+=WrongType", "Get:Capabilities:1+=NullArray", "Get:OriginalDisplayName:1+=WrongType:3",
          "Get:Capabilities:1+=UnreadableElement:1", "Get:Speed:1+=Absent",
          "Get:OriginalDisplayName:1+=HugeString:2000000", "Get:__SERVER:1+=HugeString",
          "Get:DeviceID:1+=NullValue", "Get:__CLASS:1+=NullValue", "Next:*:1+=NullObject",
          "Next:*:3=EndOfData"}) {
        std::filesystem::remove(InFolder("record.mof"));
        const bool isWritten = !Recorded(kAdapter, {"--fault", fault}).empty();
        EXPECT_TRUE(m_run.status == 1 || (m_run.status == 0 && isWritten)) << fault << ": " << m_run.err;
        // Whatever it has lost, it is a machine.
        if (isWritten) {
            EXPECT_EQ(RunCommandLine({"--simulate", Utf8(InFolder("record.mof")), "warnings"}).status, 0)
                << fault;
        }
    }
    Recorded(kAdapter, {"--yes", "--fault", "Get:Speed:1+=WrongType"});
    EXPECT_THAT(
        m_run.out,
        HasSubstr("not all recorded: Zorel_PhysicalEthernetAdapter\n  the value of property \"Speed\""));
}

TEST_F(RecordTest, FileThatIsThere_IsOnlyReplacedOnRequest) {
    const std::string file = Utf8(InFolder("record.mof"));
    WriteFile(InFolder("record.mof"), "mine");
    const Outcome refused = RunCommandLine({"--simulate", "machine", "record", file});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.err, HasSubstr("add --yes to agree"));
    const Outcome declined =
        RunCommandLine({"--simulate", "machine", "record", file}, {.isTerminal = true, .answers = "n\n"});
    EXPECT_EQ(declined.status, 0);
    EXPECT_THAT(declined.out, HasSubstr("nothing was written"));
    EXPECT_EQ(ReadFile(InFolder("record.mof")), "mine");
    EXPECT_EQ(RunCommandLine({"--simulate", "machine", "record", file, "--yes"}).status, 0);
    EXPECT_THAT(ReadFile(InFolder("record.mof")), HasSubstr("instance of"));
}

} // namespace
