// Requests to end on Windows: a console control handler, which runs on a thread of its own.
#include "ending/Interrupt.h"

#include "ending/Failure.h"

#include <windows.h>

#include <atomic>
#include <cstring>

namespace quilletctl {

namespace {

std::atomic<bool> g_lives{false};
std::atomic<bool> g_held{false};
std::atomic<bool> g_requested{false};
std::atomic<const char*> g_noticeWhileHeld{nullptr};

void Tell(const char* text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

BOOL WINAPI Remember(DWORD control) {
    if (!g_held) {
        Tell(kNothingChanged);
        ExitProcess(static_cast<UINT>(ExitStatus::Interrupted));
    }
    g_requested = true;
    if (const char* notice = g_noticeWhileHeld) {
        Tell(notice);
    }
    if (control != CTRL_C_EVENT && control != CTRL_BREAK_EVENT) {
        // The console closes, or the session ends: the system ends the process when this returns.
        constexpr DWORD kAWhile = 10;
        while (g_lives) {
            Sleep(kAWhile);
        }
    }
    return TRUE;
}

} // namespace

struct Interrupt::Before {};

Interrupt::Interrupt() {
    g_held = false;
    g_requested = false;
    g_lives = true;
    SetConsoleCtrlHandler(Remember, TRUE);
}

Interrupt::~Interrupt() {
    SetConsoleCtrlHandler(Remember, FALSE);
    g_lives = false;
}

void Interrupt::Hold(const char* notice) noexcept {
    g_noticeWhileHeld = notice;
    g_held = true;
}

bool Interrupt::Requested() const noexcept {
    return g_requested;
}

} // namespace quilletctl
