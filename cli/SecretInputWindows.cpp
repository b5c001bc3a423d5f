// Secrets on Windows.
#include "SecretInput.h"

#include "Text.h"

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

/// A console that echoes nothing while this lives.
class Silence {
  public:
    explicit Silence(HANDLE console) : m_console(console) {
        // Ctrl+C ends the line instead of the process, which would leave the console like that.
        SetConsoleCtrlHandler(nullptr, TRUE);
        m_isSilent = GetConsoleMode(console, &m_mode) &&
                     SetConsoleMode(console, (m_mode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT)) |
                                                 ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT);
    }
    ~Silence() {
        if (m_isSilent) {
            SetConsoleMode(m_console, m_mode);
        }
        SetConsoleCtrlHandler(nullptr, FALSE);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    bool IsSilent() const noexcept { return m_isSilent; }

  private:
    HANDLE m_console;
    DWORD m_mode = 0;
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
    secret.reserve(LONGEST_SECRET);
    wchar_t character = L'\0';
    DWORD count = 0;
    while (!isLine && ReadConsoleW(input.Get(), &character, 1, &count, nullptr) && count == 1) {
        isLine = character == L'\n';
        if (!isLine && character != L'\r' && secret.size() == LONGEST_SECRET) {
            isTooLong = true;
        } else if (!isLine && character != L'\r') {
            secret.push_back(character);
        }
    }
    character = L'\0';
    Write(output.Get(), L"\r\n");
    if (!isLine) {
        throw UsageError("cancelled");
    }
    if (isTooLong) {
        throw UsageError("a secret has at most " + std::to_string(LONGEST_SECRET) + " characters");
    }
    return true;
}

} // namespace quilletctl
