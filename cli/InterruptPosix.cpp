// Ctrl-C on a POSIX host: signals.
#include "Interrupt.h"

#include <csignal>

namespace quilletctl {

namespace {

volatile std::sig_atomic_t requested = 0;

void Remember(int) {
    requested = 1;
}

} // namespace

struct Interrupt::Before {
    struct sigaction interrupt;
    struct sigaction terminate;
};

Interrupt::Interrupt() : m_before(std::make_unique<Before>()) {
    requested = 0;
    struct sigaction action = {};
    action.sa_handler = Remember;
    sigemptyset(&action.sa_mask);
    // Reads and writes go on where they were.
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, &m_before->interrupt);
    sigaction(SIGTERM, &action, &m_before->terminate);
}

Interrupt::~Interrupt() {
    sigaction(SIGINT, &m_before->interrupt, nullptr);
    sigaction(SIGTERM, &m_before->terminate, nullptr);
}

bool Interrupt::Requested() const noexcept {
    return requested != 0;
}

} // namespace quilletctl
