// Reading the trace log the way its users do: from the file.
#include "TraceFile.h"

#include "LumDebug.h"

#include <stdexcept>
#include <string_view>

namespace quillet::tests {

namespace {

constexpr wchar_t kFileName[] = L"Gui_Quillet.txt";

std::wstring FromUtf8(const std::string& bytes) {
    if (bytes.empty()) {
        return {};
    }
    const auto size = static_cast<int>(bytes.size());
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0);
    if (length == 0) {
        throw std::runtime_error("the trace file is no UTF-8");
    }
    std::wstring text(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, text.data(), length);
    return text;
}

/// Takes the part of a line up to the next tabulator, which must stand between these two texts.
bool TakeField(std::wstring_view& rest, std::wstring_view before, std::wstring_view after,
               std::wstring& field) {
    const std::size_t end = rest.find(L'\t');
    if (end == std::wstring_view::npos) {
        return false;
    }
    std::wstring_view part = rest.substr(0, end);
    if (part.size() < before.size() + after.size() || part.substr(0, before.size()) != before ||
        part.substr(part.size() - after.size()) != after) {
        return false;
    }
    part.remove_prefix(before.size());
    part.remove_suffix(after.size());
    field = part;
    rest.remove_prefix(end + 1);
    return true;
}

bool ConsistsOf(const std::wstring& text, std::wstring_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::wstring::npos;
}

/// "hh:mm:ss.mmm"
bool IsTime(const std::wstring& text) {
    std::wstring shape = text;
    for (wchar_t& character : shape) {
        character = character >= L'0' && character <= L'9' ? L'0' : character;
    }
    return shape == L"00:00:00.000";
}

bool ParseHead(std::wstring_view line, TraceLine& parsed) {
    std::wstring pid;
    std::wstring tid;
    std::wstring counter;
    if (!TakeField(line, L"", L"", parsed.process) || !TakeField(line, L"PID:", L"", pid) ||
        !TakeField(line, L"TID:", L"", tid) || !TakeField(line, L"", L"", parsed.time) ||
        !TakeField(line, L"(", L")", counter) || !ConsistsOf(pid, L"0123456789abcdef") ||
        !ConsistsOf(tid, L"0123456789abcdef") || !IsTime(parsed.time) ||
        !ConsistsOf(counter, L"0123456789ABCDEF")) {
        return false;
    }
    parsed.pid = static_cast<unsigned>(std::stoul(pid, nullptr, 16));
    parsed.tid = static_cast<unsigned>(std::stoul(tid, nullptr, 16));
    parsed.counter = std::stoull(counter, nullptr, 16);
    parsed.text = line;
    return true;
}

std::vector<TraceLine> ParseTraceText(const std::string& bytes) {
    const std::wstring text = FromUtf8(bytes);
    std::vector<TraceLine> lines;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = text.find(L'\n', begin);
        if (end == std::wstring::npos) {
            throw std::runtime_error("the last line of the trace file has no end");
        }
        std::wstring line = text.substr(begin, end - begin);
        while (!line.empty() && line.back() == L'\r') {
            line.pop_back();
        }
        begin = end + 1;
        TraceLine parsed;
        if (ParseHead(line, parsed)) {
            lines.push_back(parsed);
        } else if (lines.empty()) {
            throw std::runtime_error("the trace file does not begin with a head");
        } else {
            lines.back().text += L'\n' + line;
        }
    }
    return lines;
}

} // namespace

std::vector<TraceLine> ParseTraceFile(const std::filesystem::path& file) {
    return ParseTraceText(ReadFile(file));
}

TraceFile::TraceFile(unsigned level, unsigned maxFileSize) {
    m_registry.SetString(kLum2Key, L"InstalledDir", m_directory.Text());
    m_registry.RemoveValue(kLum2Key, L"TRACE");
    if (LumTrace().Configure(L"Quillet", kFileName, level, false, maxFileSize) != 0) {
        throw std::runtime_error("the trace log can not be configured");
    }
}

TraceFile::~TraceFile() {
    LumTrace() = CLumDebug();
}

std::filesystem::path TraceFile::Path() const {
    return m_directory.File(kFileName);
}

std::vector<TraceLine> TraceFile::Lines() const {
    return ParseTraceFile(Path());
}

std::vector<std::wstring> TraceFile::NewTexts() {
    // Some tests trace for thousands of runs and ask after each.
    const std::string bytes = ReadFile(Path(), m_seen);
    m_seen += bytes.size();
    std::vector<std::wstring> texts;
    for (TraceLine& line : ParseTraceText(bytes)) {
        texts.push_back(std::move(line.text));
    }
    return texts;
}

} // namespace quillet::tests
