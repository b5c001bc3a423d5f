// CRITICAL_SECTION over a re-entrant mutex, SRWLOCK over the system's lock for readers and writers.
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

void WINAPI AcquireSRWLockShared(PSRWLOCK lock) {
    pthread_rwlock_rdlock(&lock->Lock);
}

void WINAPI ReleaseSRWLockShared(PSRWLOCK lock) {
    pthread_rwlock_unlock(&lock->Lock);
}

void WINAPI AcquireSRWLockExclusive(PSRWLOCK lock) {
    pthread_rwlock_wrlock(&lock->Lock);
}

void WINAPI ReleaseSRWLockExclusive(PSRWLOCK lock) {
    pthread_rwlock_unlock(&lock->Lock);
}
