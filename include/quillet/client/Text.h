// UTF-8, for messages and documents.
#pragma once

#include <string>
#include <string_view>

namespace quillet {

/// UTF-8 of a text; what is no character becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
/// The text of UTF-8; what is no character becomes U+FFFD.
std::wstring FromUtf8(std::string_view utf8);

} // namespace quillet
