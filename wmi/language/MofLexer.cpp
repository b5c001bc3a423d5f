// From MOF text to tokens.
#include "language/MofLexer.h"

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::simulator {

namespace {

constexpr bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

constexpr bool IsWordCharacter(char c) noexcept {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

std::optional<unsigned> HexDigit(char c) noexcept {
    if (IsDigit(c)) {
        return static_cast<unsigned>(c - '0');
    }
    if (c >= 'a' && c <= 'f') {
        return static_cast<unsigned>(c - 'a') + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return static_cast<unsigned>(c - 'A') + 10;
    }
    return std::nullopt;
}

std::wstring Wide(std::string_view text) {
    return FromUtf8(text).value_or(std::wstring());
}

} // namespace

MofError::MofError(std::string file, std::size_t line, std::size_t column, const std::string& message)
    : std::runtime_error(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + message),
      m_file(std::move(file)), m_line(line), m_column(column) {}

MofSource::MofSource(std::string fileName, std::string_view text) : m_fileName(std::move(fileName)) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        text.remove_prefix(kByteOrderMark.size());
    }
    m_text = text;
    for (std::size_t position = 0; position < m_text.size();) {
        const std::size_t start = position;
        if (!DecodeUtf8(m_text, position)) {
            const bool wide =
                start == 0 && (m_text.substr(0, 2) == "\xFF\xFE" || m_text.substr(0, 2) == "\xFE\xFF");
            throw Error(start, wide ? L"the text is UTF-16; MOF is read as UTF-8" : L"this is not UTF-8");
        }
    }
}

