// Clocks.
#include <windows.h>

#include <chrono>
#include <ctime>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// The counter's unit on current Windows.
using CounterUnit = std::chrono::duration<LONGLONG, std::ratio<1, 10000000>>;

template <class Unit>
LONGLONG SinceStart() {
    return std::chrono::duration_cast<Unit>(Clock::now().time_since_epoch()).count();
}

void Fill(LPSYSTEMTIME time, const timespec& now, const std::tm& parts) {
    time->wYear = static_cast<WORD>(parts.tm_year + 1900);
    time->wMonth = static_cast<WORD>(parts.tm_mon + 1);
    time->wDayOfWeek = static_cast<WORD>(parts.tm_wday);
    time->wDay = static_cast<WORD>(parts.tm_mday);
    time->wHour = static_cast<WORD>(parts.tm_hour);
    time->wMinute = static_cast<WORD>(parts.tm_min);
    time->wSecond = static_cast<WORD>(parts.tm_sec);
    time->wMilliseconds = static_cast<WORD>(now.tv_nsec / 1000000);
}

} // namespace

void WINAPI GetLocalTime(LPSYSTEMTIME time) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    // The calendar takes its time and a lock; most who ask again do so within the same second.
    thread_local std::time_t second = -1;
    thread_local std::tm parts{};
    if (now.tv_sec != second) {
        localtime_r(&now.tv_sec, &parts);
        second = now.tv_sec;
    }
    Fill(time, now, parts);
}

void WINAPI GetSystemTime(LPSYSTEMTIME time) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm parts{};
    gmtime_r(&now.tv_sec, &parts);
    Fill(time, now, parts);
}

BOOL WINAPI QueryPerformanceCounter(LARGE_INTEGER* count) {
    count->QuadPart = SinceStart<CounterUnit>();
    return TRUE;
}

BOOL WINAPI QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    frequency->QuadPart = CounterUnit::period::den;
    return TRUE;
}

ULONGLONG WINAPI GetTickCount64() noexcept {
    return static_cast<ULONGLONG>(SinceStart<std::chrono::milliseconds>());
}

DWORD WINAPI GetTickCount() noexcept {
    return static_cast<DWORD>(GetTickCount64());
}

void WINAPI Sleep(DWORD milliseconds) {
    if (milliseconds == 0) {
        std::this_thread::yield();
        return;
    }
    if (milliseconds == INFINITE) {
        for (;;) {
            std::this_thread::sleep_for(std::chrono::hours(24));
        }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
