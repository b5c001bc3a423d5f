// Whole numbers in texts.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quilletctl {

/// The number that a text is, from its first character to its last; nothing where it is none.
template <class Number = std::int32_t>
std::optional<Number> NumberIn(std::string_view text) {
    Number number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() ? std::optional(number)
                                                                           : std::nullopt;
}

} // namespace quilletctl