MofError MofSource::Error(std::size_t offset, const std::wstring& message) const {
    const std::string_view before = Text().substr(0, offset);
    const auto line = std::count(before.begin(), before.end(), '\n');
    const std::size_t newline = before.rfind('\n');
    const std::string_view inLine = newline == std::string_view::npos ? before : before.substr(newline + 1);
    // Bytes that continue a character are no columns.
    const auto column = std::count_if(inLine.begin(), inLine.end(),
                                      [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
    return {m_fileName, static_cast<std::size_t>(line) + 1, static_cast<std::size_t>(column) + 1,
            ToUtf8(message)};
}

void MofLexer::Fail(std::size_t offset, const std::wstring& message) const {
    throw m_source.Error(offset, message);
}

void MofLexer::SkipBlanks() {
    while (!AtEnd()) {
        const char c = Peek();
        if (c == ' ' || (c >= '\t' && c <= '\r')) {
            ++m_position;
        } else if (c == '/' && Peek(1) == '/') {
            m_position = std::min(m_text.find('\n', m_position), m_text.size());
        } else if (c == '/' && Peek(1) == '*') {
            const std::size_t end = m_text.find("*/", m_position + 2);
            if (end == std::string_view::npos) {
                Fail(m_position, L"the comment does not end");
            }
            m_position = end + 2;
        } else {
            return;
        }
    }
}

std::wstring MofLexer::Identifier() {
    const std::size_t start = m_position;
    while (!AtEnd() && IsWordCharacter(Peek())) {
        ++m_position;
    }
    return Wide(m_text.substr(start, m_position - start));
}

MofToken MofLexer::Next() {
    SkipBlanks();
    MofToken token;
    token.offset = m_position;
    if (AtEnd()) {
        return token;
    }
    const char c = Peek();
    const bool sign = c == '+' || c == '-';
    const char digit = sign ? Peek(1) : c;
    if (IsDigit(digit) || (digit == '.' && IsDigit(Peek(sign ? 2 : 1)))) {
        Number(token);
    } else if (IsWordCharacter(c)) {
        token.kind = MofToken::Kind::Identifier;
        token.text = Identifier();
    } else if (c == '"') {
        String(token);
    } else if (c == '\'') {
        Character(token);
    } else if (c == '$') {
        ++m_position;
        token.kind = MofToken::Kind::Alias;
        token.text = Identifier();
        if (!IsIdentifier(token.text)) {
            Fail(token.offset, L"an alias has a name after the dollar sign");
        }
    } else if (c == '#') {
        ++m_position;
        if (!SameName(Identifier(), L"pragma")) {
            Fail(token.offset, L"only #pragma begins with a number sign");
        }
        token.kind = MofToken::Kind::Pragma;
    } else if (std::string_view("{}()[],;:=").find(c) != std::string_view::npos) {
        ++m_position;
        token.kind = MofToken::Kind::Symbol;
        token.symbol = c;
    } else {
        Fail(m_position, L"this character has no place here");
    }
    return token;
}

void MofLexer::Number(MofToken& token) {
    const std::size_t start = m_position;
    if (Peek() == '+' || Peek() == '-') {
        token.negative = Peek() == '-';
        ++m_position;
    }
    const std::size_t digits = m_position;
    const bool hexadecimal = Peek() == '0' && (Peek(1) == 'x' || Peek(1) == 'X');
    while (!AtEnd()) {
        const char c = Peek();
        const char before = m_position > digits ? m_text[m_position - 1] : '\0';
        const bool exponentSign = (c == '+' || c == '-') && !hexadecimal && (before == 'e' || before == 'E');
        if (!IsWordCharacter(c) && c != '.' && !exponentSign) {
            break;
        }
        ++m_position;
    }
    const std::string_view magnitude = m_text.substr(digits, m_position - digits);
    token.text = Wide(m_text.substr(start, m_position - start));
    if (magnitude.find('.') == std::string_view::npos) {
        Integer(token, magnitude);
        return;
    }
    token.kind = MofToken::Kind::Real;
    const bool plain = std::all_of(magnitude.begin(), magnitude.end(), [](char c) {
        return IsDigit(c) || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-';
    });
    const std::optional<double> real = plain ? ParseReal(Wide(magnitude)) : std::nullopt;
    if (!real) {
        Fail(start, L"'" + token.text + L"' is no number, or too large or small for one");
    }
    token.real = token.negative ? -*real : *real;
}

void MofLexer::Integer(MofToken& token, std::string_view digits) const {
    token.kind = MofToken::Kind::Integer;
    unsigned base = 10;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        base = 16;
        digits.remove_prefix(2);
    } else if (digits.size() > 1 && (digits.back() == 'b' || digits.back() == 'B')) {
        base = 2;
        digits.remove_suffix(1);
    } else if (digits.size() > 1 && digits[0] == '0') {
        base = 8;
        digits.remove_prefix(1);
    }
    for (const char c : digits) {
        const std::optional<unsigned> digit = HexDigit(c);
        if (!digit || *digit >= base) {
            Fail(token.offset, L"'" + token.text + L"' is no number");
        }
        if (token.magnitude > (UINT64_MAX - *digit) / base) {
            Fail(token.offset, L"value " + token.text + L" does not fit 64 bits");
        }
        token.magnitude = token.magnitude * base + *digit;
    }
    if (token.negative && token.magnitude > std::uint64_t{1} << 63) {
        Fail(token.offset, L"value " + token.text + L" does not fit 64 bits");
    }
}

void MofLexer::String(MofToken& token) {
    token.kind = MofToken::Kind::String;
    std::size_t end = m_position;
    while (Peek() == '"') {
        Literal(token.text);
        end = m_position;
        SkipBlanks();
    }
    m_position = end;
    JoinSurrogates(token.text);
}

void MofLexer::Literal(std::wstring& text) {
    const std::size_t start = m_position++;
    while (Peek() != '"' || AtEnd()) {
        AppendCharacter(text, LiteralCharacter(start));
    }
    ++m_position;
}

void MofLexer::Character(MofToken& token) {
    token.kind = MofToken::Kind::Character;
    ++m_position;
    if (Peek() == '\'') {
        Fail(token.offset, L"a character is missing between the apostrophes");
    }
    token.magnitude = LiteralCharacter(token.offset);
    if (Peek() != '\'') {
        Fail(token.offset, L"an apostrophe after one character was expected");
    }
    ++m_position;
    token.text = Wide(m_text.substr(token.offset, m_position - token.offset));
}

char32_t MofLexer::LiteralCharacter(std::size_t literalStart) {
    const char c = Peek();
    if (AtEnd() || c == '\n' || c == '\r') {
        Fail(literalStart, L"the string does not end before the line does");
    }
    if (c != '\\') {
        return *DecodeUtf8(m_text, m_position);
    }
    const std::size_t escape = m_position;
    const char kind = Peek(1);
    m_position += 2;
    switch (kind) {
    case 'b':
        return U'\b';
    case 't':
        return U'\t';
    case 'n':
        return U'\n';
    case 'f':
        return U'\f';
    case 'r':
        return U'\r';
    case '"':
    case '\'':
    case '\\':
        return static_cast<unsigned char>(kind);
    case 'x':
    case 'X':
        break;
    default:
        Fail(escape, L"this escape is not known; a backslash itself is written \\\\");
    }
    char32_t code = 0;
    std::size_t digits = 0;
    for (; digits < 4; ++digits, ++m_position) {
        const std::optional<unsigned> digit = HexDigit(Peek());
        if (!digit) {
            break;
        }
        code = code * 16 + *digit;
    }
    if (digits == 0) {
        Fail(escape, L"\\x is followed by up to four hexadecimal digits");
    }
    return code;
}

} // namespace quillet::simulator
