// CLumDebug: the trace log that every operation writes, one time-stamped line per event.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

/// Writes trace lines to a UTF-8 text file. One instance serves the process: LumTrace().
///
/// Any thread may trace. A line is written whole or not at all, and the logger never reports a failure to
/// whoever traces: a file that can not be opened leaves tracing off, a text that can not be formatted is left
/// empty.
///
/// A copy holds the same open file, and closes it only when the last copy goes; it shares the lock and the
/// line buffers of its source too, so that lines of both stay whole. Levels are each object's own after the
/// copy.
class CLumDebug {
  public:
    /// The values of the log level.
    enum LogLevel : unsigned {
        LevelOff = 0,
        LevelAll = 1,
        LevelErrors = 2,           ///< only what is written through Error
        LevelAllUnconditional = 3, ///< as 1, whatever the registry switch says
        LevelAllKept = 4,          ///< as 3, and kept as it is while an error is written
    };

    /// A logger that is off.
    CLumDebug();
    CLumDebug(const CLumDebug& other);
    CLumDebug& operator=(const CLumDebug& other);
    virtual ~CLumDebug();

    /// Opens the trace file and sets the level.
    /// @param processName starts every line; "RvSetup" and "Lum2Setp" choose other places for the file
    /// @param fileName 1 to 245 characters; a full path for "RvSetup", otherwise a name in the directory that
    /// the
    ///        registry value "InstalledDir" gives. If the file can not be opened there, the Temp directory is
    ///        tried.
    /// @param level a LogLevel; 0 switches tracing off
    /// @param append keeps what the file holds
    /// @param maxFileSize in bytes; once the file is that long nothing more is written. 0: no limit
    /// @return 0, or -1 when tracing was not switched on; the level is then as it was (0 if 0 was asked for)
    LONG Configure(const wchar_t* processName, const wchar_t* fileName, unsigned level, bool append,
                   unsigned maxFileSize) noexcept;

    /// One line, unless the level is 0 or 2. Formats have their Windows meaning on every host ("%s" is wide).
    /// The text is cut after 1023 characters. Texts that come from elsewhere belong in PrintText.
    void Print(const wchar_t* format, ...) noexcept;

    /// One line that is taken as it is: a '%' in it means nothing. Null writes an empty text.
    void PrintText(const wchar_t* text) noexcept {
        if (WritesPlainLines()) {
            PrintTextLine(text);
        }
    }

    /// One line "<source file> (<line>): <text>", at every level but 0.
    void Error(const wchar_t* sourceFile, unsigned line, const wchar_t* format, ...) noexcept;

    /// One line with the system's text for a code; 0 stands for GetLastError(). A code without a text writes
    /// nothing.
    void PrintLastError(unsigned errorCode) noexcept;

    unsigned GetCurrentLogLevel() const noexcept { return m_level; }
    /// Whether a Configure has opened a file.
    bool IsConfigured() const noexcept { return m_configured; }

  private:
    /// A word that one thread may read while another writes it, and that is copied as it stands. Its order
    /// with other memory does not matter: whatever depends on it is read again under the lock.
    template <class T>
    class Word {
      public:
        Word(T value) noexcept : m_value(value) {}
        Word(const Word& other) noexcept : Word(static_cast<T>(other)) {}
        Word& operator=(const Word& other) noexcept { return *this = static_cast<T>(other); }
        Word& operator=(T value) noexcept {
            m_value.store(value, std::memory_order_relaxed);
            return *this;
        }
        operator T() const noexcept { return m_value.load(std::memory_order_relaxed); }

      private:
        std::atomic<T> m_value;
    };

    class Guard;

    bool WritesPlainLines() const noexcept {
        const unsigned level = m_level;
        return level != LevelOff && level != LevelErrors;
    }
    LONG ConfigureLocked(const wchar_t* processName, const wchar_t* fileName, unsigned level, bool append,
                         unsigned maxFileSize);
    bool Open(const std::wstring& path, bool append);
    void PrintFormattedLine(const wchar_t* format, va_list arguments) noexcept;
    void PrintTextLine(const wchar_t* text) noexcept;
    bool MayWriteLine() const noexcept;
    std::size_t FormatHead() noexcept;
    void WriteLine(std::size_t length) noexcept;

    std::shared_ptr<const std::wstring> m_processName;
    std::shared_ptr<std::FILE> m_file;
    std::shared_ptr<Guard> m_lock; ///< the critical section, and the buffers that it guards
    Word<bool> m_configured = false;
    Word<unsigned> m_level = LevelOff;
    std::uint32_t m_reserved = 0; ///< carried along, never interpreted
    std::uint32_t m_maxFileSize = 0;
};

/// The one trace log of the process. It is there from the moment the library is loaded, or from the first use
/// if that comes earlier, until the library is unloaded. An object that traces in its destructor and may be
/// static should call this in its constructor, so that the log outlives it.
CLumDebug& LumTrace();
