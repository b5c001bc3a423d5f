// The prompt for a secret on a terminal of its own.
#include "support/LinksecMachine.h"
#include "support/RunCommandLine.h"

#include <ending/Failure.h>
#include <secrets/SecretTerminal.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace quillet::tests;

/// A terminal, and the side of it where a person would sit.
class PersonTest : public testing::Test {
  protected:
    PersonTest() : m_person(posix_openpt(O_RDWR | O_NOCTTY)) {
        if (m_person < 0 || grantpt(m_person) != 0 || unlockpt(m_person) != 0) {
            throw std::runtime_error("no terminal can be made");
        }
        m_terminal = open(ptsname(m_person), O_RDWR | O_NOCTTY);
    }
    ~PersonTest() override {
        close(m_terminal);
        close(m_person);
    }
    void Type(const std::string& text) const {
        ASSERT_EQ(write(m_person, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /// What the person sees until nothing more comes, or until this text.
    std::string See(const std::string& until = {}) const {
        std::string seen;
        pollfd waiting{m_person, POLLIN, 0};
        while ((until.empty() || seen.find(until) == std::string::npos) &&
               poll(&waiting, 1, until.empty() ? 200 : 5000) == 1) {
            char buffer[256];
            const ssize_t count = read(m_person, buffer, sizeof buffer);
            if (count <= 0) {
                break;
            }
            seen.append(buffer, static_cast<std::size_t>(count));
        }
        return seen;
    }
    bool Echoes() const {
        termios mode{};
        EXPECT_EQ(tcgetattr(m_terminal, &mode), 0);
        return (mode.c_lflag & ECHO) != 0;
    }
    int Terminal() const { return m_terminal; }

  private:
    int m_person;
    int m_terminal = -1;
};

TEST_F(PersonTest, IsAskedAndSeesNothingOfTheSecret) {
    ASSERT_TRUE(Echoes());
    std::wstring secret = L"before";
    bool isRead = false;
    std::thread asking([&] { isRead = quilletctl::AskOnTerminal(Terminal(), "Password: ", secret); });
    std::string seen = See("Password: ");
    Type("geheimes Paßwort\n");
    asking.join();
    seen += See();
    EXPECT_TRUE(isRead);
    EXPECT_EQ(secret, L"geheimes Pa\xDFwort");
    EXPECT_EQ(seen, "Password: \r\n");
    EXPECT_TRUE(Echoes()) << "the terminal is as it was";
}

TEST_F(PersonTest, MayGiveNothing) {
    std::wstring secret = L"before";
    bool isRead = false;
    std::thread asking([&] { isRead = quilletctl::AskOnTerminal(Terminal(), "Password: ", secret); });
    See("Password: ");
    Type("\n");
    asking.join();
    EXPECT_TRUE(isRead);
    EXPECT_EQ(secret, L"");
}

TEST_F(PersonTest, EndsTheInput) {
    std::wstring secret = L"before";
    bool isRead = true;
    std::thread asking([&] { isRead = quilletctl::AskOnTerminal(Terminal(), "Password: ", secret); });
    See("Password: ");
    Type("\x04");
    asking.join();
    EXPECT_FALSE(isRead);
    EXPECT_TRUE(Echoes());
}

TEST_F(PersonTest, TypesBytesThatAreNoText) {
    std::wstring secret = L"before";
    std::string message;
    std::thread asking([&] {
        try {
            quilletctl::AskOnTerminal(Terminal(), "Password: ", secret);
        } catch (const quilletctl::UsageError& mistake) {
            message = mistake.what();
        }
    });
    See("Password: ");
    Type("CANARY\xC0\xAF\n");
    asking.join();
    EXPECT_EQ(message, "a secret must be valid UTF-8");
    EXPECT_EQ(secret, L"before");
    EXPECT_TRUE(Echoes());
}

/// What quilletctl writes on a terminal of its own where a person types this at its prompt, and its status.
std::pair<int, std::string> AtItsPrompt(const std::vector<std::string>& arguments, const std::string& typed) {
    int person = -1;
    const pid_t child = forkpty(&person, nullptr, nullptr, nullptr);
    if (child == 0) {
        std::vector<char*> words{const_cast<char*>(QUILLETCTL_PROGRAM)};
        for (const std::string& argument : arguments) {
            words.push_back(const_cast<char*>(argument.c_str()));
        }
        words.push_back(nullptr);
        execv(QUILLETCTL_PROGRAM, words.data());
        _exit(127);
    }
    std::string seen;
    bool isTyped = false;
    char buffer[256];
    for (ssize_t count = 0; (count = read(person, buffer, sizeof buffer)) > 0;) {
        seen.append(buffer, static_cast<std::size_t>(count));
        if (!isTyped && seen.find(": ") != std::string::npos) {
            isTyped = true;
            EXPECT_EQ(write(person, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
        }
    }
    close(person);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, seen};
}

class PromptTest : public CommandLine {
  protected:
    PromptTest() : m_machine(MachineFile(kLinksecMachine)) {}
    std::pair<int, std::string> Run(std::vector<std::string> arguments, const std::string& typed) const {
        arguments.insert(arguments.begin(), {"--simulate", m_machine, "linksec"});
        return AtItsPrompt(arguments, typed);
    }

  private:
    std::string m_machine;
};

TEST_F(PromptTest, NothingTypedIsNoSecret) {
    const auto [status, seen] = Run({"pmk", "A", "--set"}, "\n");
    EXPECT_EQ(status, 2);
    EXPECT_NE(seen.find("nothing was typed for \"Pairwise master key\""), std::string::npos) << seen;
}

TEST_F(PromptTest, NothingTypedKeepsAKeyThatMayStay) {
    const auto [status, seen] = Run({"set-keys", "A", "--keys", "rx", "--reload"}, "\n");
    EXPECT_EQ(status, 0) << seen;
    EXPECT_NE(seen.find("Key for incoming frames (empty: as it is): "), std::string::npos) << seen;
    EXPECT_NE(seen.find("keys set; no restart is needed"), std::string::npos) << seen;
}

TEST(NoPersonTest, APipeIsNoTerminal) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::wstring secret = L"before";
    EXPECT_FALSE(quilletctl::AskOnTerminal(ends[0], "Password: ", secret));
    EXPECT_EQ(secret, L"before");
    close(ends[0]);
    close(ends[1]);
}

} // namespace
