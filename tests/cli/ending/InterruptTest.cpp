// Ctrl-C, and the program on a pseudo-terminal: what only a POSIX host can be told from within a test.
#include "support/RunningProgram.h"

#include <ending/Interrupt.h>

#include <gmock/gmock.h>

#include <csignal>
#include <set>

namespace {

using namespace quillet::tests;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kMachine = R"(
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "Port"; OriginalDisplayName = "Port"; };
    instance of Zorel_DiagTest as $L { Name = "Link test"; TestId = 4; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $L; Dependent = $A; };
    instance of QuilletSimulator_DiagnosticTest { Name = "Link test"; Milliseconds = )";

class OnPosixTest : public CommandLine {
  protected:
    std::string Machine(const std::string& milliseconds) const {
        return MachineFile(kMachine + milliseconds + "; };");
    }

    static std::set<std::string> Bars(const std::string& output) {
        std::set<std::string> pictures;
        for (std::size_t at = output.find("\r["); at != std::string::npos; at = output.find("\r[", at + 1)) {
            pictures.insert(output.substr(at + 1, output.find(']', at) - at));
        }
        return pictures;
    }
};

TEST_F(OnPosixTest, CtrlC_IsRememberedWhileAnInterruptIsHeld) {
    const auto before = std::signal(SIGINT, SIG_IGN);
    {
        quilletctl::Interrupt interrupt;
        interrupt.Hold(nullptr);
        EXPECT_FALSE(interrupt.Requested());
        std::raise(SIGINT);
        EXPECT_TRUE(interrupt.Requested());
    }
    EXPECT_EQ(std::signal(SIGINT, before), SIG_IGN) << "what was before is there again";
    const quilletctl::Interrupt another;
    EXPECT_FALSE(another.Requested());
}

TEST_F(OnPosixTest, CtrlC_StopsTheTestInTheProviderFirst) {
    RunningProgram program(Folder(), {"--simulate", Machine("600000"), "diag", "run", "Port", "4",
                                      "--interval", "50", "--journal"});
    program.WaitForTrace("Exiting CQuillet::GetDiagnosticsResult");
    program.Signal(SIGINT);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130) << outcome.err;
    EXPECT_EQ(outcome.err, "quilletctl: interrupted before everything was done\n");
    EXPECT_THAT(outcome.out, HasSubstr("State:     Stopped\n"));
    EXPECT_THAT(outcome.out, HasSubstr("DiscontinueTest("));
}

TEST_F(OnPosixTest, APseudoTerminal_ShowsAMovingBar) {
    RunningProgram program(Folder(),
                           {"--simulate", Machine("700"), "diag", "run", "Port", "4", "--interval", "200"},
                           RunningProgram::Ends::Terminal);
    const Outcome outcome = program.Finish();
    const std::string& output = outcome.out;
    EXPECT_EQ(outcome.status, 0) << output;
    EXPECT_GE(Bars(output).size(), 4u) << output;
    EXPECT_THAT(output, HasSubstr("] In Progress  0 s"));
    EXPECT_THAT(output, HasSubstr("State:     Passed\r\n"));
    std::printf("on a terminal: %zu pictures of the bar, %zu bytes\n", Bars(output).size(), output.size());
}

TEST_F(OnPosixTest, APseudoTerminal_CtrlCTyped_StopsTheTest) {
    RunningProgram program(Folder(),
                           {"--simulate", Machine("600000"), "diag", "run", "Port", "4", "--interval", "100"},
                           RunningProgram::Ends::Terminal);
    program.WaitForScreen("In Progress");
    program.Type("\x03");
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.status, 130) << outcome.out;
    EXPECT_THAT(outcome.out, HasSubstr("quilletctl: interrupted; what is begun is brought to an end\r\n"));
    EXPECT_THAT(outcome.out, HasSubstr("State:     Stopped\r\n"));
}

TEST_F(OnPosixTest, AFile_GetsPlainLines) {
    const std::string file = Utf8(InFolder("out.txt"));
    const std::string command = std::string(QUILLETCTL_PROGRAM) + " --simulate '" + Machine("300") +
                                "' diag run Port 4 --interval 50 > '" + file + "' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string output = ReadFile(InFolder("out.txt"));
    EXPECT_THAT(output, Not(HasSubstr("\r")));
    EXPECT_THAT(output, Not(HasSubstr("\x1b")));
    EXPECT_EQ(output, "In Progress\n"
                      "Test:      Link test\n"
                      "State:     Passed\n"
                      "Result:    The test passed. (0)\n"
                      "Details:   -\n"
                      "Messages:  -\n");
}

} // namespace
