// The small forms of MOF, as they are written: names, types, initialisers and qualifiers.
#pragma once

#include "language/MofFiles.h"

namespace quillet::wmi {

/// An initialiser as written; its type comes from what it initialises.
struct MofInitialiser {
    std::size_t offset = 0;
    bool isArray = false;
    std::vector<MofToken> items; ///< one unless it is an array
};

/// A qualifier as written.
struct MofQualifierUse {
    std::size_t offset = 0;
    std::wstring name;
    std::optional<MofInitialiser> value;
    LONG set = 0;         ///< flavour bits stated
    LONG cleared = 0;     ///< flavour bits denied
    bool amended = false; ///< Translatable or Amended
};

/// Reads one text. Everything throws MofError where the text is another.
class MofParser {
  protected:
    explicit MofParser(std::shared_ptr<const MofSource> source)
        : m_source(std::move(source)), m_lexer(*m_source) {}
    ~MofParser() = default;

    [[noreturn]] void Fail(std::size_t offset, const std::wstring& message) const;
    [[noreturn]] void Expected(const std::wstring& what) const;
    MofPlace Here(std::size_t offset) const { return {m_source, offset}; }
    const MofSource& Source() const noexcept { return *m_source; }

    /// The token that is not yet taken.
    const MofToken& Token() const noexcept { return m_token; }
    void Advance() { m_lexer.Next(m_token); }
    MofToken Take();
    bool Accept(char symbol);
    bool Accept(std::wstring_view keyword);
    void Require(char symbol);
    std::wstring Name(const wchar_t* what);

    MofInitialiser Initialiser(bool withAliases);
    /// The same into one that is not needed any more, whose memory then serves again.
    void ReadInitialiser(bool withAliases, MofInitialiser& initialiser);
    std::vector<MofQualifierUse> QualifierList();
    void Flavor(LONG& set, LONG& cleared);
    unsigned Scopes();

    /// The type of that name; references and void are none.
    static std::optional<CIMTYPE> TypeOf(std::wstring_view name);
    CIMTYPE DataType();
    /// The flag of an array, and its size where one is given.
    CIMTYPE ArraySuffix(std::size_t& limit);

  private:
    MofToken Item(bool withAliases);
    void UseFlavor(MofQualifierUse& use);

    std::shared_ptr<const MofSource> m_source;
    MofLexer m_lexer;
    MofToken m_token;
};

} // namespace quillet::wmi
