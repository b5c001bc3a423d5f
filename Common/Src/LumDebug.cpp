// The trace log: where its file is, who may write a line, and how a line looks.
#include "LumDebug.h"

#include "LogFile.h"
#include "LumRegistry.h"
#include "LumText.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t kLineCapacity = 1152;
constexpr std::size_t kErrorTextCapacity = 1024;
constexpr std::size_t kMaxTextLength = 1023;
/// Leaves room for the line feed and the terminator.
constexpr std::size_t kLineFeedLimit = kLineCapacity - 2;
constexpr std::size_t kMaxFileNameLength = 245;
constexpr std::size_t kMaxPathLength = 260;
constexpr std::size_t kMaxInstalledDirLength = 512;
/// No line is longer in UTF-8, so that each one leaves the stream in a single write.
constexpr std::size_t kLineBytes = kLineCapacity * kMaxUtf8PerCharacter;

constexpr wchar_t kLum2Key[] = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2";
constexpr wchar_t kSetupProcess[] = L"RvSetup";
constexpr wchar_t kLum2SetupProcess[] = L"Lum2Setp";

bool SwitchedOffByAdministrator() {
    return LumRegistryKey(kLum2Key).ReadDword(L"TRACE") == DWORD{0};
}

/// The directory of the environment variable "Temp"; hosts that do not know it by that name have one of their
/// own. The system's environment is asked, not the C library's copy of it, which misses what the client has
/// set.
std::wstring TempDirectory() {
    std::wstring directory(MAX_PATH, L'\0');
    for (;;) {
        const auto capacity = static_cast<DWORD>(directory.size());
        const DWORD length = GetEnvironmentVariableW(L"Temp", directory.data(), capacity);
        directory.resize(length);
        if (length < capacity) {
            return directory;
        }
    }
}

/// The directory for the trace file. A key that opens but names no directory gives the empty one, so that the
/// file is looked for at the root; setup programs run before the key is complete and use the Temp directory.
std::wstring LogDirectory(const wchar_t* processName) {
    const LumRegistryKey key(kLum2Key);
    if (!key.IsOpen() || EqualsIgnoringCase(processName, kLum2SetupProcess)) {
        return TempDirectory();
    }
    return key.ReadString(L"InstalledDir", kMaxInstalledDirLength).value_or(std::wstring());
}

std::wstring LogPath(const wchar_t* processName, const wchar_t* fileName) {
    if (EqualsIgnoringCase(processName, kSetupProcess)) {
        return fileName;
    }
    std::wstring path = LogDirectory(processName);
    OutputDebugStringW((L"FILE PATH 1 IS " + path).c_str());
    path += L'\\';
    OutputDebugStringW((L"FILE PATH 2 IS " + path).c_str());
    path += fileName;
    OutputDebugStringW((L"FILE PATH 3 IS " + path).c_str());
    return path;
}

/// The last part of a path with its separator. A slash separates as well: it does on both hosts.
std::wstring LastPart(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    return separator == std::wstring::npos ? L'\\' + path : path.substr(separator);
}

/// Formats into `capacity` characters, terminator included, and returns the length. What does not fit is cut;
/// what can not be formatted leaves what was written before.
std::size_t FormatBounded(wchar_t* target, std::size_t capacity, const wchar_t* format,
                          va_list arguments) noexcept {
    target[0] = L'\0';
    if (format != nullptr) {
        _vsnwprintf_s(target, capacity, _TRUNCATE, format, arguments);
        target[capacity - 1] = L'\0';
    }
    return std::wcslen(target);
}

constexpr wchar_t kLowerDigits[] = L"0123456789abcdef";
constexpr wchar_t kUpperDigits[] = L"0123456789ABCDEF";

/// Puts a line's head together; what does not fit is cut.
class HeadText {
  public:
    HeadText(wchar_t* target, std::size_t room) noexcept : m_target(target), m_room(room) {}

