// The command line itself: help, versions, and what is refused before anything is contacted.
#include "support/RunCommandLine.h"

#include <app/CommandTree.h>
#include <commands/Commands.h>

#include <algorithm>

namespace {

using namespace quillet::tests;

struct BadLine {
    std::vector<std::string> arguments;
    std::string mentions;
};

/// GoogleTest would show the bytes, and what lies in them is not all written.
void PrintTo(const BadLine& line, std::ostream* out) {
    for (const std::string& argument : line.arguments) {
        *out << argument << ' ';
    }
    *out << "-> " << line.mentions;
}

class BadUsageTest : public testing::TestWithParam<BadLine> {};

TEST_P(BadUsageTest, IsOneLineOnTheErrorStreamAndStatusTwo) {
    const Outcome outcome = RunCommandLine(GetParam().arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.starts_with("quilletctl: ")) << outcome.err;
    EXPECT_NE(outcome.err.find(GetParam().mentions), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_TRUE(outcome.err.ends_with('\n'));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, BadUsageTest,
    testing::Values(
        BadLine{{}, "a command is needed: adapter, "}, BadLine{{"adapter"}, "adapter needs a verb: list"},
        BadLine{{"adaptor", "list"}, "adaptor"}, BadLine{{"adapter", "lost"}, "lost"},
        BadLine{{"version", "more"}, "more"}, BadLine{{"adapter", "list", "--colour"}, "--colour"},
        BadLine{{"version", "/json"}, "/json"}, BadLine{{"warnings", "version"}, "takes no further word"},
        BadLine{{"adapter", "list", "--machine"}, "--machine"},
        BadLine{{"adapter", "list", "--machine", "\\\\"}, "--machine"},
        BadLine{{"adapter", "list", "--state"}, "--state"},
        BadLine{{"adapter", "list", "--state", ""}, "--state"}, BadLine{{"trace", "--lines"}, "--lines"},
        BadLine{{"trace", "--lines", "0"}, "--lines"}, BadLine{{"trace", "--lines", "-3"}, "--lines"},
        BadLine{{"trace", "--lines", "many"}, "--lines"}, BadLine{{"warnings", "--lines", "3"}, "--lines"},
        BadLine{{"--simulate", "no-such.mof", "warnings"}, "no-such.mof: no such file"},
        BadLine{{"--simulate", ".", "warnings"}, ".: not a file"}));

/// The words of a line that gives a command so many, those behind "--" with a dash where they may be
/// anything.
std::vector<std::string> LineWithEndOfOptions(const quilletctl::CommandDescription& command,
                                              std::size_t words, std::size_t before) {
    const std::size_t blank = command.name.find(' ');
    std::vector<std::string> line{command.name.substr(0, blank)};
    if (blank != std::string::npos) {
        line.push_back(command.name.substr(blank + 1));
    }
    std::size_t given = 0;
    for (const quilletctl::ArgumentDescription& argument : command.arguments) {
        for (std::size_t i = 0; i < argument.most && given < words; ++i, ++given) {
            if (given == before) {
                line.emplace_back("--");
            }
            const std::string anything = given < before ? "x" : "--x";
            line.push_back(argument.words.empty() ? anything : argument.words.front());
        }
    }
    if (before == words) {
        line.emplace_back("--");
    }
    return line;
}

TEST(UsageTest, NamesMayBeginWithADash_BehindTheEndOfOptionsOfEveryCommand) {
    quilletctl::CommandTree all;
    quilletctl::AddAllCommands(all);
    std::size_t tried = 0;
    for (const quilletctl::CommandDescription& command : all.Description().commands) {
        std::size_t least = 0;
        std::size_t most = 0;
        for (const quilletctl::ArgumentDescription& argument : command.arguments) {
            least += argument.least;
            most += argument.most;
        }
        for (std::size_t words = least; words <= std::min(least + 2, most); ++words) {
            for (std::size_t before = 0; before <= words; ++before) {
                const std::vector<std::string> line = LineWithEndOfOptions(command, words, before);
                SCOPED_TRACE(testing::PrintToString(line));
                quilletctl::CommandTree tree; // what a line gives stays in it
                quilletctl::AddAllCommands(tree);
                EXPECT_NO_THROW(tree.Parse(line));
                ++tried;
            }
        }
    }
    EXPECT_GT(tried, 100U);
}

TEST(UsageTest, SimulateBeforeTheEndOfOptions_TakesNothingOfWhatFollows) {
    for (const std::vector<std::string>& line :
         {std::vector<std::string>{"adapter", "list", "--simulate", "--", "-x"},
          {"--simulate", "adapter", "list", "--", "-x"},
          {"adapter", "list", "--simulate", "--", "-x", "--simulate"}}) {
        const Outcome outcome = RunCommandLine(line);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.err.find("no adapter is called \"-x\""), std::string::npos) << outcome.err;
    }
    const std::string file = QUILLET_SOURCE_DIR "/simulator/machines/builtin.mof";
    EXPECT_NE(RunCommandLine({"adapter", "list", "--simulate", file, "--", "-x"}).err.find("called \"-x\""),
              std::string::npos);
    EXPECT_EQ(RunCommandLine({"config", "show", "--simulate", "--", "TEAM*"}).status, 0);
    EXPECT_EQ(RunCommandLine({"--simulate", "--", "adapter", "list", "2:1"}).status, 0);
    EXPECT_EQ(RunCommandLine({"--simulate", file, "--", "adapter", "list", "2:1"}).status, 0);
}

TEST(UsageTest, Help_GoesToTheOutputAndListsEveryCommand) {
    const Outcome outcome = RunCommandLine({"--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    for (const char* word :
         {"adapter", "warnings", "trace", "transaction", "version", "--machine", "--simulate", "--state",
          "--json", "--journal", "--yes", "--no-color", "Exit status", "help"}) {
        EXPECT_NE(outcome.out.find(word), std::string::npos) << word;
    }
}

TEST(UsageTest, Help_OfANounListsItsVerbs) {
    const Outcome outcome = RunCommandLine({"transaction", "--help"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("try"), std::string::npos);
    EXPECT_NE(outcome.out.find("restart"), std::string::npos);
    EXPECT_EQ(outcome.out.find("adapter"), std::string::npos);
}

TEST(UsageTest, Version_NeedsNoMachine) {
    EXPECT_EQ(RunCommandLine({"version"}).out, "quilletctl " QUILLET_VERSION "\n");
    EXPECT_EQ(RunCommandLine({"--version"}).out, "quilletctl " QUILLET_VERSION "\n");
    EXPECT_EQ(RunCommandLine({"version", "--json"}).out, "{\n  \"version\": \"" QUILLET_VERSION "\"\n}\n");
    // The file is not even looked at.
    EXPECT_EQ(RunCommandLine({"version", "--simulate", "no-such.mof"}).status, 0);
}

} // namespace
