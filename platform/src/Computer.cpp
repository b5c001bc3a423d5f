// The computer, the process and its module.
#include "HostSettings.h"
#include "Text.h"
#include "Token.h"

#include <windows.h>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <string>

using quillet::platform::HostSettings;
using quillet::platform::WithSettings;

namespace {

std::wstring HostName() {
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof name - 1) != 0) {
        name[0] = '\0';
    }
    std::wstring wide = quillet::platform::WideFromUtf8(name);
    wide.resize(std::min(wide.find(L'.'), wide.size()));
    if (wide.empty()) {
        wide = L"LOCALHOST";
    }
    if (wide.size() > MAX_COMPUTERNAME_LENGTH) {
        wide.resize(MAX_COMPUTERNAME_LENGTH);
    }
    for (wchar_t& character : wide) {
        if (character >= L'a' && character <= L'z') {
            character -= L'a' - L'A';
        }
    }
    return wide;
}

// Each of them is a system call, and every trace line and every call of the simulator asks. 0: not asked yet.
std::atomic<DWORD> g_ownProcess{0};
thread_local DWORD g_ownThread = 0;

/// A forked child is another process, and its one thread another thread.
[[maybe_unused]] const int kForgetInChild = pthread_atfork(nullptr, nullptr, [] {
    g_ownProcess.store(0, std::memory_order_relaxed);
    g_ownThread = 0;
});

std::wstring ProgramPath() {
    std::string path(PATH_MAX, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return quillet::platform::WideFromUtf8(path);
}

} // namespace

HANDLE WINAPI GetCurrentProcess() noexcept {
    return INVALID_HANDLE_VALUE;
}

DWORD WINAPI GetCurrentProcessId() noexcept {
    DWORD id = g_ownProcess.load(std::memory_order_relaxed);
    if (id == 0) {
        id = static_cast<DWORD>(getpid());
        g_ownProcess.store(id, std::memory_order_relaxed);
    }
    return id;
}

DWORD WINAPI GetCurrentThreadId() noexcept {
    if (g_ownThread == 0) {
        g_ownThread = static_cast<DWORD>(syscall(SYS_gettid));
    }
    return g_ownThread;
}

BOOL WINAPI CloseHandle(HANDLE handle) noexcept {
    if (handle == GetCurrentProcess() || quillet::platform::CloseToken(handle)) {
        return TRUE;
    }
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size) {
    if (module) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    std::wstring path = WithSettings([](const HostSettings& settings) { return settings.moduleFileName; });
    if (path.empty()) {
        path = ProgramPath();
    }
    if (!buffer || size == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const std::size_t length = std::min<std::size_t>(path.size(), size - 1);
    std::copy_n(path.begin(), length, buffer);
    buffer[length] = L'\0';
    if (length < path.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;
    }
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(length);
}

BOOL WINAPI GetComputerNameW(LPWSTR buffer, LPDWORD size) {
    if (WithSettings([](const HostSettings& settings) { return settings.failComputerName; })) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return FALSE;
    }
    if (!size) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::wstring name = HostName();
    if (!buffer || *size <= name.size()) {
        *size = static_cast<DWORD>(name.size() + 1);
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    std::copy(name.begin(), name.end(), buffer);
    buffer[name.size()] = L'\0';
    *size = static_cast<DWORD>(name.size());
    return TRUE;
}

void WINAPI OutputDebugStringW(LPCWSTR text) {
    if (!text) {
        return;
    }
    // Called outside the settings' lock, so that the receiver may call anything.
    const auto receiver = WithSettings([](const HostSettings& settings) { return settings.debugOutput; });
    if (receiver) {
        receiver(text);
    }
}

BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW information) {
    const DWORD size = information ? information->dwOSVersionInfoSize : 0;
    const HostSettings settings = WithSettings([](const HostSettings& current) { return current; });
    const bool extended = size == sizeof(OSVERSIONINFOEXW);
    if ((!extended && size != sizeof(OSVERSIONINFOW)) || (extended && settings.failExtendedVersion)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (extended) {
        auto* const full = reinterpret_cast<LPOSVERSIONINFOEXW>(information);
        *full = {};
        full->dwOSVersionInfoSize = size;
        full->wProductType = VER_NT_WORKSTATION;
    } else {
        *information = {};
        information->dwOSVersionInfoSize = size;
    }
    information->dwMajorVersion = settings.osMajor;
    information->dwMinorVersion = settings.osMinor;
    information->dwBuildNumber = 7601;
    information->dwPlatformId = settings.osPlatform;
    return TRUE;
}
