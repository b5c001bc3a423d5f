// Parsing of object paths. The text may come from anywhere, so each step looks before it takes.
#include "LumWmiObjectPath.h"

#include <windows.h>
#include <wbemidl.h>

#include <algorithm>

namespace {

/// More keys than any class has; a text of nothing but keys is not worth comparing them all.
constexpr std::size_t kMaxKeys = 256;

bool SameName(std::wstring_view left, std::wstring_view right) noexcept {
    return left.size() == right.size() && _wcsnicmp(left.data(), right.data(), left.size()) == 0;
}

constexpr bool IsSeparator(wchar_t character) noexcept {
    return character == L'\\' || character == L'/';
}
constexpr bool IsQuote(wchar_t character) noexcept {
    return character == L'"' || character == L'\'';
}
constexpr bool IsDigit(wchar_t character) noexcept {
    return character >= L'0' && character <= L'9';
}
constexpr bool IsHexDigit(wchar_t character) noexcept {
    return IsDigit(character) || (character >= L'a' && character <= L'f') ||
           (character >= L'A' && character <= L'F');
}
/// The characters of a name: CIM allows everything beyond ASCII.
constexpr bool IsNameStart(wchar_t character) noexcept {
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z') ||
           character == L'_' || static_cast<char32_t>(character) >= 0x80;
}
constexpr bool IsNameCharacter(wchar_t character) noexcept {
    return IsNameStart(character) || IsDigit(character);
}
/// Host names and addresses have more characters than names; none of those that end a part of a path.
constexpr bool IsServerCharacter(wchar_t character) noexcept {
    return IsNameCharacter(character) || character == L'.' || character == L'-';
}

} // namespace

/// Reads one path from left to right. Each step takes its part and tells whether it was there.
class CLumWmiAutoParsedObjectPath::Parser {
  public:
    Parser(std::wstring_view text, CLumWmiAutoParsedObjectPath& path) : m_rest(text), m_path(path) {}

    bool Run() { return Location() && TakeName(m_path.m_className) && Keys() && m_rest.empty(); }

  private:
    wchar_t Next() const noexcept { return m_rest.empty() ? L'\0' : m_rest.front(); }
    bool Take(wchar_t expected) noexcept {
        if (m_rest.empty() || m_rest.front() != expected) {
            return false;
        }
        m_rest.remove_prefix(1);
        return true;
    }
    bool TakeSeparator() noexcept { return Take(L'\\') || Take(L'/'); }
    template <class Predicate>
    bool TakeWhile(Predicate belongs, std::wstring& part) {
        const auto end = std::find_if_not(m_rest.begin(), m_rest.end(), belongs);
        const auto length = static_cast<std::size_t>(end - m_rest.begin());
        part.assign(m_rest.substr(0, length));
        m_rest.remove_prefix(length);
        return length != 0;
    }
    bool TakeName(std::wstring& name) { return IsNameStart(Next()) && TakeWhile(IsNameCharacter, name); }

    /// `\\server\namespace:` or `namespace:` or nothing.
    bool Location() {
        if (m_rest.size() >= 2 && IsSeparator(m_rest[0]) && IsSeparator(m_rest[1])) {
            m_rest.remove_prefix(2);
            return TakeWhile(IsServerCharacter, m_path.m_server) && TakeSeparator() && NamespaceAndColon();
        }
        // A colon behind the class belongs to a key value: only one that comes before it ends a namespace.
        const std::size_t end = m_rest.find_first_of(L":.=\"'");
        return end == std::wstring_view::npos || m_rest[end] != L':' || NamespaceAndColon();
    }
    bool NamespaceAndColon() {
        do {
            std::wstring part;
            if (!TakeName(part)) {
                return false;
            }
            if (!m_path.m_namespace.empty()) {
                m_path.m_namespace += L'\\';
            }
            m_path.m_namespace += part;
        } while (TakeSeparator());
        return Take(L':');
    }

