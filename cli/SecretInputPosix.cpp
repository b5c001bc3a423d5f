// Secrets on a POSIX host.
#include "SecretInput.h"
#include "SecretTerminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace quilletctl {

namespace {

/// A terminal that echoes nothing while this lives. A signal that would end or stop the process meanwhile
/// waits, for it would leave the terminal like that.
class Silence {
  public:
    explicit Silence(int terminal) : m_terminal(terminal) {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) {
            sigaddset(&signals, signal);
        }
        pthread_sigmask(SIG_BLOCK, &signals, &m_signals);
        m_isSilent = tcgetattr(terminal, &m_mode) == 0;
        if (m_isSilent) {
            termios silent = m_mode;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHOE | ECHOK | ECHONL);
            m_isSilent = tcsetattr(terminal, TCSAFLUSH, &silent) == 0;
        }
    }
    ~Silence() {
        if (m_isSilent) {
            tcsetattr(m_terminal, TCSAFLUSH, &m_mode);
        }
        pthread_sigmask(SIG_SETMASK, &m_signals, nullptr);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    bool IsSilent() const noexcept { return m_isSilent; }

  private:
    int m_terminal;
    termios m_mode{};
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
