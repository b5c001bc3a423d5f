// Reads the export text of the registry.
#include "RegFile.h"
#include "Text.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace quillet::platform {
namespace {

constexpr std::wstring_view kHeader = L"Windows Registry Editor Version 5.00";

struct Malformed {
    std::string message;
    std::size_t line = 0; ///< 0: the line that is being read
};

bool IsBlank(wchar_t character) {
    return character == L' ' || character == L'\t';
}

std::wstring_view Trim(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool StartsWith(std::wstring_view text, std::wstring_view start) {
    return text.substr(0, start.size()) == start;
}

/// Nothing but space and a comment may stand behind what a line says.
void ExpectEnd(std::wstring_view rest) {
    rest = Trim(rest);
    if (!rest.empty() && rest.front() != L';') {
        throw Malformed{"unexpected text behind the end: " + Utf8FromWide(rest)};
    }
}

/// Decodes line by line, so that the line of an ill-formed one is known.
template <class Units, class DecodeLine>
std::wstring DecodeLines(Units units, DecodeLine decodeLine) {
    std::wstring text;
    for (std::size_t line = 1, at = 0; at < units.size(); ++line) {
        const std::size_t end = std::min(units.find('\n', at), units.size() - 1) + 1;
        bool invalid = false;
        text += decodeLine(units.substr(at, end - at), &invalid);
        if (invalid) {
            throw Malformed{"the text is neither UTF-8 nor UTF-16LE with a byte-order mark", line};
        }
        at = end;
    }
    return text;
}

std::wstring Decode(std::string_view bytes) {
    if (bytes.substr(0, 2) == "\xff\xfe") {
        bytes.remove_prefix(2);
        std::u16string units(bytes.size() / 2, u'\0');
        for (std::size_t i = 0; i < units.size(); ++i) {
            units[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                             static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
        }
        if (bytes.size() % 2) {
            const auto lines = static_cast<std::size_t>(std::count(units.begin(), units.end(), u'\n')) + 1;
            throw Malformed{"the file ends within a UTF-16 character", lines};
        }
        return DecodeLines(std::u16string_view(units), WideFromUtf16);
    }
    if (bytes.substr(0, 3) == "\xef\xbb\xbf") {
        bytes.remove_prefix(3);
    }
    return DecodeLines(bytes, WideFromUtf8);
}

/// A quoted text with the escapes \\ and \"; moves `rest` behind the closing quote.
std::wstring TakeQuoted(std::wstring_view& rest) {
    rest.remove_prefix(1);
    std::wstring text;
    while (!rest.empty()) {
        wchar_t character = rest.front();
        rest.remove_prefix(1);
        if (character == L'"') {
            return text;
        }
        if (character == L'\\') {
            if (rest.empty() || (rest.front() != L'\\' && rest.front() != L'"')) {
                throw Malformed{"a backslash in a quoted text must be followed by a backslash or a quote"};
            }
            character = rest.front();
            rest.remove_prefix(1);
        }
        text.push_back(character);
    }
    throw Malformed{"a quoted text is not closed"};
}

/// Takes hexadecimal digits, at most `most` of them.
std::optional<DWORD> TakeHex(std::wstring_view& rest, std::size_t most) {
    DWORD value = 0;
    std::size_t count = 0;
    for (; !rest.empty() && count < most; ++count) {
        const wchar_t c = FoldCase(rest.front());
        if (c >= L'0' && c <= L'9') {
            value = value << 4 | static_cast<DWORD>(c - L'0');
        } else if (c >= L'a' && c <= L'f') {
            value = value << 4 | static_cast<DWORD>(c - L'a' + 10);
        } else {
            break;
        }
        rest.remove_prefix(1);
    }
    return count ? std::optional(value) : std::nullopt;
}

template <class T>
std::vector<BYTE> BytesOf(const T* values, std::size_t count) {
    std::vector<BYTE> bytes(count * sizeof(T));
    if (count) {
        std::memcpy(bytes.data(), values, bytes.size());
    }
    return bytes;
}

std::vector<BYTE> HexBytes(std::wstring_view rest) {
    std::vector<BYTE> bytes;
    rest = Trim(rest);
    while (!rest.empty() && rest.front() != L';') {
        const auto byte = TakeHex(rest, 2);
        if (!byte) {
            throw Malformed{"hexadecimal bytes are expected, separated by commas"};
        }
        bytes.push_back(static_cast<BYTE>(*byte));
        rest = Trim(rest);
        if (rest.empty() || rest.front() == L';') {
            break;
        }
        if (rest.front() != L',') {
            throw Malformed{"hexadecimal bytes are expected, separated by commas"};
        }
        rest = Trim(rest.substr(1));
    }
    return bytes;
}

/// Text types are exported as UTF-16; the host's own form is wchar_t.
std::vector<BYTE> HostForm(DWORD type, std::vector<BYTE> bytes) {
    if (type != REG_SZ && type != REG_EXPAND_SZ && type != REG_MULTI_SZ) {
        return bytes;
    }
    if (bytes.size() % 2) {
        throw Malformed{"text values have an even number of bytes"};
    }
    std::u16string units(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i) {
        units[i] = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    }
    const std::wstring text = WideFromUtf16(units);
    return BytesOf(text.data(), text.size());
}

class Parser {
  public:
    explicit Parser(std::wstring text) : m_text(std::move(text)) {}

    /// The line that is being read: of a value that goes on over several lines, the first.
    std::size_t Line() const { return m_reading; }

    std::vector<RegOperation> Run() {
        bool headed = false;
        std::wstring storage;
        while (NextLine(storage)) {
            const std::wstring_view line = Trim(storage);
            if (!headed) {
                if (line != kHeader) {
                    throw Malformed{"the first line must be \"" + Utf8FromWide(kHeader) + "\""};
                }
                headed = true;
            } else if (line.empty() || line.front() == L';') {
                continue;
            } else if (line.front() == L'[') {
                Key(line);
            } else {
                Value(line);
            }
        }
        if (!headed) {
            throw Malformed{"the first line must be \"" + Utf8FromWide(kHeader) + "\""};
        }
        return std::move(m_operations);
    }

  private:
    bool NextPhysicalLine(std::wstring_view& line) {
        if (m_at >= m_text.size()) {
            return false;
        }
        m_reading = ++m_line;
        const std::size_t end = std::min(m_text.find(L'\n', m_at), m_text.size());
        line = std::wstring_view(m_text).substr(m_at, end - m_at);
        if (!line.empty() && line.back() == L'\r') {
            line.remove_suffix(1);
        }
        m_at = end + 1;
        if (line.find(L'\0') != std::wstring_view::npos) {
            throw Malformed{"a zero character"};
        }
        return true;
    }

    /// A line with those that continue it; only lists of bytes are continued.
    bool NextLine(std::wstring& joined) {
        std::wstring_view line;
        if (!NextPhysicalLine(line)) {
            return false;
        }
        joined = line;
        if (!IsByteList(line)) {
            return true;
        }
        const std::size_t first = m_line;
        while (Continues(line)) {
            joined.resize(joined.rfind(L'\\'));
            if (!NextPhysicalLine(line)) {
                throw Malformed{"the file ends where a continuation is expected"};
            }
            joined += line;
        }
        m_reading = first;
        return true;
    }
    static bool Continues(std::wstring_view line) {
        line = Trim(line);
        return !line.empty() && line.back() == L'\\';
    }
    /// Whether the line sets a value from bytes: a quoted name or @, = and hex.
    static bool IsByteList(std::wstring_view line) {
        line = Trim(line);
        if (StartsWith(line, L"@")) {
            line.remove_prefix(1);
        } else if (StartsWith(line, L"\"")) {
            std::size_t end = 1;
            while (end < line.size() && line[end] != L'"') {
                end += line[end] == L'\\' ? std::size_t{2} : std::size_t{1};
            }
            line = line.substr(std::min(end + 1, line.size()));
        } else {
            return false;
        }
        line = Trim(line);
        return StartsWith(line, L"=") && StartsWith(Trim(line.substr(1)), L"hex");
    }

    void Key(std::wstring_view line) {
        const std::size_t end = line.rfind(L']');
        if (end == std::wstring_view::npos) {
            throw Malformed{"a key is not closed with ]"};
        }
        ExpectEnd(line.substr(end + 1));
        std::wstring_view path = line.substr(1, end - 1);
        const bool remove = !path.empty() && path.front() == L'-';
        if (remove) {
            path.remove_prefix(1);
        }
        const std::size_t rootEnd = std::min(path.find(L'\\'), path.size());
        m_root = RootNamed(path.substr(0, rootEnd));
        m_path = rootEnd < path.size() ? path.substr(rootEnd + 1) : std::wstring_view();
        if ((rootEnd < path.size() && m_path.empty()) || m_path.find(L"\\\\") != std::wstring::npos ||
            (!m_path.empty() && (m_path.front() == L'\\' || m_path.back() == L'\\'))) {
            throw Malformed{"a key name is empty"};
        }
        if (remove && m_path.empty()) {
            throw Malformed{"a root key cannot be deleted"};
        }
        m_deletedKey = remove;
        m_operations.push_back({remove ? RegOperation::Kind::DeleteKey : RegOperation::Kind::CreateKey,
                                m_root,
                                m_path,
                                {},
                                REG_NONE,
                                {}});
    }
    static HKEY RootNamed(std::wstring_view name) {
        const std::pair<std::wstring_view, HKEY> roots[] = {{L"hkey_local_machine", HKEY_LOCAL_MACHINE},
                                                            {L"hkey_current_user", HKEY_CURRENT_USER},
                                                            {L"hkey_classes_root", HKEY_CLASSES_ROOT},
                                                            {L"hkey_users", HKEY_USERS},
                                                            {L"hkey_current_config", HKEY_CURRENT_CONFIG}};
        const std::wstring folded = FoldCase(name);
        for (const auto& [known, key] : roots) {
            if (folded == known) {
                return key;
            }
        }
        throw Malformed{"unknown root key \"" + Utf8FromWide(name) + "\""};
    }

    void Value(std::wstring_view line) {
        if (!m_root) {
            throw Malformed{"a value stands before the first key"};
        }
        if (m_deletedKey) {
            throw Malformed{"a value stands under a key that is deleted"};
        }
        RegOperation operation{RegOperation::Kind::SetValue, m_root, m_path, {}, REG_NONE, {}};
        if (line.front() == L'@') {
            line.remove_prefix(1);
        } else if (line.front() == L'"') {
            operation.name = TakeQuoted(line);
        } else {
            throw Malformed{"a key, a value name in quotes or a comment is expected"};
        }
        line = Trim(line);
        if (line.empty() || line.front() != L'=') {
            throw Malformed{"= is expected behind the value name"};
        }
        Data(Trim(line.substr(1)), operation);
        m_operations.push_back(std::move(operation));
    }
    static void Data(std::wstring_view data, RegOperation& operation) {
        if (data.empty()) {
            throw Malformed{"the value is missing"};
        }
        if (data.front() == L'-') {
            operation.kind = RegOperation::Kind::DeleteValue;
            ExpectEnd(data.substr(1));
        } else if (data.front() == L'"') {
            const std::wstring text = TakeQuoted(data);
            ExpectEnd(data);
            operation.type = REG_SZ;
            operation.data = BytesOf(text.c_str(), text.size() + 1);
        } else if (StartsWith(data, L"dword:")) {
            data = Trim(data.substr(6));
            const auto value = TakeHex(data, 8);
            if (!value) {
                throw Malformed{"up to eight hexadecimal digits are expected behind dword:"};
            }
            ExpectEnd(data);
            operation.type = REG_DWORD;
            operation.data = BytesOf(&*value, 1);
        } else if (StartsWith(data, L"hex:")) {
            operation.type = REG_BINARY;
            operation.data = HexBytes(data.substr(4));
        } else if (StartsWith(data, L"hex(")) {
            data.remove_prefix(4);
            const auto type = TakeHex(data, 8);
            if (!type || !StartsWith(data, L"):")) {
                throw Malformed{"the form is hex(type):bytes"};
            }
            operation.type = *type;
            operation.data = HostForm(*type, HexBytes(data.substr(2)));
        } else {
            throw Malformed{"unknown kind of value: " + Utf8FromWide(data)};
        }
    }

    std::wstring m_text;
    std::size_t m_at = 0;
    std::size_t m_line = 0;
    std::size_t m_reading = 0;
    HKEY m_root = nullptr;
    std::wstring m_path;
    bool m_deletedKey = false;
    std::vector<RegOperation> m_operations;
};

} // namespace

std::variant<std::vector<RegOperation>, RegFileError> ParseRegFile(std::string_view bytes) {
    std::optional<Parser> parser;
    try {
        parser.emplace(Decode(bytes));
        return parser->Run();
    } catch (const Malformed& error) {
        const std::size_t reading = parser ? parser->Line() : 0;
        return RegFileError{error.line ? error.line : std::max<std::size_t>(reading, 1), error.message};
    }
}

} // namespace quillet::platform