    HeadText& Text(std::wstring_view text) noexcept {
        const std::size_t kept = std::min(text.size(), m_room - m_length);
        std::copy_n(text.begin(), kept, m_target + m_length);
        m_length += kept;
        return *this;
    }
    /// With this many digits: zeros in front.
    template <std::size_t Count>
    HeadText& Decimal(unsigned value) noexcept {
        wchar_t digits[Count];
        for (std::size_t place = Count; place-- > 0; value /= 10) {
            digits[place] = kLowerDigits[value % 10];
        }
        return Text(std::wstring_view(digits, Count));
    }
    HeadText& Hexadecimal(std::uint64_t value, const wchar_t* symbols) noexcept {
        wchar_t digits[sizeof value * 2];
        std::size_t first = std::size(digits);
        do {
            digits[--first] = symbols[value & 0xF];
            value >>= 4;
        } while (value != 0);
        return Text(std::wstring_view(digits + first, std::size(digits) - first));
    }
    std::size_t Length() const noexcept { return m_length; }

  private:
    wchar_t* m_target;
    std::size_t m_room;
    std::size_t m_length = 0;
};

} // namespace

/// The critical section and the buffers that are used inside it.
class CLumDebug::Guard {
  public:
    Guard() noexcept { InitializeCriticalSection(&m_section); }
    ~Guard() { DeleteCriticalSection(&m_section); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    class Lock {
      public:
        explicit Lock(Guard& guard) noexcept : m_guard(guard) { EnterCriticalSection(&m_guard.m_section); }
        ~Lock() { LeaveCriticalSection(&m_guard.m_section); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        Guard& m_guard;
    };

    wchar_t line[kLineCapacity]{};
    wchar_t errorText[kErrorTextCapacity]{};
    char bytes[kLineBytes]{};

  private:
    CRITICAL_SECTION m_section{};
};

CLumDebug::CLumDebug() : m_lock(std::make_shared<Guard>()) {}

CLumDebug::CLumDebug(const CLumDebug& other) {
    const Guard::Lock lock(*other.m_lock);
    m_processName = other.m_processName;
    m_file = other.m_file;
    m_lock = other.m_lock;
    m_configured = other.m_configured;
    m_level = other.m_level;
    m_reserved = other.m_reserved;
    m_maxFileSize = other.m_maxFileSize;
}

CLumDebug& CLumDebug::operator=(const CLumDebug& other) {
    if (this != &other) {
        CLumDebug copy(other);
        // What this object held goes with the copy, after its own lock is left.
        const std::shared_ptr<Guard> own = m_lock;
        const Guard::Lock lock(*own);
        m_processName.swap(copy.m_processName);
        m_file.swap(copy.m_file);
        m_lock.swap(copy.m_lock);
        m_configured = copy.m_configured;
        m_level = copy.m_level;
        m_reserved = copy.m_reserved;
        m_maxFileSize = copy.m_maxFileSize;
    }
    return *this;
}

CLumDebug::~CLumDebug() = default;

LONG CLumDebug::Configure(const wchar_t* processName, const wchar_t* fileName, unsigned level, bool append,
                          unsigned maxFileSize) noexcept {
    const Guard::Lock lock(*m_lock);
    try {
        return ConfigureLocked(processName == nullptr ? L"" : processName, fileName, level, append,
                               maxFileSize);
    } catch (...) {
        // Only memory can be missing here. Tracing is never the reason for a client to fail.
        return -1;
    }
}

LONG CLumDebug::ConfigureLocked(const wchar_t* processName, const wchar_t* fileName, unsigned level,
                                bool append, unsigned maxFileSize) {
    if (level == LevelOff) {
        m_level = LevelOff;
        return -1;
    }
    if ((level == LevelAll || level == LevelErrors) && SwitchedOffByAdministrator()) {
        return -1;
    }
    const std::size_t nameLength = fileName == nullptr ? 0 : std::wcslen(fileName);
    if (nameLength == 0 || nameLength > kMaxFileNameLength) {
        return -1;
    }
    m_processName = std::make_shared<const std::wstring>(processName);
    m_maxFileSize = maxFileSize;

    const std::wstring path = LogPath(processName, fileName);
    if (!Open(path, append) && !Open(TempDirectory() + LastPart(path), append)) {
        return -1;
    }
    m_configured = true;
    m_level = level;
    return 0;
}

bool CLumDebug::Open(const std::wstring& path, bool append) {
    if (path.size() > kMaxPathLength) {
        return false;
    }
    std::FILE* stream = OpenLogFile(path, append);
    if (stream == nullptr) {
        return false;
    }
    // One write for each flushed line, so that the lines of processes that append to one file stay whole.
    std::setvbuf(stream, nullptr, _IOFBF, kLineBytes);
    m_file.reset(stream, [](std::FILE* open) { std::fclose(open); });
    return true;
}

void CLumDebug::Print(const wchar_t* format, ...) noexcept {
    if (!WritesPlainLines()) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    PrintFormattedLine(format, arguments);
    va_end(arguments);
}

void CLumDebug::PrintFormattedLine(const wchar_t* format, va_list arguments) noexcept {
    const Guard::Lock lock(*m_lock);
    if (!MayWriteLine()) {
        return;
    }
    const std::size_t head = FormatHead();
    const std::size_t room = std::min(kMaxTextLength, kLineFeedLimit - head);
    WriteLine(head + FormatBounded(m_lock->line + head, room + 1, format, arguments));
}

void CLumDebug::PrintTextLine(const wchar_t* text) noexcept {
    const Guard::Lock lock(*m_lock);
    if (!MayWriteLine()) {
        return;
    }
    const std::size_t head = FormatHead();
    const std::size_t room = std::min(kMaxTextLength, kLineFeedLimit - head);
    const std::size_t length = text == nullptr ? 0 : wcsnlen(text, room);
    if (length != 0) {
        std::wmemcpy(m_lock->line + head, text, length);
    }
    WriteLine(head + length);
}

void CLumDebug::Error(const wchar_t* sourceFile, unsigned line, const wchar_t* format, ...) noexcept {
    if (m_level == LevelOff) {
        return;
    }
    const Guard::Lock lock(*m_lock);
    const unsigned level = m_level;
    if (level == LevelOff || m_file == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    FormatBounded(m_lock->errorText, kErrorTextCapacity, format, arguments);
    va_end(arguments);
    if (level != LevelAllKept) {
        m_level = LevelAll;
    }
    Print(L"%s (%d): %s", sourceFile == nullptr ? L"" : sourceFile, line, m_lock->errorText);
    m_level = level;
}

void CLumDebug::PrintLastError(unsigned errorCode) noexcept {
    // Asked for before anything else can change it.
    const DWORD code = errorCode != 0 ? errorCode : GetLastError();
    if (!WritesPlainLines()) {
        return;
    }
    wchar_t* text = nullptr;
    // The inserts of the text are not ours to fill in: it is traced as it is.
    FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<LPWSTR>(&text), 0, nullptr);
    if (text != nullptr) {
        PrintText(text);
        LocalFree(text);
    }
}

/// Asked under the lock. The level is tested again: while this thread waited for the lock, another may have
/// had it raised for the one line of an Error.
bool CLumDebug::MayWriteLine() const noexcept {
    return WritesPlainLines() && m_configured && m_file != nullptr &&
           (m_maxFileSize == 0 || LogFileLength(m_file.get()) < m_maxFileSize);
}

/// Every line pays for its head, so that is put together without a format:
/// "%s\tPID:%x\tTID:%x\t%02.2d:%02.2d:%02.2d.%03.3d\t(%I64X)\t".
std::size_t CLumDebug::FormatHead() noexcept {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    HeadText head(m_lock->line, kLineFeedLimit);
    head.Text(*m_processName)
        .Text(L"\tPID:")
        .Hexadecimal(GetCurrentProcessId(), kLowerDigits)
        .Text(L"\tTID:")
        .Hexadecimal(GetCurrentThreadId(), kLowerDigits)
        .Text(L"\t")
        .Decimal<2>(now.wHour)
        .Text(L":")
        .Decimal<2>(now.wMinute)
        .Text(L":")
        .Decimal<2>(now.wSecond)
        .Text(L".")
        .Decimal<3>(now.wMilliseconds)
        .Text(L"\t(")
        .Hexadecimal(static_cast<std::uint64_t>(counter.QuadPart), kUpperDigits)
        .Text(L")\t");
    return head.Length();
}

void CLumDebug::WriteLine(std::size_t length) noexcept {
    m_lock->line[length] = L'\n';
    const std::size_t bytes = ToUtf8(m_lock->line, length + 1, m_lock->bytes);
    WriteLogLine(m_file.get(), m_lock->bytes, bytes);
}
