// What a dry run tells and leaves alone. That no command can forget it is seen in
// program/json_schemas_test.py.
#include "support/LinksecMachine.h"
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using testing::Not;

class DryRunTest : public CommandLine {
  protected:
    static constexpr const char* kTeam = "TEAM : Zürich";
    static constexpr const char* kMember = "Zorel Quad Port Gigabit Server Adapter #2";

    Outcome Run(std::vector<std::string> line, Screen screen = {}) const {
        line.insert(line.begin(), {"--dry-run", "--simulate", TestMachine("golden.mof"), "--state",
                                   Utf8(InFolder("lab.mof")), "--journal"});
        return RunCommandLine(line, screen);
    }
};

TEST_F(DryRunTest, TellsTheStepsAndMakesNoStateFile) {
    const Outcome outcome = Run({"setting", "set", kMember, "*JumboPacket=9014", "*FlowControl=3"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out,
                HasSubstr("would set *JumboPacket of " + std::string(kMember) + " to 9014 Bytes (9014)\n"));
    EXPECT_THAT(outcome.out, HasSubstr(": *FlowControl: is Rx & Tx Enabled (3) already\n"));
    EXPECT_THAT(outcome.out, Not(HasSubstr("BeginApply")));
    EXPECT_FALSE(std::filesystem::exists(InFolder("lab.mof")));
}

TEST_F(DryRunTest, AsksNobody) {
    for (const std::vector<std::string>& line : {std::vector<std::string>{"team", "delete", kTeam},
                                                 {"team", "remove", kTeam, kMember},
                                                 {"vlan", "remove", kTeam, "340"}}) {
        const Outcome outcome = Run(line, {.isTerminal = true, .answers = "n\n"});
        EXPECT_EQ(outcome.status, 0) << line[1];
        EXPECT_EQ(outcome.err, "") << line[1];
        EXPECT_THAT(outcome.out, testing::StartsWith("would ")) << line[1];
    }
}

TEST_F(DryRunTest, NothingToDo_IsTold) {
    const Outcome outcome = Run({"team", "add", kTeam, kMember});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, testing::StartsWith("nothing would be changed\n"));
    const Outcome json = Run({"team", "add", kTeam, kMember, "--json"});
    EXPECT_EQ(Json::parse(json.out),
              Json({{"dryRun", true}, {"steps", Json::array()}, {"remarks", Json::array()}}));
}

TEST_F(DryRunTest, Findings_AreThoseOfTheCommand) {
    const std::vector<std::string> line{"vlan", "add", kTeam, "340", "Again"};
    const Outcome dry = Run(line);
    std::vector<std::string> wet = line;
    wet.insert(wet.begin(), {"--simulate", TestMachine("golden.mof"), "--journal"});
    const Outcome outcome = RunCommandLine(wet);
    EXPECT_EQ(dry.status, 3);
    EXPECT_EQ(dry.status, outcome.status);
    EXPECT_EQ(dry.out, outcome.out);
}

TEST_F(DryRunTest, ASettingThatIsReadOnly_IsAFinding) {
    const Outcome outcome = Run({"setting", "set", kMember, "DriverDate", "2012", "--json"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(Json::parse(outcome.out).at("targets").at(0).at("outcome"), "readOnly");
}

TEST_F(DryRunTest, ReadingTheFlashMemory_WritesNoFile) {
    const std::string file = Utf8(InFolder("flash.bin"));
    const Outcome outcome = RunCommandLine({"--simulate", "--dry-run", "boot", "read", "2:1", file});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "would write what the flash memory of Zorel 10G Dual Port Server Adapter holds to " + file +
                  "\n");
    EXPECT_FALSE(std::filesystem::exists(InFolder("flash.bin")));
}

TEST_F(DryRunTest, ASecretIsNotAskedForAndNotTold) {
    for (const std::vector<std::string>& line : {std::vector<std::string>{"linksec", "set-keys", "A"},
                                                 {"linksec", "set-auth", "A", "--password"},
                                                 {"linksec", "pmk", "A", "--set"},
                                                 {"linksec", "import-pac", "A", "new.pac"}}) {
        std::vector<std::string> words{"--dry-run", "--simulate", MachineFile(kLinksecMachine), "--journal"};
        words.insert(words.end(), line.begin(), line.end());
        const Outcome outcome = RunCommandLine(words);
        EXPECT_EQ(outcome.status, 0) << line[1] << outcome.err;
        EXPECT_THAT(outcome.out, testing::StartsWith("would ")) << line[1];
        EXPECT_THAT(outcome.out, Not(HasSubstr("CANARY"))) << line[1];
        EXPECT_THAT(outcome.out, Not(HasSubstr(", Set"))) << line[1];
    }
}

TEST_F(DryRunTest, ACommandThatChangesNothing_DoesWhatItAlwaysDoes) {
    EXPECT_EQ(Run({"vlan", "list"}).out,
              RunCommandLine({"--simulate", TestMachine("golden.mof"), "vlan", "list", "--journal"}).out);
}

} // namespace