    bool Keys() {
        if (m_rest.empty()) {
            return true;
        }
        if (Take(L'=')) {
            if (Take(L'@')) {
                m_path.m_singleton = true;
                return true;
            }
            return Value(m_path.m_keys.emplace_back().value);
        }
        if (!Take(L'.')) {
            return false;
        }
        do {
            Key key;
            if (m_path.m_keys.size() == kMaxKeys || !TakeName(key.name) || !Take(L'=') || !Value(key.value) ||
                m_path.FindKey(key.name) != nullptr) {
                return false;
            }
            m_path.m_keys.push_back(std::move(key));
        } while (Take(L','));
        return true;
    }

    bool Value(std::wstring& value) { return IsQuote(Next()) ? QuotedValue(value) : PlainValue(value); }
    bool QuotedValue(std::wstring& value) {
        const wchar_t quote = Next();
        m_rest.remove_prefix(1);
        while (!m_rest.empty()) {
            wchar_t character = m_rest.front();
            m_rest.remove_prefix(1);
            if (character == quote) {
                return true;
            }
            if (character == L'\\' && (Next() == L'\\' || IsQuote(Next()))) {
                character = m_rest.front();
                m_rest.remove_prefix(1);
            }
            value += character;
        }
        return false;
    }
    /// A decimal or hexadecimal number, or a truth value; kept as it is written.
    bool PlainValue(std::wstring& value) {
        const auto belongs = [](wchar_t c) { return IsNameCharacter(c) || c == L'-' || c == L'+'; };
        if (!TakeWhile(belongs, value)) {
            return false;
        }
        if (SameName(value, L"TRUE") || SameName(value, L"FALSE")) {
            return true;
        }
        std::wstring_view digits(value);
        if (digits.front() == L'-' || digits.front() == L'+') {
            digits.remove_prefix(1);
        }
        const bool hexadecimal = digits.size() > 2 && SameName(digits.substr(0, 2), L"0x");
        if (hexadecimal) {
            digits.remove_prefix(2);
        }
        return !digits.empty() &&
               std::all_of(digits.begin(), digits.end(), hexadecimal ? IsHexDigit : IsDigit);
    }

    std::wstring_view m_rest;
    CLumWmiAutoParsedObjectPath& m_path;
};

int CLumWmiAutoParsedObjectPath::Parse(const wchar_t* path) {
    if (path == nullptr) {
        Clear();
        return static_cast<int>(WBEM_E_INVALID_PARAMETER);
    }
    // Parsed aside: the text may be one that this object has handed out.
    CLumWmiAutoParsedObjectPath parsed;
    const bool valid = Parser(path, parsed).Run();
    Clear();
    if (!valid) {
        return static_cast<int>(WBEM_E_INVALID_OBJECT_PATH);
    }
    m_server.swap(parsed.m_server);
    m_namespace.swap(parsed.m_namespace);
    m_className.swap(parsed.m_className);
    m_keys.swap(parsed.m_keys);
    m_singleton = parsed.m_singleton;
    return 0;
}

bool CLumWmiAutoParsedObjectPath::IsOfClass(std::wstring_view className) const noexcept {
    return SameName(m_className, className);
}

const std::wstring* CLumWmiAutoParsedObjectPath::FindKey(std::wstring_view name) const noexcept {
    const auto key = std::find_if(m_keys.begin(), m_keys.end(), [name](const Key& candidate) {
        return candidate.name.empty() || SameName(candidate.name, name);
    });
    return key == m_keys.end() ? nullptr : &key->value;
}

wchar_t* CLumWmiAutoParsedObjectPath::Keep(const std::wstring& text) {
    const auto kept = std::find(m_kept.begin(), m_kept.end(), text);
    return kept == m_kept.end() ? m_kept.emplace_back(text).data() : kept->data();
}

void CLumWmiAutoParsedObjectPath::Clear() noexcept {
    m_server.clear();
    m_namespace.clear();
    m_className.clear();
    m_keys.clear();
    m_singleton = false;
    m_kept.clear();
}
