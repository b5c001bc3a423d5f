// The console of a POSIX host, where texts are UTF-8 already.
#include "terminal/Console.h"

#include "terminal/OutputBuffer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>

namespace quilletctl {

namespace {

/// Puts something into the place of each standard stream that is closed. Otherwise a file that is opened
/// later, such as the trace, would come to stand there and receive the answer. It is opened the wrong way
/// round, so that reading and writing fail as if nothing stood there.
void OccupyClosedStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            // The lowest free number is this one, for those below it are taken by now. Without such a device
            // there is nothing better.
            [[maybe_unused]] const int taken =
                open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

Written WriteTo(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            pollfd ready{descriptor, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return errno == EPIPE ? Written::ReaderLeft : Written::Failed;
        }
    }
    return Written::All;
}

} // namespace

struct Console::State {
    OutputBuffer outBuffer{[](std::string_view bytes) { return WriteTo(STDOUT_FILENO, bytes); }};
    OutputBuffer errBuffer{[](std::string_view bytes) { return WriteTo(STDERR_FILENO, bytes); }};
    std::ostream out{&outBuffer};
    std::ostream err{&errBuffer};
    Terminal terminal{out, err};
};

Console::Console(int argumentCount, char** arguments) : m_state(std::make_unique<State>()) {
    for (int i = 1; i < argumentCount; ++i) {
        m_arguments.emplace_back(arguments[i]);
    }
    OccupyClosedStreams();
    m_state->err << std::unitbuf;
    // A reader that leaves early must not end the process before it has closed its session and saved the
    // simulated machine.
    std::signal(SIGPIPE, SIG_IGN);

    Terminal& terminal = m_state->terminal;
    terminal.outIsTerminal = isatty(STDOUT_FILENO) == 1;
    terminal.errIsTerminal = isatty(STDERR_FILENO) == 1;
    terminal.outColour = terminal.outIsTerminal;
    terminal.errColour = terminal.errIsTerminal;
    terminal.in = isatty(STDIN_FILENO) == 1 ? &std::cin : nullptr;
    winsize size{};
    if (terminal.outIsTerminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        terminal.width = size.ws_col;
    }
}

Console::~Console() = default;

Terminal& Console::Screen() noexcept {
    return m_state->terminal;
}

bool HostHasWmi() noexcept {
    return false;
}

} // namespace quilletctl
