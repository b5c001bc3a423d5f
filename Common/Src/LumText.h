// Small text functions of this folder: UTF-8 and comparison of host and process names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The most bytes that one wchar_t can become.
inline constexpr std::size_t kMaxUtf8PerCharacter = 4;

/// Writes `length` characters as UTF-8 and returns the number of bytes. Whatever is no character (half a
/// surrogate pair, a value beyond Unicode) becomes U+FFFD, so that no text is ever refused.
/// @param target room for `length * kMaxUtf8PerCharacter` bytes; nothing is put behind the text
std::size_t ToUtf8(const wchar_t* text, std::size_t length, char* target) noexcept;
std::string ToUtf8(std::wstring_view text);

/// Compares names without regard to the case of ASCII letters: the names of programs that are told apart here
/// have no others, and the answer must not depend on the locale that the client has set.
bool EqualsIgnoringCase(std::wstring_view left, std::wstring_view right) noexcept;
