// From the text of a query to its words.
#include "language/WqlLexer.h"

#include <quillet-wmi/Text.h>

namespace quillet::wmi {

namespace {

constexpr bool IsBlank(wchar_t c) noexcept {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

std::wstring_view Trimmed(std::wstring_view text) noexcept {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

WqlToken WqlLexer::Next() {
    SkipBlanks();
    WqlToken token;
    token.position = m_position;
    if (m_position == m_text.size()) {
        return token;
    }
    const wchar_t c = m_text[m_position];
    if (c == L'"' || c == L'\'') {
        Quoted(token);
    } else if (IsDigit(c) || ((c == L'-' || c == L'+' || c == L'.') && IsDigit(Peek(1)))) {
        Number(token);
    } else if (IsIdentifierStart(c)) {
        token.kind = WqlToken::Kind::Word;
        while (m_position < m_text.size() && IsIdentifierCharacter(m_text[m_position])) {
            ++m_position;
        }
    } else {
        token.kind = WqlToken::Kind::Symbol;
        Symbol();
    }
    if (token.kind != WqlToken::Kind::Text) {
        token.source = m_text.substr(token.position, m_position - token.position);
    }
    return token;
}

std::wstring_view WqlLexer::Braces() {
    SkipBlanks();
    const std::size_t start = m_position;
    if (m_position == m_text.size() || m_text[m_position] != L'{') {
        throw WqlFailure{m_position, L"an object path in braces was expected"};
    }
    wchar_t quote = L'\0';
    for (++m_position; m_position < m_text.size(); ++m_position) {
        const wchar_t c = m_text[m_position];
        if (quote != L'\0') {
            if (c == L'\\') {
                ++m_position;
            } else if (c == quote) {
                quote = L'\0';
            }
        } else if (c == L'"' || c == L'\'') {
            quote = c;
        } else if (c == L'}') {
            ++m_position;
            return Trimmed(m_text.substr(start + 1, m_position - start - 2));
        }
    }
    throw WqlFailure{start, L"the braces are not closed"};
}

void WqlLexer::SkipBlanks() noexcept {
    while (m_position < m_text.size() && IsBlank(m_text[m_position])) {
        ++m_position;
    }
}

void WqlLexer::Quoted(WqlToken& token) {
    token.kind = WqlToken::Kind::Text;
    const wchar_t quote = m_text[m_position++];
    const std::size_t start = m_position;
    for (; m_position < m_text.size(); ++m_position) {
        const wchar_t c = m_text[m_position];
        if (c == quote) {
            token.source = m_text.substr(start, m_position - start);
            ++m_position;
            return;
        }
        // A backslash that escapes nothing stands for itself.
        const wchar_t next = Peek(1);
        if (c == L'\\' && (next == L'\\' || next == L'"' || next == L'\'')) {
            ++m_position;
            token.text.push_back(next);
        } else {
            token.text.push_back(c);
        }
    }
    throw WqlFailure{token.position, L"the text in quotes does not end"};
}

void WqlLexer::Number(WqlToken& token) {
    token.kind = WqlToken::Kind::Number;
    const std::size_t start = m_position;
    if (m_text[m_position] == L'-' || m_text[m_position] == L'+') {
        ++m_position;
    }
    const std::size_t digits = m_position;
    bool real = false;
    while (m_position < m_text.size()) {
        const wchar_t c = m_text[m_position];
        const bool exponentSign = (c == L'-' || c == L'+') && real &&
                                  (m_text[m_position - 1] == L'e' || m_text[m_position - 1] == L'E');
        if (c == L'.' || c == L'e' || c == L'E') {
            real = true;
        } else if (!IsDigit(c) && !exponentSign) {
            break;
        }
        ++m_position;
    }
    if (m_position < m_text.size() && IsIdentifierCharacter(m_text[m_position])) {
        throw WqlFailure{m_position, L"this is no number"};
    }
    const std::wstring_view magnitude = m_text.substr(digits, m_position - digits);
    const bool negative = m_text[start] == L'-';
    if (real) {
        const std::optional<double> number = ParseReal(magnitude);
        if (!number) {
            throw WqlFailure{start, L"this is no number"};
        }
        token.number = negative ? -*number : *number;
        return;
    }
    const std::optional<TextNumber> number = ParseDecimal(magnitude);
    constexpr std::uint64_t kSmallest = std::uint64_t{1} << 63;
    if (!number || (negative && number->magnitude > kSmallest)) {
        throw WqlFailure{start, L"the number does not fit 64 bits"};
    }
    if (negative) {
        token.number = static_cast<std::int64_t>(0 - number->magnitude);
    } else if (number->magnitude < kSmallest) {
        token.number = static_cast<std::int64_t>(number->magnitude);
    } else {
        token.number = number->magnitude;
    }
}

void WqlLexer::Symbol() {
    const wchar_t c = m_text[m_position];
    const wchar_t next = Peek(1);
    switch (c) {
    case L'<':
        m_position += next == L'=' || next == L'>' ? 2 : 1;
        return;
    case L'>':
        m_position += next == L'=' ? 2 : 1;
        return;
    case L'!':
        if (next != L'=') {
            throw WqlFailure{m_position, L"'!' is only known in '!='"};
        }
        m_position += 2;
        return;
    case L'=':
    case L'(':
    case L')':
    case L',':
    case L'*':
        ++m_position;
        return;
    default:
        throw WqlFailure{m_position, L"this character has no place in a query"};
    }
}

} // namespace quillet::wmi
