// From MOF text to tokens.
#include "language/MofLexer.h"

#include <quillet-wmi/Text.h>

#include <algorithm>
#include <array>

namespace quillet::wmi {

namespace {

constexpr bool IsDigitByte(char c) noexcept {
    return c >= '0' && c <= '9';
}

// What a byte may be part of: every byte of a text is asked for it.
constexpr unsigned char kWord = 1;
constexpr unsigned char kAsciiWord = 2;
constexpr unsigned char kBlank = 4;
constexpr unsigned char kPlain = 8; ///< stands in a literal for itself

constexpr std::array<unsigned char, 256> PartsOfBytes() {
    std::array<unsigned char, 256> parts{};
    for (std::size_t byte = 0; byte < parts.size(); ++byte) {
        const bool letter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_';
        const bool digit = byte >= '0' && byte <= '9';
        const bool ascii = byte < 0x80;
        const bool ends = byte == '"' || byte == '\\' || byte == '\n' || byte == '\r';
        parts[byte] |= letter || digit || !ascii ? kWord : 0;
        parts[byte] |= letter || digit ? kAsciiWord : 0;
        parts[byte] |= byte == ' ' || (byte >= '\t' && byte <= '\r') ? kBlank : 0;
        parts[byte] |= ascii && !ends ? kPlain : 0;
    }
    return parts;
}

constexpr std::array<unsigned char, 256> kParts = PartsOfBytes();

bool Is(char c, unsigned char part) noexcept {
    return (kParts[static_cast<unsigned char>(c)] & part) != 0;
}

/// How far characters of a kind go on.
std::size_t EndOf(std::string_view text, std::size_t position, unsigned char part) noexcept {
    while (position < text.size() && Is(text[position], part)) {
        ++position;
    }
    return position;
}

void AppendAscii(std::wstring& text, std::string_view ascii) {
    const std::size_t before = text.size();
    text.resize(before + ascii.size());
    std::copy(ascii.begin(), ascii.end(), text.begin() + static_cast<std::ptrdiff_t>(before));
}

/// How many of the bytes from a position on are ASCII at least; looks at many at a time.
std::size_t AsciiRun(std::string_view text, std::size_t position) noexcept {
    constexpr std::size_t kAtATime = 64;
    const std::size_t start = position;
    for (; text.size() - position >= kAtATime; position += kAtATime) {
        unsigned all = 0;
        for (std::size_t i = 0; i < kAtATime; ++i) {
            all |= static_cast<unsigned char>(text[position + i]);
        }
        if (all >= 0x80) {
            break;
        }
    }
    return position - start;
}

std::optional<unsigned> HexDigit(char c) noexcept {
    if (IsDigitByte(c)) {
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
        position += AsciiRun(m_text, position);
        const std::size_t start = position;
        if (start < m_text.size() && !DecodeUtf8(m_text, position)) {
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
        if (Is(c, kBlank)) {
            m_position = EndOf(m_text, m_position, kBlank);
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

void MofLexer::Identifier(std::wstring& text) {
    const std::size_t start = m_position;
    const std::size_t ascii = EndOf(m_text, start, kAsciiWord);
    m_position = EndOf(m_text, ascii, kWord);
    if (m_position == ascii) {
        AppendAscii(text, m_text.substr(start, ascii - start));
    } else {
        text = Wide(m_text.substr(start, m_position - start));
    }
}

void MofLexer::Next(MofToken& token) {
    SkipBlanks();
    token.kind = MofToken::Kind::End;
    token.offset = m_position;
    token.text.clear();
    token.negative = false;
    token.magnitude = 0;
    token.symbol = '\0';
    if (AtEnd()) {
        return;
    }
    const char c = Peek();
    const bool sign = c == '+' || c == '-';
    const char digit = sign ? Peek(1) : c;
    if (IsDigitByte(digit) || (digit == '.' && IsDigitByte(Peek(sign ? 2 : 1)))) {
        Number(token);
    } else if (Is(c, kWord)) {
        token.kind = MofToken::Kind::Identifier;
        Identifier(token.text);
    } else if (c == '"') {
        String(token);
    } else if (c == '\'') {
        Character(token);
    } else if (c == '$') {
        ++m_position;
        token.kind = MofToken::Kind::Alias;
        Identifier(token.text);
        if (!IsIdentifier(token.text)) {
            Fail(token.offset, L"an alias has a name after the dollar sign");
        }
    } else if (c == '#') {
        ++m_position;
        Identifier(token.text);
        if (!SameName(token.text, L"pragma")) {
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
        if (!Is(c, kWord) && c != '.' && !exponentSign) {
            break;
        }
        ++m_position;
    }
    const std::string_view magnitude = m_text.substr(digits, m_position - digits);
    token.written = m_text.substr(start, m_position - start);
    if (magnitude.find('.') == std::string_view::npos) {
        Integer(token, magnitude);
        return;
    }
    token.kind = MofToken::Kind::Real;
    const bool plain = std::all_of(magnitude.begin(), magnitude.end(), [](char c) {
        return IsDigitByte(c) || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-';
    });
    const std::optional<double> real = plain ? ParseReal(Wide(magnitude)) : std::nullopt;
    if (!real) {
        Fail(start, Quoted(Wide(token.written)) + L" is no number, or too large or small for one");
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
    // So few digits of any base fit, and a division for each takes longer than all else.
    constexpr std::size_t kAlwaysFit = 15;
    const bool mayOverflow = digits.size() > kAlwaysFit;
    for (const char c : digits) {
        const std::optional<unsigned> digit = HexDigit(c);
        if (!digit || *digit >= base) {
            Fail(token.offset, Quoted(Wide(token.written)) + L" is no number");
        }
        if (mayOverflow && token.magnitude > (UINT64_MAX - *digit) / base) {
            Fail(token.offset, L"value " + Wide(token.written) + L" does not fit 64 bits");
        }
        token.magnitude = token.magnitude * base + *digit;
    }
    if (token.negative && token.magnitude > std::uint64_t{1} << 63) {
        Fail(token.offset, L"value " + Wide(token.written) + L" does not fit 64 bits");
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
    for (;;) {
        const std::size_t run = m_position;
        m_position = EndOf(m_text, run, kPlain);
        AppendAscii(text, m_text.substr(run, m_position - run));
        if (Peek() == '"') {
            ++m_position;
            return;
        }
        AppendCharacter(text, LiteralCharacter(start));
    }
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
    token.written = m_text.substr(token.offset, m_position - token.offset);
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

} // namespace quillet::wmi
