// Reading the trace log the way its users do: from the file.
#include "TraceFile.h"

#include "LumDebug.h"

#include <regex>
#include <stdexcept>

namespace quillet::test {

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

bool ParseHead(const std::wstring& line, TraceLine& parsed) {
    static const std::wregex head(LR"(([^\t]*)\tPID:([0-9a-f]+)\tTID:([0-9a-f]+)\t)"
                                  LR"((\d\d:\d\d:\d\d\.\d\d\d)\t\(([0-9A-F]+)\)\t)");
    std::wsmatch match;
    if (!std::regex_search(line, match, head, std::regex_constants::match_continuous)) {
        return false;
    }
    parsed.process = match[1];
    parsed.pid = static_cast<unsigned>(std::stoul(match[2], nullptr, 16));
    parsed.tid = static_cast<unsigned>(std::stoul(match[3], nullptr, 16));
    parsed.time = match[4];
    parsed.counter = std::stoull(match[5], nullptr, 16);
    parsed.text = match.suffix();
    return true;
}

} // namespace

std::vector<TraceLine> ParseTraceFile(const std::filesystem::path& file) {
    const std::string bytes = ReadFile(file);
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
    const std::vector<TraceLine> lines = Lines();
    std::vector<std::wstring> texts;
    for (; m_seen < lines.size(); ++m_seen) {
        texts.push_back(lines[m_seen].text);
    }
    return texts;
}

} // namespace quillet::test
