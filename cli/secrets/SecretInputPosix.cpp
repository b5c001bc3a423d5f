// Secrets on a POSIX host.
#include "secrets/SecretInput.h"
#include "ending/Failure.h"
#include "secrets/SecretTerminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <system_error>

namespace quilletctl {

namespace {

constexpr std::array kEnding{SIGINT, SIGTERM, SIGHUP};

// What a handler needs, for there is one terminal and one prompt at a time.
int g_silentTerminal = -1;
termios g_modeBefore{};
std::array<struct sigaction, kEnding.size()> g_actionsBefore{};

void Restore() {
    tcsetattr(g_silentTerminal, TCSAFLUSH, &g_modeBefore);
    for (std::size_t i = 0; i < kEnding.size(); ++i) {
        sigaction(kEnding[i], &g_actionsBefore[i], nullptr);
    }
}

/// Gives the terminal back, and lets the signal do what it did before. Calls nothing but what a handler may.
void EndPrompt(int signal) {
    Restore();
    static_cast<void>(!write(g_silentTerminal, "\n", 1));
    raise(signal);
}

/// A terminal that echoes nothing while this lives. What ends the process meanwhile gives it back first; what
/// would stop it, or have it written down, waits.
class Silence {
  public:
    explicit Silence(int terminal) {
        sigset_t later;
        sigemptyset(&later);
        sigaddset(&later, SIGQUIT);
        sigaddset(&later, SIGTSTP);
        pthread_sigmask(SIG_BLOCK, &later, &m_signals);
        if (tcgetattr(terminal, &g_modeBefore) != 0) {
            return;
        }
        g_silentTerminal = terminal;
        struct sigaction action = {};
        action.sa_handler = EndPrompt;
        sigemptyset(&action.sa_mask);
        for (const int signal : kEnding) {
            sigaddset(&action.sa_mask, signal);
        }
        for (std::size_t i = 0; i < kEnding.size(); ++i) {
            sigaction(kEnding[i], nullptr, &g_actionsBefore[i]);
        }
        for (std::size_t i = 0; i < kEnding.size(); ++i) {
            if (g_actionsBefore[i].sa_handler != SIG_IGN) {
                sigaction(kEnding[i], &action, nullptr);
            }
        }
        termios silent = g_modeBefore;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK | ECHONL);
        m_isSilent = tcsetattr(terminal, TCSAFLUSH, &silent) == 0;
        if (!m_isSilent) {
            Restore();
        }
    }
    ~Silence() {
        if (m_isSilent) {
            Restore();
        }
        pthread_sigmask(SIG_SETMASK, &m_signals, nullptr);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    bool IsSilent() const noexcept { return m_isSilent; }

  private:
    sigset_t m_signals{};
    bool m_isSilent = false;
};

void Write(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace

bool ReadByte(int descriptor, char& byte) {
    for (;;) {
        const ssize_t count = read(descriptor, &byte, 1);
        if (count >= 0) {
            return count == 1;
        }
        if (errno != EINTR) {
            throw UsageError("descriptor " + std::to_string(descriptor) +
                             " cannot be read: " + std::generic_category().message(errno));
        }
    }
}

bool AskOnTerminal(int terminal, const std::string& prompt, std::wstring& secret) {
    const Silence silence(terminal);
    if (!silence.IsSilent()) {
        return false;
    }
    Write(terminal, prompt);
    SecretLine line;
    char byte = '\0';
    bool isLine = false;
    while (ReadByte(terminal, byte) && byte != '\n') {
        isLine = true;
        line.Append(byte);
    }
    isLine = isLine || byte == '\n';
    SecureZeroMemory(&byte, sizeof byte);
    Write(terminal, "\n");
    line.MoveTo(secret);
    return isLine;
}

bool AskTerminal(const std::string& prompt, std::wstring& secret) {
    const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal < 0) {
        return false;
    }
    struct Closer {
        int descriptor;
        ~Closer() { close(descriptor); }
    } const closer{terminal};
    return AskOnTerminal(terminal, prompt, secret);
}

} // namespace quilletctl
