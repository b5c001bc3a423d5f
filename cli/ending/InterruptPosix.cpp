// Requests to end on a POSIX host: signals.
#include "ending/Interrupt.h"

#include "ending/Failure.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>

namespace quilletctl {

namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

std::atomic<bool> g_held{false};
std::atomic<bool> g_requested{false};
std::atomic<const char*> g_noticeWhileHeld{nullptr};

void Tell(const char* text) {
    // A reader that takes nothing must not keep the process.
    pollfd reader{STDERR_FILENO, POLLOUT, 0};
    if (poll(&reader, 1, 0) == 1) {
        static_cast<void>(!write(STDERR_FILENO, text, std::strlen(text)));
    }
}

/// Calls nothing but what a handler of a signal may.
void Remember(int) {
    const int error = errno;
    if (!g_held) {
        Tell(kNothingChanged);
        _exit(static_cast<int>(ExitStatus::Interrupted));
    }
    g_requested = true;
    if (const char* notice = g_noticeWhileHeld) {
        Tell(notice);
    }
    errno = error;
}

} // namespace

struct Interrupt::Before {
    std::array<struct sigaction, kSignals.size()> actions;
};

Interrupt::Interrupt() : m_before(std::make_unique<Before>()) {
    g_held = false;
    g_requested = false;
    struct sigaction action = {};
    action.sa_handler = Remember;
    sigemptyset(&action.sa_mask);
    // Reads and writes go on where they were.
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], &action, &m_before->actions[i]);
        if (kSignals[i] == SIGHUP && m_before->actions[i].sa_handler == SIG_IGN) {
            sigaction(SIGHUP, &m_before->actions[i], nullptr); // started to outlive its terminal
        }
    }
}

Interrupt::~Interrupt() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], &m_before->actions[i], nullptr);
    }
}

void Interrupt::Hold(const char* notice) noexcept {
    g_noticeWhileHeld = notice;
    g_held = true;
}

bool Interrupt::Requested() const noexcept {
    return g_requested;
}

} // namespace quilletctl
