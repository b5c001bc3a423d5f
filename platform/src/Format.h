// Wide formatting with the Windows meaning of the conversions.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace quillet::platform {

/// Formats into `buffer`, of which at most `room` characters are written and no terminator; all of the text
/// is counted.
/// @return the length of the whole text.
std::size_t FormatWide(wchar_t* buffer, std::size_t room, const wchar_t* format, va_list arguments);

} // namespace quillet::platform
