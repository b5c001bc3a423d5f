// Parsing and formatting of object paths.
#include <quillet-wmi/ObjectPath.h>

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::wmi {

namespace {

constexpr bool IsSlash(wchar_t c) noexcept {
    return c == L'\\' || c == L'/';
}

class PathParser {
  public:
    explicit PathParser(std::wstring_view text) : m_text(text) {}

    std::optional<ObjectPath> Run(std::wstring* error) {
        ObjectPath path;
        if (Prefix(path) && ClassAndKeys(path)) {
            return path;
        }
        if (error != nullptr) {
            *error = L"position " + std::to_wstring(m_position) + L": " + m_error;
        }
        return std::nullopt;
    }

  private:
    bool AtEnd() const noexcept { return m_position >= m_text.size(); }
    wchar_t Peek(std::size_t ahead = 0) const noexcept {
        return m_position + ahead < m_text.size() ? m_text[m_position + ahead] : L'\0';
    }
    bool Accept(wchar_t c) noexcept {
        if (AtEnd() || m_text[m_position] != c) {
            return false;
        }
        ++m_position;
        return true;
    }
    bool Fail(std::wstring message) {
        m_error = std::move(message);
        return false;
    }

    std::wstring_view Name() noexcept {
        const std::size_t start = m_position;
        while (!AtEnd() && IsIdentifierCharacter(m_text[m_position])) {
            ++m_position;
        }
        return m_text.substr(start, m_position - start);
    }

    /// \\server\namespace: or namespace: or nothing.
    bool Prefix(ObjectPath& path) {
        if (AtEnd()) {
            return Fail(L"the path is empty");
        }
        if (IsSlash(Peek())) {
            if (!IsSlash(Peek(1))) {
                return Fail(L"a server is introduced by two backslashes");
            }
            m_position += 2;
            const std::size_t start = m_position;
            while (!AtEnd() && !IsSlash(Peek())) {
                if (IsKeyPunctuation(Peek())) {
                    return Fail(L"this character cannot stand in a server name");
                }
                ++m_position;
            }
            if (m_position == start) {
                return Fail(L"the server name is missing");
            }
            path.server = m_text.substr(start, m_position - start);
            if (AtEnd()) {
                return Fail(L"the namespace is missing");
            }
            ++m_position;
            return Namespace(path);
        }
        // A namespace ends with a colon, and no colon follows the name of a class directly.
        const std::size_t start = m_position;
        Name();
        const bool isNamespace = IsSlash(Peek()) || Peek() == L':';
        m_position = start;
        return !isNamespace || Namespace(path);
    }

    static bool IsKeyPunctuation(wchar_t c) noexcept {
        return c == L'"' || c == L'\'' || c == L'=' || c == L',' || c == L':' || c == L'\0';
    }

    bool Namespace(ObjectPath& path) {
        for (;;) {
            const std::wstring_view part = Name();
            if (part.empty()) {
                return Fail(L"a namespace name was expected");
            }
            path.namespacePath += part;
            if (Accept(L':')) {
                return true;
            }
            if (AtEnd() || !IsSlash(Peek())) {
                return Fail(L"a colon after the namespace was expected");
            }
            ++m_position;
            path.namespacePath += L'\\';
        }
    }

    bool ClassAndKeys(ObjectPath& path) {
        if (!IsIdentifierStart(Peek()) || AtEnd()) {
            return Fail(L"a class name was expected");
        }
        path.className = Name();
        if (AtEnd()) {
            return true;
        }
        if (Accept(L'=')) {
            if (Accept(L'@')) {
                path.singleton = true;
            } else {
                ObjectPath::Key key;
                if (!KeyValue(key.value)) {
                    return false;
                }
                path.keys.push_back(std::move(key));
            }
            return AtEnd() || Fail(L"nothing more was expected");
        }
        if (!Accept(L'.')) {
            return Fail(L"'.' or '=' was expected after the class name");
        }
        do {
            if (!NamedKey(path)) {
                return false;
            }
        } while (Accept(L','));
        return AtEnd() || Fail(L"a comma or the end was expected after the key value");
    }

    bool NamedKey(ObjectPath& path) {
        const std::size_t start = m_position;
        if (!IsIdentifierStart(Peek()) || AtEnd()) {
            return Fail(L"a key name was expected");
        }
        const std::wstring_view name = Name();
        if (std::any_of(path.keys.begin(), path.keys.end(),
                        [name](const ObjectPath::Key& other) { return SameName(other.name, name); })) {
            m_position = start;
            return Fail(L"key " + wmi::Quoted(name) + L" stands twice");
        }
        if (path.keys.size() == ObjectPath::kMaximumKeys) {
            m_position = start;
            return Fail(L"there are too many keys");
        }
        if (!Accept(L'=')) {
            return Fail(L"'=' was expected after the key name");
        }
        ObjectPath::Key& key = path.keys.emplace_back();
        key.name = name;
        return KeyValue(key.value);
    }

    bool KeyValue(Scalar& value) {
        const wchar_t c = Peek();
        if (!AtEnd() && (c == L'"' || c == L'\'')) {
            return Quoted(value);
        }
        if (c == L'-' || IsDigit(c)) {
            return Number(value);
        }
        const std::size_t start = m_position;
        const std::wstring_view word = Name();
        if (SameName(word, L"TRUE") || SameName(word, L"FALSE")) {
            value = SameName(word, L"TRUE");
            return true;
        }
        m_position = start;
        return Fail(L"a key value was expected: quoted text, a number, TRUE or FALSE");
    }

    bool Quoted(Scalar& value) {
        const std::size_t start = m_position;
        const wchar_t quote = m_text[m_position++];
        std::wstring text;
        while (!AtEnd()) {
            wchar_t c = m_text[m_position++];
            if (c == quote) {
                value = std::move(text);
                return true;
            }
            if (c == L'\\') {
                if (AtEnd()) {
                    break;
                }
                c = m_text[m_position++];
            }
            text.push_back(c);
        }
        m_position = start;
        return Fail(L"the quoted value does not end");
    }

    bool Number(Scalar& value) {
        const std::size_t start = m_position;
        const bool negative = Accept(L'-');
        std::uint64_t magnitude = 0;
        bool any = false;
        bool overflow = false;
        const bool hexadecimal = Peek() == L'0' && (Peek(1) == L'x' || Peek(1) == L'X');
        if (hexadecimal) {
            m_position += 2;
        }
        const std::uint64_t base = hexadecimal ? 16 : 10;
        for (std::optional<unsigned> digit; (digit = Digit(Peek(), hexadecimal)); ++m_position) {
            overflow = overflow || magnitude > (UINT64_MAX - *digit) / base;
            magnitude = magnitude * base + *digit;
            any = true;
        }
        constexpr std::uint64_t kSmallest = std::uint64_t{1} << 63;
        if (!any) {
            return Fail(L"a digit was expected");
        }
        if (overflow || (negative && magnitude > kSmallest)) {
            m_position = start;
            return Fail(L"the number does not fit 64 bits");
        }
        if (negative) {
            value = static_cast<std::int64_t>(0 - magnitude);
        } else if (magnitude < kSmallest) {
            value = static_cast<std::int64_t>(magnitude);
        } else {
            value = magnitude;
        }
        return true;
    }

    static std::optional<unsigned> Digit(wchar_t c, bool hexadecimal) noexcept {
        if (IsDigit(c)) {
            return static_cast<unsigned>(c - L'0');
        }
        if (hexadecimal && c >= L'a' && c <= L'f') {
            return static_cast<unsigned>(c - L'a') + 10;
        }
        if (hexadecimal && c >= L'A' && c <= L'F') {
            return static_cast<unsigned>(c - L'A') + 10;
        }
        return std::nullopt;
    }

    std::wstring_view m_text;
    std::size_t m_position = 0;
    std::wstring m_error;
};

void AppendKeyValue(std::wstring& out, const Scalar& value) {
    if (const auto* flag = std::get_if<bool>(&value)) {
        out += *flag ? L"TRUE" : L"FALSE";
    } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
        AppendNumber(out, *number);
    } else if (const auto* magnitude = std::get_if<std::uint64_t>(&value)) {
        AppendNumber(out, *magnitude);
    } else if (const auto* real = std::get_if<double>(&value)) {
        // A real number is no key value; as text it at least stays readable.
        out += L'"' + RealText(*real) + L'"';
    } else {
        out += L'"';
        for (const wchar_t c : std::get<std::wstring>(value)) {
            if (c == L'"' || c == L'\\') {
                out += L'\\';
            }
            out += c;
        }
        out += L'"';
    }
}

void AppendKey(std::wstring& out, wchar_t separator, std::wstring_view name, const Scalar& value) {
    if (!name.empty()) {
        out += separator;
        out += name;
    }
    out += L'=';
    AppendKeyValue(out, value);
}

} // namespace

