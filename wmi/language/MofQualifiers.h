// What is known of qualifiers without a declaration: the standard ones, and the locales in their names.
#pragma once

#include <quillet-simulator/Repository.h>

namespace quillet::simulator {

/// The type and flavour of a standard qualifier; nothing for others.
std::optional<Repository::QualifierDeclaration> StandardQualifier(std::wstring_view name);

/// "Values_de_DE" is the German form of "Values".
struct LocalisedName {
    std::wstring_view base;
    std::wstring_view locale;
    std::vector<LCID> languages; ///< empty when the locale is not known
};
/// Nothing when the name does not end in a locale.
std::optional<LocalisedName> SplitLocale(std::wstring_view name);

/// "de_DE" for 0x407; null for a language without a locale name, and for all but the first of the languages
/// that share one.
const wchar_t* LocaleOf(LCID language) noexcept;

} // namespace quillet::simulator
