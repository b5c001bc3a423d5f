// The prompt for a secret on a terminal of its own.
#include <SecretTerminal.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>

namespace {

/// A terminal, and the side of it where a person would sit.
class Person : public testing::Test {
  protected:
    Person() : m_person(posix_openpt(O_RDWR | O_NOCTTY)) {
        if (m_person < 0 || grantpt(m_person) != 0 || unlockpt(m_person) != 0) {
            throw std::runtime_error("no terminal can be made");
        }
        m_terminal = open(ptsname(m_person), O_RDWR | O_NOCTTY);
    }
    ~Person() override {
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

TEST_F(Person, IsAskedAndSeesNothingOfTheSecret) {
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

TEST_F(Person, MayGiveNothing) {
    std::wstring secret = L"before";
    bool isRead = false;
    std::thread asking([&] { isRead = quilletctl::AskOnTerminal(Terminal(), "Password: ", secret); });
    See("Password: ");
    Type("\n");
    asking.join();
    EXPECT_TRUE(isRead);
    EXPECT_EQ(secret, L"");
}

TEST_F(Person, EndsTheInput) {
    std::wstring secret = L"before";
    bool isRead = true;
    std::thread asking([&] { isRead = quilletctl::AskOnTerminal(Terminal(), "Password: ", secret); });
    See("Password: ");
    Type("\x04");
    asking.join();
    EXPECT_FALSE(isRead);
    EXPECT_TRUE(Echoes());
}

TEST(NoPerson, APipeIsNoTerminal) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::wstring secret = L"before";
    EXPECT_FALSE(quilletctl::AskOnTerminal(ends[0], "Password: ", secret));
    EXPECT_EQ(secret, L"before");
    close(ends[0]);
    close(ends[1]);
}

} // namespace
