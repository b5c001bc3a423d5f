// Reads the files of a compilation.
#include "language/MofFiles.h"

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <array>
#include <fstream>

namespace quillet::wmi {

namespace {

constexpr std::size_t kMaximumIncludeDepth = 16;

std::filesystem::path PathOf(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string TextOf(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::optional<std::string> ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    // A folder opens, too, and fails only now. What the buffer throws then is the stream's to catch, which an
    // iterator over the buffer would go around.
    std::string text;
    std::array<char, 1 << 14> part{};
    while (stream.read(part.data(), part.size()) || stream.gcount() != 0) {
        text.append(part.data(), static_cast<std::size_t>(stream.gcount()));
    }
    return stream.bad() ? std::nullopt : std::optional(std::move(text));
}

MofFile FileOf(const std::filesystem::path& file, std::string_view text) {
    return {std::make_shared<const MofSource>(TextOf(file), text), file.parent_path()};
}

} // namespace

MofFile ReadMofFile(const std::filesystem::path& file) {
    const std::optional<std::string> text = ReadFile(file);
    if (!text) {
        throw MofError(TextOf(file), 1, 1, "the file cannot be read");
    }
    return FileOf(file, *text);
}

void MofFiles::Begin(const std::filesystem::path& file) {
    std::error_code error;
    m_open.push_back(std::filesystem::weakly_canonical(file, error));
}

MofFile MofFiles::Include(const std::wstring& name, const std::filesystem::path& folder,
                          const MofPlace& place) {
    if (m_open.empty()) {
        place.Fail(L"this text is not read from a file and has no place to include one from");
    }
    if (m_open.size() == kMaximumIncludeDepth) {
        place.Fail(L"includes are nested too deeply");
    }
    std::string relative = ToUtf8(name);
    std::replace(relative.begin(), relative.end(), '\\', '/');
    std::error_code error;
    const std::filesystem::path file = folder / PathOf(relative);
    const std::filesystem::path known = std::filesystem::weakly_canonical(file, error);
    if (error || !std::filesystem::is_regular_file(file, error)) {
        place.Fail(L"file " + Quoted(name) + L" is not there");
    }
    if (std::find(m_open.begin(), m_open.end(), known) != m_open.end()) {
        place.Fail(L"file " + Quoted(name) + L" includes itself");
    }
    const std::optional<std::string> text = ReadFile(file);
    if (!text) {
        place.Fail(L"file " + Quoted(name) + L" cannot be read");
    }
    m_open.push_back(known);
    return FileOf(file, *text);
}

} // namespace quillet::wmi
