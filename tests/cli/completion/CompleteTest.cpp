// What the program answers the shells.
#include "support/RunCommandLine.h"

#include <gmock/gmock.h>

namespace {

using namespace quillet::tests;

class CompleteTest : public CommandLine {};

TEST_F(CompleteTest, NothingStaysAliveAndNothingIsChanged) {
    const std::string state = Utf8(InFolder("lab.mof"));
    const Outcome outcome = RunCommandLine({"complete", "--current=", "--state", state, "team", "show"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, testing::StartsWith("\nTEAM : Zürich\t{"));
    EXPECT_FALSE(std::filesystem::exists(InFolder("lab.mof")));
}

TEST_F(CompleteTest, ForBash_OnlyWhatFits) {
    const auto ask = [](const std::string& line) {
        return RunCommandLine({"complete", "--breaks= \"'=:", "--line=quilletctl --simulate " + line}).out;
    };
    EXPECT_EQ(ask("team show te"), "\nTEAM\\ :\\ Zürich\n"); // case does not count if nothing else fits
    EXPECT_EQ(ask("team show X"), "\n");
    EXPECT_EQ(ask("setting list 2:1 --of=b"), "\nboot-agent\n");
    EXPECT_EQ(ask("team list --state "), "files\n");
}

TEST_F(CompleteTest, NamesThatSeveralHave_GiveWayToObjectIds) {
    const std::string machine = MachineFile(R"(
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Name = "One"; OriginalDisplayName = "x"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; Name = "Two"; OriginalDisplayName = "x"; };
        instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; Name = "Two"; OriginalDisplayName = "x"; };)");
    EXPECT_EQ(RunCommandLine({"complete", "--current=", "--simulate", machine, "adapter", "show"}).out,
              "\nOne\t{A}\n{B}\tTwo\n{C}\tTwo\n");
}

TEST_F(CompleteTest, WithoutAQuestion_ThereAreTheNouns) {
    EXPECT_THAT(RunCommandLine({"complete"}).out, testing::HasSubstr("\nadapter\t"));
    EXPECT_THAT(RunCommandLine({"complete", "--current="}).out, testing::HasSubstr("\nadapter\t"));
    EXPECT_EQ(RunCommandLine({"help"}).out.find("  complete "), std::string::npos);
}

} // namespace
