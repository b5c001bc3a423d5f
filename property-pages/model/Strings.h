// The pages' own words, in the languages that the provider speaks as well.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quillet::pages {

/// The texts of Strings.inc. A text's number is its line there, for the resource script as well.
enum class TextId : unsigned {
#define QUILLET_TEXT(name, english, german, french) name = __LINE__,
#include "resources/Strings.inc"
#undef QUILLET_TEXT
};

/// The languages that there are texts in.
enum class Language { English, German, French };

/// Chooses the language of all texts from now on. Call it before the first window is made.
void Speak(Language language) noexcept;
/// The language that was chosen.
Language SpokenLanguage() noexcept;
/// The user's language where there are texts in it, else English.
Language UserLanguage() noexcept;

/// A text in the language that was chosen.
std::wstring Say(TextId id);
/// The same with the arguments in the place of %1 to %9.
std::wstring Say(TextId id, std::initializer_list<std::wstring_view> arguments);

} // namespace quillet::pages
