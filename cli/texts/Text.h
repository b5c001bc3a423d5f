// Text for the outside world: UTF-8, and how many columns of a terminal it takes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quilletctl {

/// UTF-8 of a wide text. What is no character (a lone surrogate) becomes U+FFFD, so that the result is always
/// valid.
std::string ToUtf8(std::wstring_view text);
/// The wide form of a UTF-8 text; malformed bytes become U+FFFD.
std::wstring ToWide(std::string_view utf8);
/// The characters of a UTF-8 text; malformed bytes become U+FFFD.
std::u32string Characters(std::string_view utf8);

/// The same, with ASCII letters in one case.
std::u32string Folded(std::string_view utf8);

/// Whether every byte belongs to a character; no copy of the text is made.
bool IsUtf8(std::string_view text) noexcept;
/// Whether no unit is a surrogate by itself or beyond Unicode; no copy of the text is made.
bool IsWellFormed(std::wstring_view text) noexcept;

/// A flag as people read it.
const char* YesOrNo(bool flag) noexcept;

/// Whether two texts are equal but for the case of ASCII letters, as the provider compares its names.
bool SameIgnoringCase(std::string_view left, std::string_view right) noexcept;

/// The columns that a text takes in a terminal: 2 for an East Asian wide character, 0 for a combining one.
std::size_t DisplayWidth(std::string_view utf8);
/// The text without characters that would steer the terminal (controls, escapes, changes of direction): each
/// becomes U+FFFD. Names come from a provider and are not to be trusted with the screen.
std::string Printable(std::string_view utf8);
/// The text cut to so many columns, with "…" in its middle where something was cut: names differ at their
/// ends.
std::string Shortened(std::string_view utf8, std::size_t columns);

} // namespace quilletctl
