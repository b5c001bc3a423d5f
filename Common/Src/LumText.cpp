// UTF-8 for both widths of wchar_t: UTF-16 on Windows, UTF-32 elsewhere.
#include "LumText.h"

#include <algorithm>

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr bool kUtf16 = sizeof(wchar_t) == 2;

constexpr bool IsHighSurrogate(char32_t unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// How many characters are looked at together.
constexpr std::size_t kBlock = 16;

bool IsAscii(const wchar_t* block) noexcept {
    char32_t all = 0;
    for (std::size_t place = 0; place < kBlock; ++place) {
        all |= static_cast<char32_t>(block[place]);
    }
    return all < 0x80;
}

/// The character at `index`, which is moved behind it.
char32_t NextCharacter(const wchar_t* text, std::size_t length, std::size_t& index) noexcept {
    const auto unit = static_cast<char32_t>(text[index++]);
    if constexpr (kUtf16) {
        if (IsHighSurrogate(unit) && index < length) {
            const auto next = static_cast<char32_t>(text[index]);
            if (IsLowSurrogate(next)) {
                ++index;
                return 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
            }
        }
    }
    return IsHighSurrogate(unit) || IsLowSurrogate(unit) || unit > 0x10FFFF ? kReplacement : unit;
}

char* PutUtf8(char32_t character, char* target) noexcept {
    const auto tail = [character](unsigned shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        *target++ = static_cast<char>(character);
    } else if (character < 0x800) {
        *target++ = static_cast<char>(0xC0 | (character >> 6));
        *target++ = tail(0);
    } else if (character < 0x10000) {
        *target++ = static_cast<char>(0xE0 | (character >> 12));
        *target++ = tail(6);
        *target++ = tail(0);
    } else {
        *target++ = static_cast<char>(0xF0 | (character >> 18));
        *target++ = tail(12);
        *target++ = tail(6);
        *target++ = tail(0);
    }
    return target;
}

constexpr wchar_t Lower(wchar_t character) noexcept {
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a') : character;
}

} // namespace

std::size_t ToUtf8(const wchar_t* text, std::size_t length, char* target) noexcept {
    char* end = target;
    std::size_t index = 0;
    while (index < length) {
        // Trace lines are ASCII but for names: a block at a time, which compilers turn into a few
        // instructions.
        for (; length - index >= kBlock && IsAscii(text + index); index += kBlock) {
            for (std::size_t place = 0; place < kBlock; ++place) {
                end[place] = static_cast<char>(text[index + place]);
            }
            end += kBlock;
        }
        const std::size_t blockEnd = std::min(length, index + kBlock);
        while (index < blockEnd) {
            end = PutUtf8(NextCharacter(text, length, index), end);
        }
    }
    return static_cast<std::size_t>(end - target);
}

std::string ToUtf8(std::wstring_view text) {
    std::string bytes(text.size() * kMaxUtf8PerCharacter, '\0');
    bytes.resize(ToUtf8(text.data(), text.size(), bytes.data()));
    return bytes;
}

bool EqualsIgnoringCase(std::wstring_view left, std::wstring_view right) noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wchar_t a, wchar_t b) { return Lower(a) == Lower(b); });
}
