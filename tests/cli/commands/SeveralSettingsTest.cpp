// Several settings in one command, settings of several owners, profiles, and patterns.
#include "support/SettingsMachine.h"

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;

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

class SetProfileTest : public CommandLine {};
class PowerPatternTest : public CommandLine {};

TEST_F(SetProfileTest, ChangesTheSettingOfThatName) {
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

TEST_F(PowerPatternTest, APatternChangesAllInOneClientSet) {
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

TEST_F(PowerPatternTest, ARefusalOfOne_KeepsNobodyFromChangingTheOthers) {
    const Outcome outcome = RunCommandLine({"--simulate", "power", "reapply", "*", "--json"});
    EXPECT_EQ(outcome.status, 1);
    const Json targets = Json::parse(outcome.out).at("targets");
    ASSERT_EQ(targets.size(), 10u);
    EXPECT_EQ(targets.at(0).at("outcome"), "unknown");
    EXPECT_EQ(targets.at(9).at("outcome"), "refused");
    EXPECT_EQ(targets.at(9).at("code"), "0x8004100C WBEM_E_NOT_SUPPORTED");
}

} // namespace
