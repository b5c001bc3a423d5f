// The console of Windows: wide arguments and a wide screen outside, UTF-8 inside. What is redirected is
// written byte for byte, without the run-time library's carriage returns.
#include "terminal/Console.h"

#include "terminal/OutputBuffer.h"
#include "texts/Text.h"

#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <iostream>
#include <string_view>

namespace quilletctl {

namespace {

/// A standard handle, to write to. A screen understands escape sequences while this lives.
class StandardHandle {
  public:
    explicit StandardHandle(DWORD standardHandle) : m_handle(GetStdHandle(standardHandle)) {
        m_isConsole = GetConsoleMode(m_handle, &m_mode) != 0;
        // Escape sequences are off by default; an old console that does not know them keeps its mode.
        m_understandsEscapes =
            m_isConsole && SetConsoleMode(m_handle, m_mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
    }
    ~StandardHandle() {
        if (m_isConsole) {
            SetConsoleMode(m_handle, m_mode);
        }
    }
    StandardHandle(const StandardHandle&) = delete;
    StandardHandle& operator=(const StandardHandle&) = delete;

    HANDLE Handle() const noexcept { return m_handle; }
    bool IsConsole() const noexcept { return m_isConsole; }
    bool UnderstandsEscapes() const noexcept { return m_understandsEscapes; }

    Written Write(std::string_view bytes) const {
        return m_isConsole ? WriteScreen(ToWide(bytes)) : WriteBytes(bytes);
    }

  private:
    Written WriteScreen(const std::wstring& whole) const {
        std::wstring_view text = whole;
        // An older console takes no more than 64 KB at once.
        constexpr std::size_t kMost = 8192;
        while (!text.empty()) {
            const auto count = static_cast<DWORD>(std::min(kMost, text.size()));
            DWORD written = 0;
            if (!WriteConsoleW(m_handle, text.data(), count, &written, nullptr) || written == 0) {
                return Written::Failed;
            }
            text.remove_prefix(written);
        }
        return Written::All;
    }
    Written WriteBytes(std::string_view bytes) const {
        while (!bytes.empty()) {
            DWORD written = 0;
            if (!WriteFile(m_handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
                const DWORD error = GetLastError();
                return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA ? Written::ReaderLeft
                                                                            : Written::Failed;
            }
            if (written == 0) {
                return Written::Failed;
            }
            bytes.remove_prefix(written);
        }
        return Written::All;
    }

    HANDLE m_handle;
    DWORD m_mode = 0;
    bool m_isConsole = false;
    bool m_understandsEscapes = false;
};

} // namespace

struct Console::State {
    StandardHandle outHandle{STD_OUTPUT_HANDLE};
    StandardHandle errHandle{STD_ERROR_HANDLE};
    OutputBuffer outBuffer{[this](std::string_view bytes) { return outHandle.Write(bytes); }};
    OutputBuffer errBuffer{[this](std::string_view bytes) { return errHandle.Write(bytes); }};
    std::ostream out{&outBuffer};
    std::ostream err{&errBuffer};
    Terminal terminal{out, err};
};

Console::Console(int, char**) : m_state(std::make_unique<State>()) {
    // What main receives went through the code page; the command line itself did not.
    int count = 0;
    if (wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 1; i < count; ++i) {
            m_arguments.push_back(ToUtf8(wide[i]));
        }
        LocalFree(wide);
    }

    m_state->err << std::unitbuf;
    Terminal& terminal = m_state->terminal;
    terminal.outIsTerminal = m_state->outHandle.IsConsole();
    terminal.errIsTerminal = m_state->errHandle.IsConsole();
    terminal.outColour = m_state->outHandle.UnderstandsEscapes();
    terminal.errColour = m_state->errHandle.UnderstandsEscapes();
    DWORD inputMode = 0;
    terminal.in = GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &inputMode) ? &std::cin : nullptr;
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (terminal.outIsTerminal && GetConsoleScreenBufferInfo(m_state->outHandle.Handle(), &screen) &&
        screen.srWindow.Right > screen.srWindow.Left) {
        terminal.width = static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
    }
}

Console::~Console() = default;

Terminal& Console::Screen() noexcept {
    return m_state->terminal;
}

bool HostHasWmi() noexcept {
    return true;
}

} // namespace quilletctl
