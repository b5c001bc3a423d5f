// Changing settings, profiles, power and wake-on-LAN from the command line.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

class SettingSetTest : public CommandLine {};
class ProfilesTest : public CommandLine {};
class PowerOptionsTest : public CommandLine {};

// A team of two, one of which cannot have large frames; a VLAN on the team; settings of every kind on {A}.
constexpr const char* kLab = R"(
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "First"; OriginalDisplayName = "First"; SlotID = "1"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter as $B {
        DeviceID = "{B}"; Name = "Second"; OriginalDisplayName = "Second"; SlotID = "1"; AdapterStatus = 1; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "TEAM : one"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; AdapterStatus = 1; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; AdapterStatus = 1; };
    instance of Zorel_VLAN {
        Name = "{00000000-0000-0000-0000-0000000000F1}"; ParentID = "{T}"; VLANName = "v"; VLANNumber = 7; };
    instance of Zorel_VLANSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{00000000-0000-0000-0000-0000000000F1}"; ParentType = "VLAN";
        CurrentValue = 1514; PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_TeamSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{T}"; ParentType = "TEAM";
        CurrentValue = 1514; PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1514;
        PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*VMQ"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 0; FollowupAction = 1;
        PossibleValues = {"0", "1"}; DescriptionMap = {"Disabled", "Enabled"}; };
    instance of Zorel_AdapterSettingInt {
        Caption = "*TransmitBuffers"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 512; Max = 2048; Min = 80;
        Step = 8; };
    instance of Zorel_AdapterSettingString {
        Caption = "NetworkAddress"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = ""; MaxLength = 12; };
    instance of Zorel_AdapterSettingMultiSelection {
        Caption = "WakeOnEvents"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1;
        PossibleValues = {"1", "2", "4"}; DescriptionMap = {"Magic Packet", "Directed Packet", "Pattern"}; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "WakePatterns"; ParentId = "{A}"; ParentType = "NIC"; CurrentValues = {"x"}; MaxLength = 4; };
    instance of Zorel_AdapterSettingString {
        Caption = "DriverDate"; ParentId = "{A}"; ParentType = "NIC"; Writable = FALSE; CurrentValue = "2011";
        MaxLength = 10; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 5;
        PossibleValues = {"2", "5"}; DescriptionMap = {"Standard", "Virtualization"}; };
    instance of Zorel_PowerConfiguration {
        DeviceID = "{A}"; SavePowerNowEnabled = 2; SmartPowerDown = 1; WakeOnMagicPacket = 0; };
)";

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

/// The current value of a setting of the first adapter, read by a later command.
std::string Current(const std::string& state, const std::string& owner, const std::string& setting) {
    const Outcome read = RunCommandLine({"--state", state, "setting", "get", owner, setting, "--json"});
    EXPECT_EQ(read.status, 0) << read.err;
    return read.status == 0 ? Json::parse(read.out).at("setting").at("current").dump() : std::string();
}

