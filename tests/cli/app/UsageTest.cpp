// The command line itself: help, versions, and what is refused before anything is contacted.
#include "support/RunCommandLine.h"

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
