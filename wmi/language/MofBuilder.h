// From the small forms of MOF to values and qualifiers of the model.
#pragma once

#include "language/MofParser.h"
#include "language/MofQualifiers.h"

namespace quillet::wmi {

/// Gives what one text writes its types. Everything throws MofError where a form fits no type.
class MofBuilder {
  public:
    /// The target knows the declarations of qualifiers.
    MofBuilder(const MofTarget& target, const MofSource& source) : m_target(target), m_source(source) {}

    /// The value, which takes the texts out of the form.
    Value ValueOf(MofInitialiser& initialiser, CIMTYPE type, std::size_t limit = 0) const;
    /// The qualifiers of an element, which its scope and a word for messages tell. Texts as above.
    Qualifiers QualifiersOf(std::vector<MofQualifierUse>& uses, unsigned scope, const wchar_t* element) const;

  private:
    [[noreturn]] void Fail(std::size_t offset, const std::wstring& message) const {
        throw m_source.Error(offset, message);
    }
    /// One element of the CIM type; nothing for NULL.
    std::optional<Scalar> ScalarOf(MofToken& token, CIMTYPE type) const;
    QualifierDeclaration DeclarationOf(const MofQualifierUse& use, std::wstring_view name) const;
    Value QualifierValue(MofQualifierUse& use, const QualifierDeclaration& declaration) const;
    void Localise(Qualifiers& qualifiers, MofQualifierUse& use, const LocalisedName& name) const;

    const MofTarget& m_target;
    const MofSource& m_source;
};

} // namespace quillet::wmi
