// Secrets on Windows.
#include "secrets/SecretInput.h"

#include "ending/Failure.h"
#include "texts/Text.h"

#include <windows.h>

#include <io.h>

#include <cerrno>
#include <system_error>

namespace quilletctl {

namespace {

/// A handle that is closed when it goes.
class Handle {
  public:
    explicit Handle(const wchar_t* name)
        : m_handle(CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                               nullptr, OPEN_EXISTING, 0, nullptr)) {}
    ~Handle() {
        if (IsOpen()) {
            CloseHandle(m_handle);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    bool IsOpen() const noexcept { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const noexcept { return m_handle; }

  private:
    HANDLE m_handle;
};

// What the handler needs, for there is one console and one prompt at a time.
HANDLE g_silentConsole = nullptr;
DWORD g_modeBefore = 0;

/// Gives the console back, and leaves the rest to the handler that was there before.
BOOL WINAPI EndPrompt(DWORD) {
    SetConsoleMode(g_silentConsole, g_modeBefore);
    return FALSE;
}

/// A console that echoes nothing while this lives. What ends the process meanwhile gives it back first.
class Silence {
  public:
    explicit Silence(HANDLE console) {
        if (!GetConsoleMode(console, &g_modeBefore)) {
            return;
        }
        g_silentConsole = console;
        SetConsoleCtrlHandler(EndPrompt, TRUE);
        m_isSilent = SetConsoleMode(console, (g_modeBefore & ~static_cast<DWORD>(ENABLE_ECHO_INPUT)) |
                                                 ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT);
        if (!m_isSilent) {
            SetConsoleCtrlHandler(EndPrompt, FALSE);
        }
    }
    ~Silence() {
        if (m_isSilent) {
            SetConsoleMode(g_silentConsole, g_modeBefore);
            SetConsoleCtrlHandler(EndPrompt, FALSE);
        }
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    bool IsSilent() const noexcept { return m_isSilent; }

  private:
    bool m_isSilent = false;
};

void Write(HANDLE console, const std::wstring& text) {
    DWORD written = 0;
    WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

} // namespace

bool ReadByte(int descriptor, char& byte) {
    const int count = _read(descriptor, &byte, 1);
    if (count < 0) {
        throw UsageError("descriptor " + std::to_string(descriptor) +
                         " cannot be read: " + std::generic_category().message(errno));
    }
    return count == 1;
}

bool AskTerminal(const std::string& prompt, std::wstring& secret) {
    const Handle input(L"CONIN$");
    const Handle output(L"CONOUT$");
    if (!input.IsOpen() || !output.IsOpen()) {
        return false;
    }
    const Silence silence(input.Get());
    if (!silence.IsSilent()) {
        return false;
    }
    Write(output.Get(), ToWide(prompt));
    bool isLine = false;
    bool isTooLong = false; // it is read to its end: the rest of a secret is no input for whoever asks next
    SecureZeroMemory(secret.data(), secret.size() * sizeof(wchar_t));
    secret.clear();
    secret.reserve(kLongestSecret);
    wchar_t character = L'\0';
    DWORD count = 0;
    while (!isLine && ReadConsoleW(input.Get(), &character, 1, &count, nullptr) && count == 1) {
        isLine = character == L'\n';
        if (!isLine && character != L'\r' && secret.size() == kLongestSecret) {
            isTooLong = true;
        } else if (!isLine && character != L'\r') {
            secret.push_back(character);
        }
    }
    const bool isInterrupted = !isLine && GetLastError() == ERROR_OPERATION_ABORTED;
    character = L'\0';
    Write(output.Get(), L"\r\n");
    if (isInterrupted) {
        // Ctrl-C: its handler, on another thread, ends the process.
        constexpr DWORD kLongEnough = 2000;
        Sleep(kLongEnough);
        throw Interruption();
    }
    if (!isLine) {
        throw UsageError("cancelled");
    }
    if (isTooLong) {
        throw UsageError("a secret has at most " + std::to_string(kLongestSecret) + " characters");
    }
    return true;
}

} // namespace quilletctl
