// The provider's numbers in words.
#pragma once

#include "texts/JsonParts.h"
#include "texts/Text.h"

#include <quillet/client/Flags.h>

#include <cstdint>
#include <string>

namespace quilletctl {

/// What a number of an enumeration means; one that has no word is "code 7" or the number itself.
template <class Number>
std::string InWords(Number number) {
    const std::wstring words = Text(number); // found where the enumeration is
    return words.empty() ? std::to_string(static_cast<std::int32_t>(number)) : ToUtf8(words);
}
template <class Bit>
std::string InWords(quillet::Flags<Bit> flags) {
    return ToUtf8(Text(flags));
}

/// A number and what it means.
template <class Number>
Json Coded(Number number) {
    return Coded(static_cast<std::int32_t>(number), InWords(number));
}

} // namespace quilletctl
