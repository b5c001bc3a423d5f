// CRITICAL_SECTION over a re-entrant mutex.
#include <windows.h>

#include <mutex>

namespace {

std::recursive_mutex* MutexOf(LPCRITICAL_SECTION section) {
    return static_cast<std::recursive_mutex*>(section->LockSemaphore);
}

} // namespace

void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION section) {
    section->LockSemaphore = new std::recursive_mutex;
}

BOOL WINAPI InitializeCriticalSectionAndSpinCount(LPCRITICAL_SECTION section, DWORD) {
    InitializeCriticalSection(section);
    return TRUE;
}

void WINAPI EnterCriticalSection(LPCRITICAL_SECTION section) {
    MutexOf(section)->lock();
}

BOOL WINAPI TryEnterCriticalSection(LPCRITICAL_SECTION section) {
    return MutexOf(section)->try_lock() ? TRUE : FALSE;
}

void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION section) {
    MutexOf(section)->unlock();
}

void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION section) {
    delete MutexOf(section);
    section->LockSemaphore = nullptr;
}