std::optional<ObjectPath> ObjectPath::Parse(std::wstring_view text, std::wstring* error) {
    return PathParser(text).Run(error);
}

std::wstring ObjectPath::Relative() const {
    std::wstring text = className;
    if (singleton) {
        return text + L"=@";
    }
    wchar_t separator = L'.';
    for (const Key& key : keys) {
        AppendKey(text, separator, key.name, key.value);
        separator = L',';
    }
    return text;
}

std::wstring ObjectPath::Full(std::wstring_view serverName, std::wstring_view namespaceName) const {
    return FullPath(serverName, namespaceName, Relative());
}

std::wstring ObjectPath::Text() const {
    if (!server.empty()) {
        return Full(server, namespacePath);
    }
    return namespacePath.empty() ? Relative() : namespacePath + L':' + Relative();
}

std::wstring FullPath(std::wstring_view serverName, std::wstring_view namespaceName,
                      std::wstring_view relative) {
    std::wstring path = L"\\\\";
    path += serverName;
    path += L'\\';
    path += namespaceName;
    path += L':';
    path += relative;
    return path;
}

// Every object that is read asks for this: it is written straight from the instance, without an ObjectPath.
std::wstring RelativePath(const Instance& instance) {
    if (!instance.definition) {
        return {};
    }
    const ClassDefinition& definition = *instance.definition;
    std::wstring text = definition.name;
    wchar_t separator = L'.';
    for (std::size_t i = 0; i < definition.properties.size() && i < instance.values.size(); ++i) {
        const Scalar* value = instance.values[i].AsScalar();
        if (value != nullptr && definition.properties[i].IsKey()) {
            AppendKey(text, separator, definition.properties[i].name, *value);
            separator = L',';
        }
    }
    if (separator == L'.' && definition.qualifiers.Has(L"singleton")) {
        text += L"=@";
    }
    return text;
}

std::optional<std::wstring> AddressOf(const Instance& instance) {
    const ClassDefinition& definition = *instance.definition;
    if (definition.lacksKeys || SameName(definition.name, L"__PARAMETERS")) {
        return std::nullopt;
    }
    bool hasKey = false;
    for (std::size_t i = 0; i < definition.properties.size(); ++i) {
        if (definition.properties[i].IsKey()) {
            hasKey = true;
            if (instance.values[i].IsNull()) {
                return std::nullopt;
            }
        }
    }
    return hasKey || definition.qualifiers.Has(L"singleton") ? std::optional(RelativePath(instance))
                                                             : std::nullopt;
}

} // namespace quillet::wmi
