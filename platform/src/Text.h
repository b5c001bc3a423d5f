// UTF-8, UTF-16 and the host's wide text.
#pragma once

#include <string>
#include <string_view>

namespace quillet::platform {

/// Decodes UTF-8; each ill-formed part becomes U+FFFD and sets `invalid`, if that is given.
std::wstring WideFromUtf8(std::string_view text, bool* invalid = nullptr);
/// Encodes as UTF-8; a character that is none becomes U+FFFD and sets `invalid`, if that is given.
std::string Utf8FromWide(std::wstring_view text, bool* invalid = nullptr);
/// Decodes UTF-16; a half of a pair becomes U+FFFD and sets `invalid`, if that is given.
std::wstring WideFromUtf16(std::u16string_view text, bool* invalid = nullptr);

/// Lower case for comparisons without regard to case, independent of the locale for Latin, Greek and
/// Cyrillic letters.
wchar_t FoldCase(wchar_t character) noexcept;
std::wstring FoldCase(std::wstring_view text);

} // namespace quillet::platform
