// The console of Windows: wide arguments and a wide screen outside, UTF-8 inside. What is redirected is
// written byte for byte, without the run-time library's carriage returns.
#include "Console.h"

#include "Text.h"

#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <iostream>
#include <streambuf>
#include <string_view>

namespace quilletctl {

namespace {

/// A stream buffer over a standard handle.
class HandleBuffer : public std::streambuf {
  public:
    explicit HandleBuffer(DWORD standardHandle) : m_handle(GetStdHandle(standardHandle)) {
        m_isConsole = GetConsoleMode(m_handle, &m_mode) != 0;
        // Escape sequences are off by default; an old console that does not know them keeps its mode.
        m_understandsEscapes =
            m_isConsole && SetConsoleMode(m_handle, m_mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
    }
    ~HandleBuffer() override {
        HandleBuffer::sync();
        if (m_isConsole) {
            SetConsoleMode(m_handle, m_mode);
        }
    }
    HandleBuffer(const HandleBuffer&) = delete;
    HandleBuffer& operator=(const HandleBuffer&) = delete;

    HANDLE Handle() const noexcept { return m_handle; }
    bool IsConsole() const noexcept { return m_isConsole; }
    bool UnderstandsEscapes() const noexcept { return m_understandsEscapes; }

  protected:
    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            m_pending.push_back(traits_type::to_char_type(character));
        }
        return traits_type::not_eof(character);
    }
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        m_pending.append(bytes, static_cast<std::size_t>(count));
        return count;
    }
    int sync() override {
        const bool written = m_isConsole ? WriteScreen() : WriteBytes();
        m_pending.clear();
        return written ? 0 : -1;
    }

  private:
    bool WriteScreen() const {
        const std::wstring text = ToWide(m_pending);
        // An older console takes no more than 64 KB at once.
        constexpr std::size_t MOST = 8192;
        for (std::size_t at = 0; at < text.size();) {
            const auto count = static_cast<DWORD>(std::min(MOST, text.size() - at));
            DWORD written = 0;
            if (!WriteConsoleW(m_handle, text.data() + at, count, &written, nullptr) || written == 0) {
                return false;
            }
            at += written;
        }
        return true;
    }
    bool WriteBytes() const {
        constexpr std::size_t MOST = 1U << 20;
        for (std::size_t at = 0; at < m_pending.size();) {
            const auto count = static_cast<DWORD>(std::min(MOST, m_pending.size() - at));
            DWORD written = 0;
            if (!WriteFile(m_handle, m_pending.data() + at, count, &written, nullptr) || written == 0) {
                return false;
            }
            at += written;
        }
        return true;
    }

    HANDLE m_handle;
    DWORD m_mode = 0;
    bool m_isConsole = false;
    bool m_understandsEscapes = false;
    std::string m_pending;
};

} // namespace

struct Console::State {
    HandleBuffer outBuffer{STD_OUTPUT_HANDLE};
    HandleBuffer errBuffer{STD_ERROR_HANDLE};
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
    terminal.outIsTerminal = m_state->outBuffer.IsConsole();
    terminal.errIsTerminal = m_state->errBuffer.IsConsole();
    terminal.outColour = m_state->outBuffer.UnderstandsEscapes();
    terminal.errColour = m_state->errBuffer.UnderstandsEscapes();
    DWORD inputMode = 0;
    terminal.in = GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &inputMode) ? &std::cin : nullptr;
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (terminal.outIsTerminal && GetConsoleScreenBufferInfo(m_state->outBuffer.Handle(), &screen) &&
        screen.srWindow.Right > screen.srWindow.Left) {
        terminal.width = static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
    }
}

Console::~Console() {
    m_state->out.flush();
}

Terminal& Console::Screen() noexcept {
    return m_state->terminal;
}

bool HostHasWmi() noexcept {
    return true;
}

} // namespace quilletctl
