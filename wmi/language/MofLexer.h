// The words of a MOF text.
#pragma once

#include <quillet-wmi/Mof.h>

namespace quillet::wmi {

/// One MOF text with its name, for positions in messages.
class MofSource {
  public:
    /// Takes a byte order mark off. Throws MofError when the text is not UTF-8.
    MofSource(std::string fileName, std::string_view text);

    const std::string& FileName() const noexcept { return m_fileName; }
    std::string_view Text() const noexcept { return m_text; }
    /// An error at a byte offset, told as line and column (in characters).
    MofError Error(std::size_t offset, const std::wstring& message) const;

  private:
    std::string m_fileName;
    std::string m_text;
};

struct MofToken {
    enum class Kind { End, Identifier, Alias, Integer, Real, String, Character, Pragma, Symbol };

    Kind kind = Kind::End;
    std::size_t offset = 0;
    std::wstring text;        ///< identifiers, aliases (without $), strings
    std::string_view written; ///< numbers and characters, as they stand in the source
    bool negative = false;
    std::uint64_t magnitude = 0; ///< of an integer, or the code of a character
    double real = 0;
    char symbol = '\0';

    bool Is(char wanted) const noexcept { return kind == Kind::Symbol && symbol == wanted; }
    /// Whether this is the keyword (MOF knows no case).
    bool Is(std::wstring_view keyword) const noexcept {
        return kind == Kind::Identifier && SameName(text, keyword);
    }
};

class MofLexer {
  public:
    explicit MofLexer(const MofSource& source) : m_source(source), m_text(source.Text()) {}
    /// Reads the next token into one that is not needed any more, whose memory then serves again; adjacent
    /// string literals come as one. Throws MofError.
    void Next(MofToken& token);

  private:
    [[noreturn]] void Fail(std::size_t offset, const std::wstring& message) const;
    bool AtEnd() const noexcept { return m_position >= m_text.size(); }
    char Peek(std::size_t ahead = 0) const noexcept {
        return m_position + ahead < m_text.size() ? m_text[m_position + ahead] : '\0';
    }
    void SkipBlanks();
    void Identifier(std::wstring& text);
    void Number(MofToken& token);
    void Integer(MofToken& token, std::string_view digits) const;
    void String(MofToken& token);
    void Literal(std::wstring& text);
    void Character(MofToken& token);
    /// One character of a literal, escapes read.
    char32_t LiteralCharacter(std::size_t literalStart);

    const MofSource& m_source;
    std::string_view m_text;
    std::size_t m_position = 0;
};

} // namespace quillet::wmi
