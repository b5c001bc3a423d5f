// What asks before it deletes or overwrites, and what an answer does.
#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

constexpr const char* kQuestionsTeam = "TEAM : Zürich";
constexpr const char* kMember = "Zorel Quad Port Gigabit Server Adapter #2";

struct Question {
    std::vector<std::string> command;
    std::string asked;
};

void PrintTo(const Question& question, std::ostream* out) {
    *out << question.asked;
}

class QuestionsTest : public CommandLine, public testing::WithParamInterface<Question> {
  protected:
    Outcome Run(std::vector<std::string> more = {}, Screen screen = {}) {
        std::vector<std::string> line = GetParam().command;
        line.insert(line.end(), {"--simulate", TestMachine("golden.mof"), "--state",
                                 Utf8(InFolder("lab.mof")), "--journal"});
        line.insert(line.end(), more.begin(), more.end());
        return RunCommandLine(line, screen);
    }
};

TEST_P(QuestionsTest, NobodyToAsk_IsBadUsageAndChangesNothing) {
    const std::string message = "nobody can be asked \"" + GetParam().asked + "\"; add --yes to agree";
    const Outcome outcome = Run();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "quilletctl: " + message + "\n");
    EXPECT_EQ(outcome.out.find("BeginApply"), std::string::npos) << outcome.out;
    // Whoever wants JSON is no person, also before a terminal.
    const Outcome json = Run({"--json"}, {.isTerminal = true, .answers = "y\n"});
    EXPECT_EQ(json.status, 2);
    EXPECT_EQ(Json::parse(json.out).at("error").at("message"), message);
}

TEST_P(QuestionsTest, No_ChangesNothing) {
    for (const char* answer : {"n\n", "\n", "maybe\n"}) {
        const Outcome outcome = Run({}, {.isTerminal = true, .answers = answer});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, GetParam().asked + " [y/N] ");
        EXPECT_THAT(outcome.out, HasSubstr("nothing was changed\n"));
        EXPECT_EQ(outcome.out.find("BeginApply"), std::string::npos) << outcome.out;
    }
}

TEST_P(QuestionsTest, Yes_ChangesIt) {
    const Outcome outcome = Run({}, {.isTerminal = true, .answers = "y\n"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, GetParam().asked + " [y/N] ");
    EXPECT_THAT(outcome.out, HasSubstr("BeginApply"));
}

TEST_P(QuestionsTest, YesOnTheCommandLine_AsksNothing) {
    const Outcome outcome = Run({"--yes", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(Json::parse(outcome.out).contains("restartNeeded"));
    EXPECT_THAT(outcome.err, HasSubstr("BeginApply"));
}

INSTANTIATE_TEST_SUITE_P(Commands, QuestionsTest,
                         testing::Values(Question{{"team", "delete", kQuestionsTeam},
                                                  "Delete the team TEAM : Zürich and its VLANs?"},
                                         Question{{"team", "remove", kQuestionsTeam, kMember},
                                                  "Take 1 adapter out of TEAM : Zürich?"},
                                         Question{{"vlan", "remove", kQuestionsTeam, "340"},
                                                  "Remove VLAN 340 \"VoIP\" from TEAM : Zürich?"}));

TEST(NamesTest, AWordBehindTheVerb_IsNoCommand) {
    EXPECT_EQ(RunCommandLine({"--simulate", "team", "show", "trace"}).err,
              "quilletctl: no team is called \"trace\"; see quilletctl team list\n");
    EXPECT_EQ(RunCommandLine({"vlan", "list", "vlan", "--simulate"}).err,
              "quilletctl: no adapter is called \"vlan\"; see quilletctl adapter list\n");
}

class VlanOwnersTest : public CommandLine {};

TEST_F(VlanOwnersTest, AVlanGoesByItsName) {
    const std::vector<std::string> get{
        "--simulate", TestMachine("golden.mof"), "setting", "get", "voip", "*JumboPacket", "--of", "vlan",
        "--json"};
    const Outcome outcome = RunCommandLine(get);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(Json::parse(outcome.out).at("owner").at("objectId"), "{709617B6-441D-542D-A0CC-BC23D94665A0}");
}

TEST_F(VlanOwnersTest, ANameThatTwoVlansHave_IsRefusedWithTheirObjectIds) {
    const std::string state = Utf8(InFolder("lab.mof"));
    ASSERT_EQ(RunCommandLine({"--simulate", TestMachine("golden.mof"), "--state", state, "vlan", "add",
                              "Zorel Gigabit Desktop Adapter", "7", "VoIP"})
                  .status,
              0);
    const Outcome outcome = RunCommandLine({"--state", state, "setting", "list", "VoIP", "--of", "vlan"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, HasSubstr("several VLANs are called \"VoIP\": {"));
    EXPECT_THAT(outcome.err, HasSubstr("{709617B6-441D-542D-A0CC-BC23D94665A0}"));
}

TEST(HelpTest, HelpIsWhatTheOptionPrints) {
    const std::vector<std::vector<std::string>> asked{{}, {"vlan"}, {"vlan", "add"}, {"trace"}};
    for (std::vector<std::string> words : asked) {
        std::vector<std::string> help{"help"};
        help.insert(help.end(), words.begin(), words.end());
        const Outcome told = RunCommandLine(help);
        EXPECT_EQ(told.status, 0);
        EXPECT_FALSE(told.out.empty());
        for (const char* option : {"--help", "-h"}) {
            words.push_back(option);
            EXPECT_EQ(RunCommandLine(words).out, told.out);
            words.pop_back();
        }
    }
}

TEST(HelpTest, OfACommand_NamesEachWordAndOption) {
    const Outcome outcome = RunCommandLine({"help", "vlan", "add"});
    EXPECT_EQ(outcome.out, "Add VLANs, unless something stands in the way\n"
                           "\n"
                           "Usage: quilletctl vlan add PARENT ID NAME [OPTION...]\n"
                           "\n"
                           "Words:\n"
                           "  PARENT                    An adapter or a team: its name, object ID or object\n"
                           "                            path\n"
                           "  ID                        The VLAN ID, 1 to 4094; 0 for the untagged VLAN\n"
                           "  NAME                      The VLAN's name\n"
                           "\n"
                           "Options:\n"
                           "  --through ID              Several VLANs, up to this ID; each is called by the\n"
                           "                            name and its ID\n"
                           "\n"
                           "quilletctl help lists the options that every command takes.\n");
}

TEST(HelpTest, EveryCommandHasOne) {
    const Json tree = Json::parse(RunCommandLine({"help", "--json"}).out);
    EXPECT_GE(tree.at("commands").size(), 50u);
    for (const Json& command : tree.at("commands")) {
        const std::string name = command.at("name");
        std::istringstream text(name);
        std::vector<std::string> words;
        for (std::string word; text >> word;) {
            words.push_back(word);
        }
        words.push_back("--help");
        const Outcome outcome = RunCommandLine(words);
        EXPECT_EQ(outcome.status, 0) << name;
        EXPECT_THAT(outcome.out, HasSubstr("Usage: " + command.at("usage").get<std::string>())) << name;
        for (const Json& option : command.at("options")) {
            EXPECT_THAT(outcome.out, HasSubstr("  " + option.at("name").get<std::string>())) << name;
        }
        // No line is wider than a terminal, but for what cannot be broken.
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 80u) << name << ": " << line;
        }
    }
}

} // namespace
