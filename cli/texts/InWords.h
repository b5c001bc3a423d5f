// The provider's numbers in words.
#pragma once

#include "texts/JsonParts.h"
#include "texts/ProviderWords.h"
#include "texts/Text.h"

#include <quillet/client/Flags.h>
#include <quillet/client/Words.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quilletctl {

/// What is shown of a number that has no word.
inline std::string UnknownText(std::int64_t number, const wchar_t* what = L"code") {
    return ToUtf8(quillet::UnknownNumber(number, what));
}

/// What a number of an enumeration means.
template <class Number>
std::string InWords(Number number) {
    const auto code = static_cast<std::int32_t>(number);
    const std::wstring words = Text(number); // found where the enumeration is
    if (!words.empty() && words != quillet::UnknownNumber(code)) {
        return ToUtf8(words);
    }
    const std::string told = ProviderWords::Of(quillet::kValueSource<Number>, code);
    return told.empty() ? UnknownText(code) : told;
}
template <class Bit>
std::string InWords(quillet::Flags<Bit> flags) {
    return ToUtf8(Text(flags));
}

/// What bits mean of which only the provider knows the meaning. @param what one of them is
inline std::vector<std::string> InWords(quillet::Flags<quillet::ProviderBit> bits, const wchar_t* what) {
    std::vector<std::string> texts;
    for (const std::wstring& text : quillet::UnknownBits(bits, what)) {
        texts.push_back(ToUtf8(text));
    }
    return texts;
}

/// A number and what it means.
template <class Number>
Json Coded(Number number) {
    return Coded(static_cast<std::int32_t>(number), InWords(number));
}

} // namespace quilletctl
