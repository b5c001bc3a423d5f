// Changing settings, profiles, power and wake-on-LAN from the command line.
#include "support/SettingsMachine.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

class SettingSetTest : public CommandLine {};
class ProfilesTest : public CommandLine {};
class PowerOptionsTest : public CommandLine {};

TEST_F(SettingSetTest, AllAdaptersOfTheBuiltInMachine_ChangeInOneClientSet) {
    const Outcome outcome = RunCommandLine(
        {"--simulate", "setting", "set", "--all-adapters", "*JumboPacket", "9014", "--journal"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const std::string answer = outcome.out.substr(0, outcome.out.find("\nCalls to the provider: "));
    EXPECT_EQ(answer,
              "warning: Zorel Quad Port Gigabit Server Adapter: its team objects: reason 5 (unknown)\n"
              "warning: Zorel Quad Port Gigabit Server Adapter #2: its team objects: reason 5 (unknown)\n"
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
    EXPECT_EQ(outcome.out, "warning: First: its team objects: reason 3 (unknown)\n"
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
                           "warning: First: its team objects: reason 3 (unknown)\n"
                           "First: set to 9014 Bytes (9014)\n"
                           "no restart is needed\n");
    const std::string vlan = "{00000000-0000-0000-0000-0000000000F1}";
    const Outcome onVlan = RunCommandLine(
        {"--simulate", MachineFile(kLab), "setting", "set", "--of", "vlan", vlan, "*JumboPacket", "9014"});
    EXPECT_EQ(onVlan.status, 0) << onVlan.err;
    EXPECT_EQ(onVlan.out, "warning: " + vlan + ": the VLAN objects: reason 6 (unknown)\n" + vlan +
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
                       "First    2        Standard        -\n"
                       "First    5        Virtualization  yes\n"
                       "Second   -        no profiles     -\n");
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

} // namespace
