// Text that must come out alike on every host and in every locale: case folding and UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::wmi {

/// The lower-case form of a character; other characters unchanged. A table of its own: what the C library
/// folds depends on the locale of the process.
wchar_t FoldCase(wchar_t character) noexcept;
/// Appends a number in decimal digits, which the C library's formats take many times as long for.
void AppendNumber(std::wstring& text, std::uint64_t number);
void AppendNumber(std::wstring& text, std::int64_t number);
/// A text with every character folded; for keys of look-ups without regard to case.
std::wstring Folded(std::wstring_view text);
/// Three-way comparison of two texts without regard to case.
int CompareFolded(std::wstring_view left, std::wstring_view right) noexcept;

/// Whether it is a decimal digit.
constexpr bool IsDigit(wchar_t c) noexcept {
    return c >= L'0' && c <= L'9';
}

/// A name as messages show it.
inline std::wstring Quoted(std::wstring_view name) {
    return L"'" + std::wstring(name) + L"'";
}

/// Appends a Unicode character; on hosts with 16-bit characters those above U+FFFF become two.
void AppendCharacter(std::wstring& text, char32_t character);
/// On hosts with 32-bit characters, joins surrogate pairs (from two \x escapes, say) into the characters
/// that they mean; elsewhere the text is right as it is.
void JoinSurrogates(std::wstring& text);

/// UTF-8 of a text. What is no character (a lone surrogate) becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
/// Decodes UTF-8; nothing when it is malformed (overlong forms and surrogates included).
std::optional<std::wstring> FromUtf8(std::string_view text);
/// Decodes one character at `position` (which must be inside the text) and moves past it; nothing when the
/// bytes there are malformed.
std::optional<char32_t> DecodeUtf8(std::string_view text, std::size_t& position) noexcept;

/// The number that a text says (decimal, with an optional minus sign); nothing when it says none or when
/// it does not fit 64 bits.
struct TextNumber {
    bool negative = false;       ///< whether a minus sign stands before it
    std::uint64_t magnitude = 0; ///< the digits
};
std::optional<TextNumber> ParseDecimal(std::wstring_view text) noexcept;

/// The shortest decimal text that reads back as the same number; always with a point. Any locale.
std::wstring RealText(double number);
/// Reads a decimal real number ("-1.5", "2", "1.0e10"); nothing when the text is none or out of range.
std::optional<double> ParseReal(std::wstring_view text);

} // namespace quillet::wmi
