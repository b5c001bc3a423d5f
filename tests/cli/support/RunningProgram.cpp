// Starting the program, on pipes or on a pseudo-terminal.
#include "support/RunningProgram.h"

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace quillet::tests {

namespace {

constexpr auto kPatience = std::chrono::seconds(30);

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

int OpenTerminal() {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_GE(master, 0);
    EXPECT_EQ(grantpt(master), 0);
    EXPECT_EQ(unlockpt(master), 0);
    return master;
}

void TakeTerminal(const char* name) {
    setsid();
    const int slave = open(name, O_RDWR);
    winsize size{};
    size.ws_col = 70;
    size.ws_row = 24;
    ioctl(slave, TIOCSWINSZ, &size);
    ioctl(slave, TIOCSCTTY, 0);
    dup2(slave, STDIN_FILENO);
    dup2(slave, STDOUT_FILENO);
    dup2(slave, STDERR_FILENO);
}

/// Reads what there is. False at the end; a terminal whose program has gone reads as an error.
bool ReadSome(int descriptor, std::string& text) {
    char buffer[4096];
    const ssize_t count = read(descriptor, buffer, sizeof buffer);
    text.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    return count > 0;
}

} // namespace

RunningProgram::RunningProgram(const std::filesystem::path& folder, std::vector<std::string> arguments,
                               Ends ends)
    : m_folder(folder) {
    arguments.insert(arguments.begin(), QUILLETCTL_PROGRAM);
    std::vector<char*> words;
    for (std::string& argument : arguments) {
        words.push_back(argument.data());
    }
    words.push_back(nullptr);
    int out[2] = {-1, -1};
    int err[2] = {-1, -1};
    std::string terminal;
    if (ends == Ends::Terminal) {
        m_out = OpenTerminal();
        terminal = ptsname(m_out);
    } else {
        EXPECT_EQ(pipe2(out, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(err, O_CLOEXEC), 0);
        m_out = out[0];
        m_err = err[0];
    }
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    m_process = fork();
    if (m_process == 0) {
        setenv("Temp", m_folder.c_str(), 1);
        if (!terminal.empty()) {
            TakeTerminal(terminal.c_str());
        } else {
            dup2(nothing, STDIN_FILENO);
            dup2(out[1], STDOUT_FILENO);
            dup2(err[1], STDERR_FILENO);
        }
        execv(words[0], words.data());
        _exit(127);
    }
    close(nothing);
    if (terminal.empty()) {
        close(out[1]);
        close(err[1]);
    }
}

RunningProgram::~RunningProgram() {
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        Finish();
    }
}

void RunningProgram::WaitForTrace(const std::string& text, std::size_t count) const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (Count(ReadFile(m_folder / "Gui_Quillet.txt"), text) < count) {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << "never traced: " << text;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void RunningProgram::WaitForScreen(const std::string& text) {
    pollfd screen{m_out, POLLIN, 0};
    while (m_outcome.out.find(text) == std::string::npos) {
        constexpr int kMilliseconds = 30000;
        ASSERT_EQ(poll(&screen, 1, kMilliseconds), 1) << "never seen: " << text << "\n" << m_outcome.out;
        ASSERT_TRUE(ReadSome(m_out, m_outcome.out)) << "never seen: " << text << "\n" << m_outcome.out;
    }
}

void RunningProgram::Signal(int signal) const {
    ASSERT_EQ(kill(m_process, signal), 0);
}

void RunningProgram::Type(const std::string& text) const {
    ASSERT_EQ(write(m_out, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

bool RunningProgram::Echoes() const {
    termios mode{};
    EXPECT_EQ(tcgetattr(m_out, &mode), 0);
    return (mode.c_lflag & ECHO) != 0;
}

Outcome RunningProgram::Finish() {
    // Both at once, for a full pipe would keep the program.
    std::thread err([this] {
        while (m_err >= 0 && ReadSome(m_err, m_outcome.err)) {
        }
    });
    while (ReadSome(m_out, m_outcome.out)) {
    }
    err.join();
    int result = 0;
    waitpid(m_process, &result, 0);
    m_process = -1;
    m_outcome.status = WIFEXITED(result) ? WEXITSTATUS(result) : -WTERMSIG(result);
    for (const int descriptor : {m_out, m_err}) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    return m_outcome;
}

} // namespace quillet::tests
