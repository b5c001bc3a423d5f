// UTF-8 for messages.
#pragma once

#include <string>
#include <string_view>

namespace quillet {

/// UTF-8 of a text; what is no character becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);

} // namespace quillet
