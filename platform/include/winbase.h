// Process, module, error, time, environment and lock functions of the Win32 base API.
#pragma once

#include <windef.h>
#include <winnt.h>

#include <pthread.h>

#pragma GCC visibility push(default)

// --- Last error and memory -----------------------------------------------------------------------------
/// The calling thread's last error.
DWORD WINAPI GetLastError() noexcept;
void WINAPI SetLastError(DWORD error) noexcept;

#define LMEM_FIXED 0x0000u
#define LMEM_ZEROINIT 0x0040u
#define LPTR (LMEM_FIXED | LMEM_ZEROINIT)
HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T bytes) noexcept;
/// Frees memory of LocalAlloc or of FormatMessageW; always null, as there is no handle that could fail.
HLOCAL WINAPI LocalFree(HLOCAL memory) noexcept;

#define FORMAT_MESSAGE_ALLOCATE_BUFFER 0x00000100u
#define FORMAT_MESSAGE_IGNORE_INSERTS 0x00000200u
#define FORMAT_MESSAGE_FROM_STRING 0x00000400u
#define FORMAT_MESSAGE_FROM_HMODULE 0x00000800u
#define FORMAT_MESSAGE_FROM_SYSTEM 0x00001000u
#define FORMAT_MESSAGE_ARGUMENT_ARRAY 0x00002000u
#define FORMAT_MESSAGE_MAX_WIDTH_MASK 0x000000ffu
/// The text of a Win32, COM or WMI code, ending in "\r\n". Only FORMAT_MESSAGE_FROM_SYSTEM is served;
/// inserts and the language are ignored (texts are English and take none).
/// @return characters without the terminator; 0 with ERROR_MR_MID_NOT_FOUND for a code without text, with
///         ERROR_INSUFFICIENT_BUFFER for a short buffer, with ERROR_INVALID_PARAMETER for other sources.
DWORD WINAPI FormatMessageW(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId, LPWSTR buffer,
                            DWORD size, void* arguments);

// --- Process, module, computer -------------------------------------------------------------------------
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))
HANDLE WINAPI GetCurrentProcess() noexcept;
DWORD WINAPI GetCurrentProcessId() noexcept;
DWORD WINAPI GetCurrentThreadId() noexcept;
BOOL WINAPI CloseHandle(HANDLE handle) noexcept;
/// The host program's path for a null module; other modules are not known (ERROR_MOD_NOT_FOUND). A short
/// buffer receives a cut, terminated text: the result is then its size and the error
/// ERROR_INSUFFICIENT_BUFFER.
DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size);

#define MAX_COMPUTERNAME_LENGTH 15
/// The host name in its Windows form: first label, upper case, at most 15 characters.
BOOL WINAPI GetComputerNameW(LPWSTR buffer, LPDWORD size);
void WINAPI OutputDebugStringW(LPCWSTR text);
BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW information);

BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token);
/// Only TokenPrivileges is known.
BOOL WINAPI GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS which, LPVOID buffer, DWORD size,
                                PDWORD needed);
BOOL WINAPI AdjustTokenPrivileges(HANDLE token, BOOL disableAll, PTOKEN_PRIVILEGES newState, DWORD size,
                                  PTOKEN_PRIVILEGES previousState, PDWORD needed);

// --- Environment ---------------------------------------------------------------------------------------
/// Names are compared without regard to case. "TEMP" and "TMP" always have a value, as they have on
/// Windows: where the host sets neither, it is that of TMPDIR, then "/tmp".
DWORD WINAPI GetEnvironmentVariableW(LPCWSTR name, LPWSTR buffer, DWORD size);
/// A null value removes the variable.
BOOL WINAPI SetEnvironmentVariableW(LPCWSTR name, LPCWSTR value);

// --- Time ----------------------------------------------------------------------------------------------
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
using PSYSTEMTIME = SYSTEMTIME*;
using LPSYSTEMTIME = SYSTEMTIME*;
void WINAPI GetLocalTime(LPSYSTEMTIME time);
void WINAPI GetSystemTime(LPSYSTEMTIME time);
/// Monotonic, in units of 100 ns.
BOOL WINAPI QueryPerformanceCounter(LARGE_INTEGER* count);
BOOL WINAPI QueryPerformanceFrequency(LARGE_INTEGER* frequency);
DWORD WINAPI GetTickCount() noexcept;
ULONGLONG WINAPI GetTickCount64() noexcept;
#define INFINITE 0xffffffffu
void WINAPI Sleep(DWORD milliseconds);

// --- Locks ---------------------------------------------------------------------------------------------
/// Re-entrant. The object only points at its lock, so it must not be copied while in use.
struct CRITICAL_SECTION {
    void* LockSemaphore;
};
using PCRITICAL_SECTION = CRITICAL_SECTION*;
using LPCRITICAL_SECTION = CRITICAL_SECTION*;
void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION section);
BOOL WINAPI InitializeCriticalSectionAndSpinCount(LPCRITICAL_SECTION section, DWORD spinCount);
void WINAPI EnterCriticalSection(LPCRITICAL_SECTION section);
BOOL WINAPI TryEnterCriticalSection(LPCRITICAL_SECTION section);
void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION section);
void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION section);

/// A lock for many readers or one writer, which nobody has to delete.
struct SRWLOCK {
    pthread_rwlock_t Lock;
};
using PSRWLOCK = SRWLOCK*;
#define SRWLOCK_INIT                                                                                         \
    { PTHREAD_RWLOCK_INITIALIZER }
void WINAPI AcquireSRWLockShared(PSRWLOCK lock);
void WINAPI ReleaseSRWLockShared(PSRWLOCK lock);
void WINAPI AcquireSRWLockExclusive(PSRWLOCK lock);
void WINAPI ReleaseSRWLockExclusive(PSRWLOCK lock);

inline LONG InterlockedIncrement(volatile LONG* value) noexcept {
    return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedDecrement(volatile LONG* value) noexcept {
    return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedExchange(volatile LONG* target, LONG value) noexcept {
    return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedCompareExchange(volatile LONG* target, LONG value, LONG comparand) noexcept {
    __atomic_compare_exchange_n(target, &comparand, value, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
    return comparand;
}

#pragma GCC visibility pop

#define ZeroMemory(destination, length) (static_cast<void>(__builtin_memset((destination), 0, (length))))
#define SecureZeroMemory(destination, length) (QuilletSecureZero((destination), (length)))
/// Clears memory in a way that the optimiser must keep.
inline void* QuilletSecureZero(void* memory, SIZE_T length) noexcept {
    __builtin_memset(memory, 0, length);
    __asm__ volatile("" : : "r"(memory) : "memory");
    return memory;
}
#define CopyMemory(destination, source, length)                                                              \
    (static_cast<void>(__builtin_memcpy((destination), (source), (length))))
