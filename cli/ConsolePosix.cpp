// The console of a POSIX host, where texts are UTF-8 already.
#include "Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

namespace quilletctl {

struct Console::State {
    Terminal terminal{std::cout, std::cerr};
};

Console::Console(int argumentCount, char** arguments) : m_state(std::make_unique<State>()) {
    for (int i = 1; i < argumentCount; ++i) {
        m_arguments.emplace_back(arguments[i]);
    }
    std::ios::sync_with_stdio(false);
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

Console::~Console() {
    std::cout.flush();
    std::cerr.flush();
}

Terminal& Console::Screen() noexcept {
    return m_state->terminal;
}

bool HostHasWmi() noexcept {
    return false;
}

} // namespace quilletctl
