// The words of a query.
#pragma once

#include <quillet-wmi/Model.h>

namespace quillet::wmi {

struct WqlToken {
    enum class Kind { End, Word, Text, Number, Symbol };
    Kind kind = Kind::End;
    std::size_t position = 0;
    std::wstring_view source; ///< as written; without the quotes for a text
    std::wstring text;        ///< of a text, escapes read
    Scalar number;
};

/// Thrown while a query is read; ParseWql turns it into its result.
struct WqlFailure {
    std::size_t position;
    std::wstring message;
};

class WqlLexer {
  public:
    explicit WqlLexer(std::wstring_view text) : m_text(text) {}

    /// The next token. Throws WqlFailure.
    WqlToken Next();
    /// The text in braces that comes next, without the braces; quotes inside protect braces.
    std::wstring_view Braces();

  private:
    wchar_t Peek(std::size_t ahead) const noexcept {
        return m_position + ahead < m_text.size() ? m_text[m_position + ahead] : L'\0';
    }
    void SkipBlanks() noexcept;
    void Quoted(WqlToken& token);
    void Number(WqlToken& token);
    void Symbol();

    std::wstring_view m_text;
    std::size_t m_position = 0;
};

} // namespace quillet::wmi