TEST_F(SettingSetTest, AllAdaptersOfTheBuiltInMachine_ChangeInOneClientSet) {
    const Outcome outcome = RunCommandLine(
        {"--simulate", "setting", "set", "--all-adapters", "*JumboPacket", "9014", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const std::string answer = outcome.out.substr(0, outcome.out.find("\nCalls to the provider: "));
    EXPECT_EQ(answer,
              "warning: Zorel Quad Port Gigabit Server Adapter: its team objects, provider reason 5\n"
              "warning: Zorel Quad Port Gigabit Server Adapter #2: its team objects, provider reason 5\n"
              "Zorel 10G Dual Port Server Adapter: is 9014 Bytes (9014) already\n"
              "Zorel 10G Dual Port Server Adapter #2: is 9014 Bytes (9014) already\n"
              "Zorel Quad Port Gigabit Server Adapter: set to 9014 Bytes (9014)\n"
              "Zorel Quad Port Gigabit Server Adapter #2: set to 9014 Bytes (9014)\n"
              "Zorel Quad Port Gigabit Server Adapter #3 (Zürich): set to 9014 Bytes (9014)\n"
              "Zorel Quad Port Gigabit Server Adapter #4: set to 9014 Bytes (9014)\n"
              "Zorel Gigabit Server Adapter (東京): set to 9014 Bytes (9014)\n"
              "Zorel Gigabit Desktop Adapter: *JumboPacket is read only, left alone\n"
              "Zorel Fast Ethernet Adapter: has no *JumboPacket, left alone\n"
              "Zorel Gigabit Server Adapter #2: has no *JumboPacket, left alone\n"
              "no restart is needed\n");
    EXPECT_EQ(Count(outcome.out, ", BeginApply("), 1u);
    EXPECT_EQ(Count(outcome.out, ", Apply(ClientSetHandle=1)"), 1u);
    EXPECT_EQ(Count(outcome.out, "  PutInstance "), 5u);
    const auto begin = outcome.out.find(", BeginApply(");
    const auto apply = outcome.out.find(", Apply(");
    for (auto put = outcome.out.find("  PutInstance "); put != std::string::npos;
         put = outcome.out.find("  PutInstance ", put + 1)) {
        EXPECT_LT(begin, put);
        EXPECT_LT(put, apply);
        const std::string line = outcome.out.substr(put, outcome.out.find('\n', put) - put);
        EXPECT_NE(line.find("(CurrentValue=9014)"), std::string::npos) << line;
        EXPECT_NE(line.find("{ClientSetId=1}"), std::string::npos) << line;
    }
}

TEST_F(SettingSetTest, AllAdapters_AsJson) {
    const Outcome outcome = RunCommandLine(
        {"--simulate", "setting", "set", "--all-adapters", "*JumboPacket", "9014 bytes", "--json"});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const Json json = Json::parse(outcome.out);
    EXPECT_EQ(json.at("setting"), "*JumboPacket");
    EXPECT_EQ(json.at("value"), "9014 bytes");
    EXPECT_EQ(json.at("restartNeeded"), false);
    std::vector<std::string> outcomes;
    for (const Json& target : json.at("targets")) {
        outcomes.push_back(target.at("outcome"));
        EXPECT_TRUE(target.at("code").is_null());
    }
    EXPECT_EQ(outcomes, (std::vector<std::string>{"unchanged", "unchanged", "changed", "changed", "changed",
                                                  "changed", "changed", "readOnly", "missing", "missing"}));
    EXPECT_EQ(json.at("targets").at(2).at("warnings").size(), 1u);
}

class SeveralSettingsTest : public CommandLine {
  protected:
    Outcome Run(std::vector<std::string> line) const {
        line.insert(line.begin(), {"--simulate", MachineFile(kLab), "--state", State(), "--journal"});
        return RunCommandLine(line);
    }
    std::string State() const { return Utf8(InFolder("state.mof")); }
};

TEST_F(SeveralSettingsTest, OfOneOwner_ChangeInOneClientSet) {
    const Outcome outcome =
        Run({"setting", "set", "First", "*JumboPacket=9014", "NetworkAddress=02005E001122", "*VMQ=enabled"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(Count(outcome.out, ", BeginApply("), 1u);
    EXPECT_EQ(Count(outcome.out, "  PutInstance "), 3u);
    EXPECT_NE(outcome.out.find("First: *VMQ: set to Enabled (1)\n"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("\na restart is needed\n"), std::string::npos) << outcome.out;
    EXPECT_EQ(Current(State(), "First", "*JumboPacket"), "9014");
    EXPECT_EQ(Current(State(), "First", "NetworkAddress"), "\"02005E001122\"");
}

TEST_F(SeveralSettingsTest, TheFirstEqualsSignSeparates) {
    ASSERT_EQ(Run({"setting", "set", "First", "WakePatterns=a=b,c"}).status, 0);
    EXPECT_EQ(Current(State(), "First", "WakePatterns"), R"(["a=b","c"])");
    // As an object path has them itself, it stands for the setting, and the value is the next word.
    const Outcome read = RunCommandLine({"--state", State(), "setting", "get", "First", "*VMQ", "--json"});
    const std::string path = Json::parse(read.out).at("setting").at("path");
    ASSERT_EQ(Run({"setting", "set", "First", path, "1"}).status, 0);
    EXPECT_EQ(Current(State(), "First", "*VMQ"), "1");
}

TEST_F(SeveralSettingsTest, OneThatIsReadOnlyOrMissing_KeepsTheOthersFromBeingChanged) {
    const Outcome readOnly = Run({"setting", "set", "First", "*VMQ=1", "DriverDate=2012", "--json"});
    EXPECT_EQ(readOnly.status, 3);
    const Json targets = Json::parse(readOnly.out).at("targets");
    EXPECT_EQ(targets.at(0).at("outcome"), "notTried");
    EXPECT_EQ(targets.at(1).at("outcome"), "readOnly");
    EXPECT_EQ(Count(readOnly.err, "BeginApply"), 0u);
    const Outcome missing = Run({"setting", "set", "First", "*VMQ=1", "Nonsense=1"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "quilletctl: First has no setting \"Nonsense\"; see quilletctl setting list\n");
    EXPECT_EQ(Count(missing.out, "BeginApply"), 0u);
}

TEST_F(SeveralSettingsTest, BadLines) {
    const struct {
        std::vector<std::string> words;
        const char* message;
    } lines[] = {
        {{"First", "*VMQ=1", "*VMQ=0"}, "*VMQ: given more than once"},
        {{"First", "*VMQ=1", "*JumboPacket"}, "no value"},
        {{"First", "=1"}, "a setting and a value are needed"},
        {{"First"}, "a setting and a value are needed"},
        {{"First", "*VMQ=maybe"}, "\"maybe\" is no value of *VMQ"},
        {{"First", "a=1", "b", "c=2"}, "a setting and a value are needed"},
    };
    for (const auto& line : lines) {
        std::vector<std::string> words{"setting", "set"};
        words.insert(words.end(), line.words.begin(), line.words.end());
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.status, 2) << line.message;
        EXPECT_EQ(Count(outcome.out, "BeginApply"), 0u) << line.message;
    }
}

TEST_F(SeveralSettingsTest, OfThePatternsOwners_WhateverTheyAre) {
    const auto targets = [](const char* pattern, const char* kind) {
        const Outcome outcome = RunCommandLine({"--simulate", TestMachine("golden.mof"), "setting", "set",
                                                pattern, "*JumboPacket=9014", "--of", kind, "--json"});
        const Json answer = Json::parse(outcome.out);
        return outcome.status == 0 ? answer.at("targets").size() : 0U;
    };
    EXPECT_EQ(targets("TEAM*", "team"), 1u);
    EXPECT_EQ(targets("*o*", "vlan"), 2u); // "Büro" and "VoIP"
    EXPECT_EQ(targets("nobody*", "team"), 0u);
    EXPECT_EQ(targets("nobody*", "vlan"), 0u);
    EXPECT_EQ(RunCommandLine({"--simulate", "setting", "set", "nobody*", "A=1", "--of", "team"}).err,
              "quilletctl: no team is called \"nobody*\"; see quilletctl team list\n");
    const Outcome all = Run({"setting", "set", "--all-adapters", "*VMQ=1", "*JumboPacket=9014"});
    EXPECT_EQ(all.status, 0) << all.err;
    EXPECT_EQ(Count(all.out, "  PutInstance "), 2u);
    EXPECT_NE(all.out.find("Second: has no *VMQ, left alone\n"), std::string::npos) << all.out;
}

TEST_F(SeveralSettingsTest, Refusals_AreToldOneByOne) {
    const Outcome outcome = Run({"setting", "set", "First", "*TransmitBuffers=7", "*VMQ=1"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.out.find("First: *TransmitBuffers: refused, the value is out of range (80 to 2048"),
              std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("First: *VMQ: set to Enabled (1)\n"), std::string::npos) << outcome.out;
    EXPECT_EQ(Count(outcome.err, "\n"), 1u) << outcome.err;
    EXPECT_EQ(Current(State(), "First", "*VMQ"), "1");
}

class ResetTest : public CommandLine {
  protected:
    std::string State() const { return Utf8(InFolder("state.mof")); }
    Outcome Run(std::vector<std::string> line) const {
        line.insert(line.begin(), {"--simulate", "--state", State(), "--journal", "setting", "reset"});
        return RunCommandLine(line);
    }
};

constexpr const char* kPort = "Zorel 10G Dual Port Server Adapter";

TEST_F(ResetTest, WithoutSettings_GivesAllThatDifferTheirDefaults) {
    ASSERT_EQ(Run({kPort}).status, 0);
    const Outcome list = RunCommandLine({"--state", State(), "setting", "list", kPort, "--json"});
    const Json settings = Json::parse(list.out).at("settings");
    EXPECT_GT(settings.size(), 5u);
    for (const Json& setting : settings) {
        if (setting.at("writable") && setting.at("kind") != "multiString") {
            EXPECT_EQ(setting.at("current"), setting.at("default")) << setting.at("caption");
        }
    }
    const Outcome again = Run({kPort});
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.out.find("every setting that can be written has its default\nno restart is needed\n"),
              0u);
    EXPECT_EQ(Count(again.out, "BeginApply"), 0u);
}

TEST_F(ResetTest, WithSettings_OnlyThose) {
    const Outcome outcome = Run({kPort, "Jumbo Packet", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const Json targets = Json::parse(outcome.out).at("targets");
    ASSERT_EQ(targets.size(), 1u);
    EXPECT_EQ(targets.at(0).at("setting"), "*JumboPacket");
    EXPECT_EQ(targets.at(0).at("value"), "Disabled (1514)");
    EXPECT_EQ(targets.at(0).at("outcome"), "changed");
    EXPECT_EQ(Current(State(), kPort, "*JumboPacket"), "1514");
    EXPECT_NE(Current(State(), kPort, "PerformanceProfile"), "2");
}

TEST_F(ResetTest, Everywhere_InOneClientSet) {
    const Outcome outcome = Run({"*"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(Count(outcome.out, ", BeginApply("), 1u);
    EXPECT_EQ(Current(State(), "Zorel Fast Ethernet Adapter", "*SpeedDuplex"), "0");
}

TEST_F(ResetTest, ASettingWithoutADefaultThatItCanHave_StaysAsItIs) {
    const std::string machine = MachineFile(kLab); // its settings tell no defaults
    const Outcome named =
        RunCommandLine({"--simulate", machine, "setting", "reset", "First", "*JumboPacket"});
    EXPECT_EQ(named.status, 2);
    EXPECT_EQ(named.err, "quilletctl: *JumboPacket of First has no default that it can have\n");
    const Outcome all = RunCommandLine({"--simulate", machine, "--dry-run", "setting", "reset", "First"});
    EXPECT_EQ(Count(all.out, "*JumboPacket"), 0u) << all.out;
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "setting", "reset"}).err,
              "quilletctl: an owner (or --all-adapters) is needed\n");
}

TEST_F(SettingSetTest, AValueMayBeGivenByNumberOrByItsText) {
    const std::string state = Utf8(InFolder("state.mof"));
    const std::string machine = MachineFile(kLab);
    const struct {
        const char* setting;
        const char* value;
        const char* stored;
    } values[] = {
        {"*VMQ", "enabled", "1"},
        {"*VMQ", "0", "0"},
        {"*TransmitBuffers", "520", "520"},
        {"NetworkAddress", "02005E001122", "\"02005E001122\""},
        {"WakeOnEvents", "Magic Packet + pattern", "5"},
        {"WakeOnEvents", "2", "2"},
        {"WakePatterns", "aa,,b", R"(["aa","","b"])"},
        {"WakePatterns", "one", R"(["one"])"},
    };
    for (const auto& each : values) {
        const Outcome outcome = RunCommandLine(
            {"--simulate", machine, "--state", state, "setting", "set", "First", each.setting, each.value});
        EXPECT_EQ(outcome.status, 0) << each.setting << ": " << outcome.err;
        EXPECT_EQ(Current(state, "First", each.setting), each.stored) << each.setting;
    }
}

TEST_F(SettingSetTest, ARestartIsToldWhereItIsNeeded) {
    const Outcome outcome =
        RunCommandLine({"--simulate", MachineFile(kLab), "setting", "set", "First", "*VMQ", "1"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "warning: First: its team objects, provider reason 3\n"
                           "First: set to Enabled (1)\n"
                           "a restart is needed\n");
}

TEST_F(SettingSetTest, ARefusalTellsCodeNameAndWhatWasAsked) {
    const Outcome outcome = RunCommandLine(
        {"--simulate", MachineFile(kLab), "setting", "set", "First", "*TransmitBuffers", "81", "--journal"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "quilletctl: could not set *TransmitBuffers of First to 81: the value is out of range (80 to "
              "2048 in steps of 8): 0x8004102B WBEM_E_VALUE_OUT_OF_RANGE\n");
    EXPECT_NE(outcome.out.find("\nFirst: refused, the value is out of range (80 to 2048 in steps of 8): "
                               "0x8004102B WBEM_E_VALUE_OUT_OF_RANGE\n"),
              std::string::npos)
        << outcome.out;
    EXPECT_EQ(Count(outcome.out, ", Apply(ClientSetHandle=1)"), 1u) << "the set is closed all the same";
}

TEST_F(SettingSetTest, WarningsComeBeforeTheChange) {
    const Outcome adapter =
        RunCommandLine({"--simulate", MachineFile(kLab), "setting", "set", "First", "*JumboPacket", "9014"});
    EXPECT_EQ(adapter.status, 0) << adapter.err;
    EXPECT_EQ(adapter.out, "warning: First: not every member of its team has a jumbo-frame setting\n"
                           "warning: First: its team objects, provider reason 3\n"
                           "First: set to 9014 Bytes (9014)\n"
                           "no restart is needed\n");
    const std::string vlan = "{00000000-0000-0000-0000-0000000000F1}";
    const Outcome onVlan = RunCommandLine(
        {"--simulate", MachineFile(kLab), "setting", "set", "--of", "vlan", vlan, "*JumboPacket", "9014"});
    EXPECT_EQ(onVlan.status, 0) << onVlan.err;
    EXPECT_EQ(onVlan.out, "warning: " + vlan + ": the VLAN objects, provider reason 6\n" + vlan +
                              ": set to 9014 Bytes (9014)\nno restart is needed\n");
}

TEST_F(SettingSetTest, WhatCannotBeMeantIsBadUsage) {
    const std::string machine = MachineFile(kLab);
    const auto status = [&](std::vector<std::string> words) {
        std::vector<std::string> line{"--simulate", machine, "setting", "set"};
        line.insert(line.end(), words.begin(), words.end());
        const Outcome outcome = RunCommandLine(line);
        EXPECT_EQ(outcome.out, "");
        return outcome.status;
    };
    EXPECT_EQ(status({"*JumboPacket", "9014"}), 2) << "no owner";
    EXPECT_EQ(status({"--all-adapters", "First", "*JumboPacket", "9014"}), 2) << "two owners";
    EXPECT_EQ(status({"--all-adapters", "--of", "vlan", "*JumboPacket", "9014"}), 2);
    EXPECT_EQ(status({"First", "*Nothing", "1"}), 2) << "no such setting";
    EXPECT_EQ(status({"First", "*JumboPacket", "huge"}), 2) << "no such value";
    EXPECT_EQ(status({"First", "*TransmitBuffers", "many"}), 2) << "no number";
    EXPECT_EQ(status({"Nobody", "*JumboPacket", "9014"}), 2) << "no such adapter";
}

TEST_F(SettingSetTest, AReadOnlySettingOfOneOwnerIsAFinding) {
    const Outcome outcome = RunCommandLine(
        {"--simulate", MachineFile(kLab), "setting", "set", "First", "DriverDate", "2012", "--journal"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.out.find("First: DriverDate is read only, left alone\nno restart is needed\n"), 0u);
    EXPECT_EQ(Count(outcome.out, "BeginApply"), 0u) << "nothing to change: no client set";
}

TEST_F(ProfilesTest, AreListedForAllAdaptersOrForOne) {
    const std::string machine = MachineFile(kLab);
    const Outcome all = RunCommandLine({"--simulate", machine, "profile", "list"});
    EXPECT_EQ(all.status, 0) << all.err;
    EXPECT_EQ(all.out, "ADAPTER  PROFILE  DESCRIPTION     CURRENT\n"
                       "First    2        Standard\n"
                       "First    5        Virtualization  yes\n"
                       "Second   -        no profiles\n");
    const Outcome one = RunCommandLine({"--simulate", machine, "profile", "list", "First", "--json"});
    EXPECT_EQ(one.status, 0) << one.err;
    const Json json = Json::parse(one.out);
    ASSERT_EQ(json.at("adapters").size(), 1u);
    EXPECT_EQ(json.at("adapters").at(0).at("profiles"),
              (Json::parse(R"([{"profile": 2, "description": "Standard", "current": false},
                               {"profile": 5, "description": "Virtualization", "current": true}])")));
}

TEST_F(PowerOptionsTest, AreShownWithWhatIsNotAvailable) {
    const std::string machine = MachineFile(kLab);
    const Outcome power = RunCommandLine({"--simulate", machine, "power", "show", "First", "--json"});
    ASSERT_EQ(power.status, 0) << power.err;
    const Json json = Json::parse(power.out);
    EXPECT_EQ(json.at("mode"), 2);
    EXPECT_EQ(json.at("smartPowerDown"), true);
    EXPECT_TRUE(json.at("aspm").is_null());
    const Outcome wake = RunCommandLine({"--simulate", machine, "wol", "show", "First"});
    EXPECT_EQ(wake.status, 0) << wake.err;
    EXPECT_NE(wake.out.find("not available"), std::string::npos);
    EXPECT_EQ(Count(wake.out, "\n"), 5u);
}

TEST_F(PowerOptionsTest, ChangeOnlyWhereTheyAreNamed) {
    const std::string state = Utf8(InFolder("state.mof"));
    const Outcome set = RunCommandLine({"--simulate", MachineFile(kLab), "--state", state, "power", "set",
                                        "First", "--smart-power-down", "off", "--journal"});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(set.out.find("power options set; no restart is needed\n"), 0u) << set.out;
    EXPECT_NE(set.out.find("SetPowerUsageOptions(SavePowerNowEnabled=2, SmartPowerDown=0)"),
              std::string::npos)
        << set.out;
    EXPECT_EQ(RunCommandLine({"--state", state, "wol", "set", "First", "--magic-packet", "on"}).status, 0);
    EXPECT_EQ(Json::parse(RunCommandLine({"--state", state, "wol", "show", "First", "--json"}).out)
                  .at("magicPacket"),
              true);
    EXPECT_EQ(Json::parse(RunCommandLine({"--state", state, "power", "show", "First", "--json"}).out)
                  .at("smartPowerDown"),
              false);
    EXPECT_EQ(RunCommandLine({"--state", state, "power", "reapply", "First"}).status, 0);
}

TEST_F(PowerOptionsTest, ThatAreNotAvailableOrNotNamedAreBadUsage) {
    const std::string machine = MachineFile(kLab);
    const Outcome lacking =
        RunCommandLine({"--simulate", machine, "power", "set", "First", "--aspm", "on", "--journal"});
    EXPECT_EQ(lacking.status, 2);
    EXPECT_EQ(lacking.err, "quilletctl: --aspm: not available on First\n");
    EXPECT_EQ(Count(lacking.out, "SetPowerUsageOptions"), 0u);
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "power", "set", "First"}).status, 2);
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "wol", "set", "First"}).status, 2);
    EXPECT_EQ(
        RunCommandLine({"--simulate", machine, "wol", "set", "First", "--magic-packet", "maybe"}).status, 2);
    EXPECT_EQ(RunCommandLine({"--simulate", machine, "power", "set", "First", "--mode", "3"}).status, 2);
}

TEST_F(PowerOptionsTest, ARefusalIsNamed) {
    const Outcome outcome = RunCommandLine({"--simulate", MachineFile(kLab), "power", "reapply", "Second"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "quilletctl: could not apply the power-management capabilities of Second again: "
                           "this is not supported: 0x8004100C WBEM_E_NOT_SUPPORTED\n");
}

TEST_F(ProfilesTest, Set_ChangesTheSettingOfThatName) {
    const std::string state = Utf8(InFolder("state.mof"));
    const auto run = [&](std::vector<std::string> line) {
        line.insert(line.begin(),
                    {"--simulate", MachineFile(kLab), "--state", state, "--journal", "profile", "set"});
        return RunCommandLine(line);
    };
    const Outcome outcome = run({"First", "standard"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(Count(outcome.out, ", BeginApply("), 1u);
    EXPECT_EQ(Current(state, "First", "PerformanceProfile"), "2");
    EXPECT_EQ(run({"First", "5"}).status, 0);
    EXPECT_EQ(Current(state, "First", "PerformanceProfile"), "5");
    EXPECT_EQ(run({"First", "faster"}).status, 2);
    EXPECT_EQ(run({"Second", "2"}).status, 2);
    const Outcome all = run({"*", "2"});
    EXPECT_EQ(all.status, 0);
    EXPECT_NE(all.out.find("Second: has no PerformanceProfile, left alone\n"), std::string::npos) << all.out;
}

TEST_F(PowerOptionsTest, APatternChangesAllInOneClientSet) {
    const Outcome outcome =
        RunCommandLine({"--simulate", "wol", "set", "*", "--magic-packet", "off", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(Count(outcome.out, ", BeginApply("), 1u);
    EXPECT_EQ(Count(outcome.out, ", SetWakeOnLanPowerOptions("), 9u);
    EXPECT_NE(outcome.out.find("Zorel Gigabit Server Adapter #2: --magic-packet: not available\n"),
              std::string::npos)
        << outcome.out;
    EXPECT_EQ(RunCommandLine(
                  {"--simulate", "wol", "set", "Zorel Gigabit Server Adapter #2", "--magic-packet", "off"})
                  .err,
              "quilletctl: --magic-packet: not available on Zorel Gigabit Server Adapter #2\n");
}

TEST_F(PowerOptionsTest, ARefusalOfOne_KeepsNobodyFromChangingTheOthers) {
    const Outcome outcome = RunCommandLine({"--simulate", "power", "reapply", "*", "--json"});
    EXPECT_EQ(outcome.status, 1);
    const Json targets = Json::parse(outcome.out).at("targets");
    ASSERT_EQ(targets.size(), 10u);
    EXPECT_EQ(targets.at(0).at("outcome"), "unknown");
    EXPECT_EQ(targets.at(9).at("outcome"), "refused");
    EXPECT_EQ(targets.at(9).at("code"), "0x8004100C WBEM_E_NOT_SUPPORTED");
}

} // namespace
