// Ctrl-C, and the program on a pseudo-terminal: what only a POSIX host can be told from within a test.
#include "RunCommandLine.h"

#include <Interrupt.h>

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <set>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* MACHINE = R"(
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "Port"; OriginalDisplayName = "Port"; };
    instance of Zorel_DiagTest as $L { Name = "Link test"; TestId = 4; };
    instance of Zorel_DiagTestForAdapter { Antecedent = $L; Dependent = $A; };
    instance of QuilletSimulator_DiagnosticTest { Name = "Link test"; Milliseconds = )";

class OnPosix : public CommandLine {
  protected:
    std::string Machine(const std::string& milliseconds) const {
        return MachineFile(MACHINE + milliseconds + "; };");
    }

    /// Runs the program itself on a pseudo-terminal and yields what a person would have got.
    /// @param interruptAfter if not zero: Ctrl-C is typed then
    static std::string OnATerminal(std::vector<std::string> arguments, int& status,
                                   std::chrono::milliseconds interruptAfter = {}) {
        const int master = posix_openpt(O_RDWR | O_NOCTTY);
        EXPECT_GE(master, 0);
        EXPECT_EQ(grantpt(master), 0);
        EXPECT_EQ(unlockpt(master), 0);
        const std::string slaveName = ptsname(master);
        arguments.insert(arguments.begin(), QUILLETCTL_PROGRAM);
        const pid_t child = fork();
        if (child == 0) {
            setsid();
            const int slave = open(slaveName.c_str(), O_RDWR);
            winsize size{};
            size.ws_col = 70;
            size.ws_row = 24;
            ioctl(slave, TIOCSWINSZ, &size);
            ioctl(slave, TIOCSCTTY, 0);
            dup2(slave, 0);
            dup2(slave, 1);
            dup2(slave, 2);
            std::vector<char*> words;
            for (std::string& argument : arguments) {
                words.push_back(argument.data());
            }
            words.push_back(nullptr);
            execv(words[0], words.data());
            _exit(127);
        }
        std::thread typist;
        if (interruptAfter.count() > 0) {
            typist = std::thread([=] {
                std::this_thread::sleep_for(interruptAfter);
                EXPECT_EQ(write(master, "\x03", 1), 1);
            });
        }
        std::string output;
        char buffer[4096];
        // A terminal whose program has gone reads as an error.
        for (ssize_t count = 0; (count = read(master, buffer, sizeof buffer)) > 0;) {
            output.append(buffer, static_cast<std::size_t>(count));
        }
        if (typist.joinable()) {
            typist.join();
        }
        int result = 0;
        waitpid(child, &result, 0);
        status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
        close(master);
        return output;
    }
    static std::set<std::string> Bars(const std::string& output) {
        std::set<std::string> pictures;
        for (std::size_t at = output.find("\r["); at != std::string::npos; at = output.find("\r[", at + 1)) {
            pictures.insert(output.substr(at + 1, output.find(']', at) - at));
        }
        return pictures;
    }
};

TEST_F(OnPosix, CtrlC_IsRememberedWhileAnInterruptLives) {
    const auto before = std::signal(SIGINT, SIG_IGN);
    {
        const quilletctl::Interrupt interrupt;
        EXPECT_FALSE(interrupt.Requested());
        std::raise(SIGINT);
        EXPECT_TRUE(interrupt.Requested());
    }
    EXPECT_EQ(std::signal(SIGINT, before), SIG_IGN) << "what was before is there again";
    const quilletctl::Interrupt another;
    EXPECT_FALSE(another.Requested());
}

TEST_F(OnPosix, CtrlC_StopsTheTestInTheProviderFirst) {
    std::thread typist([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        kill(getpid(), SIGINT);
    });
    const Outcome outcome = RunCommandLine(
        {"--simulate", Machine("600000"), "diag", "run", "Port", "4", "--interval", "50", "--journal"});
    typist.join();
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("State:     Stopped\n"));
    EXPECT_THAT(outcome.out, HasSubstr("DiscontinueTest("));
}

TEST_F(OnPosix, APseudoTerminal_ShowsAMovingBar) {
    int status = -1;
    const std::string output =
        OnATerminal({"--simulate", Machine("700"), "diag", "run", "Port", "4", "--interval", "200"}, status);
    EXPECT_EQ(status, 0) << output;
    EXPECT_GE(Bars(output).size(), 4u) << output;
    EXPECT_THAT(output, HasSubstr("] In Progress  0 s"));
    EXPECT_THAT(output, HasSubstr("State:     Passed\r\n"));
    std::printf("on a terminal: %zu pictures of the bar, %zu bytes\n", Bars(output).size(), output.size());
}

TEST_F(OnPosix, APseudoTerminal_CtrlCTyped_StopsTheTest) {
    int status = -1;
    const std::string output =
        OnATerminal({"--simulate", Machine("600000"), "diag", "run", "Port", "4", "--interval", "100"},
                    status, std::chrono::milliseconds(1500));
    EXPECT_EQ(status, 3) << output;
    EXPECT_THAT(output, HasSubstr("State:     Stopped\r\n"));
}

TEST_F(OnPosix, AFile_GetsPlainLines) {
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
                      "Result:    The test passed.\n"
                      "Details:   -\n"
                      "Code:      0\n"
                      "Messages:  -\n");
}

} // namespace
