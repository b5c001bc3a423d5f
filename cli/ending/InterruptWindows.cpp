// Requests to end on Windows: a console control handler, which runs on a thread of its own.
#include "ending/Interrupt.h"

#include "ending/Failure.h"

#include <windows.h>

#include <atomic>
#include <cstring>

namespace quilletctl {

namespace {

std::atomic<bool> lives{false};
std::atomic<bool> held{false};
std::atomic<bool> requested{false};
std::atomic<const char*> noticeWhileHeld{nullptr};

void Tell(const char* text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

BOOL WINAPI Remember(DWORD control) {
    if (!held) {
        Tell(NOTHING_CHANGED);
        ExitProcess(static_cast<UINT>(ExitStatus::Interrupted));
    }
    requested = true;
    if (const char* notice = noticeWhileHeld) {
        Tell(notice);
    }
    if (control != CTRL_C_EVENT && control != CTRL_BREAK_EVENT) {
        // The console closes, or the session ends: the system ends the process when this returns.
        constexpr DWORD A_WHILE = 10;
        while (lives) {
            Sleep(A_WHILE);
        }
    }
    return TRUE;
}

} // namespace

struct Interrupt::Before {};

Interrupt::Interrupt() {
    held = false;
    requested = false;
    lives = true;
    SetConsoleCtrlHandler(Remember, TRUE);
}

Interrupt::~Interrupt() {
    SetConsoleCtrlHandler(Remember, FALSE);
    lives = false;
}

void Interrupt::Hold(const char* notice) noexcept {
    noticeWhileHeld = notice;
    held = true;
}

bool Interrupt::Requested() const noexcept {
    return requested;
}

} // namespace quilletctl
