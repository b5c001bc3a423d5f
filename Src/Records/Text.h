// Texts of settings: numbers in decimal, and comparison without regard to case.
#pragma once

#include <windows.h>

#include <string>

namespace quillet {

/// The number that a text begins with, read as the C run-time's `_wtol` reads it: white space, a sign,
/// digits, and whatever follows is ignored; 0 without a digit, the nearest 32-bit number beyond the range.
/// Written out because the run-time libraries differ beyond the range, and a `long` is not 32 bits on every
/// host.
LONG ParseDecimal(const std::wstring& rwsText) noexcept;

/// The number in decimal.
std::wstring FormatDecimal(LONG lValue);

/// Whether the texts are equal but for the case of ASCII letters. Other letters count as they are: keywords
/// have none, and a look-up must not depend on the locale that the process happens to have.
bool EqualsIgnoringCase(const std::wstring& rwsLeft, const std::wstring& rwsRight) noexcept;

} // namespace quillet
