// Ctrl-C on Windows: a console control handler, which runs on a thread of its own.
#include "Interrupt.h"

#include <windows.h>

#include <atomic>

namespace quilletctl {

namespace {

std::atomic<bool> requested{false};

BOOL WINAPI Remember(DWORD control) {
    if (control != CTRL_C_EVENT && control != CTRL_BREAK_EVENT) {
        return FALSE;
    }
    requested = true;
    return TRUE;
}

} // namespace

struct Interrupt::Before {};

Interrupt::Interrupt() {
    requested = false;
    SetConsoleCtrlHandler(Remember, TRUE);
}

Interrupt::~Interrupt() {
    SetConsoleCtrlHandler(Remember, FALSE);
}

bool Interrupt::Requested() const noexcept {
    return requested;
}

} // namespace quilletctl
