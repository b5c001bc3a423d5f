// UTF-8, UTF-16 and the host's wide text, which is UTF-32.
#include "Text.h"

#include <cwctype>

namespace quillet::platform {
namespace {

constexpr char32_t kReplacement = 0xfffd;

bool IsCharacter(char32_t code) {
    return code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
}

void Flag(bool* invalid) {
    if (invalid) {
        *invalid = true;
    }
}

} // namespace

std::wstring WideFromUtf8(std::string_view text, bool* invalid) {
    std::wstring wide;
    wide.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i++]);
        if (first < 0x80) {
            wide.push_back(static_cast<wchar_t>(first));
            continue;
        }
        const int tail = first >= 0xf0 && first < 0xf8 ? 3 : first >= 0xe0 ? 2 : first >= 0xc2 ? 1 : 0;
        char32_t code = first & (0x3fu >> tail);
        int taken = 0;
        while (first < 0xf8 && taken < tail && i < text.size() &&
               (static_cast<unsigned char>(text[i]) & 0xc0) == 0x80) {
            code = (code << 6) | (static_cast<unsigned char>(text[i]) & 0x3fu);
            ++taken;
            ++i;
        }
        constexpr char32_t kShortest[] = {0, 0x80, 0x800, 0x10000};
        if (tail == 0 || first >= 0xf8 || taken < tail || code < kShortest[tail] || !IsCharacter(code)) {
            Flag(invalid);
            code = kReplacement;
        }
        wide.push_back(static_cast<wchar_t>(code));
    }
    return wide;
}

std::string Utf8FromWide(std::wstring_view text, bool* invalid) {
    std::string utf8;
    utf8.reserve(text.size());
    const auto put = [&utf8](char32_t byte) { utf8.push_back(static_cast<char>(byte)); };
    for (const wchar_t character : text) {
        auto code = static_cast<char32_t>(character);
        if (!IsCharacter(code)) {
            Flag(invalid);
            code = kReplacement;
        }
        if (code < 0x80) {
            put(code);
        } else if (code < 0x800) {
            put(0xc0 | (code >> 6));
            put(0x80 | (code & 0x3f));
        } else if (code < 0x10000) {
            put(0xe0 | (code >> 12));
            put(0x80 | ((code >> 6) & 0x3f));
            put(0x80 | (code & 0x3f));
        } else {
            put(0xf0 | (code >> 18));
            put(0x80 | ((code >> 12) & 0x3f));
            put(0x80 | ((code >> 6) & 0x3f));
            put(0x80 | (code & 0x3f));
        }
    }
    return utf8;
}

std::wstring WideFromUtf16(std::u16string_view text, bool* invalid) {
    std::wstring wide;
    wide.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (code >= 0xd800 && code < 0xdc00 && i + 1 < text.size() && text[i + 1] >= 0xdc00 &&
            text[i + 1] < 0xe000) {
            code = 0x10000 + ((code - 0xd800) << 10) + (text[++i] - 0xdc00u);
        } else if (!IsCharacter(code)) {
            Flag(invalid);
            code = kReplacement;
        }
        wide.push_back(static_cast<wchar_t>(code));
    }
    return wide;
}

wchar_t FoldCase(wchar_t character) noexcept {
    const auto code = static_cast<char32_t>(character);
    if (code < 0x80) {
        return code >= U'A' && code <= U'Z' ? static_cast<wchar_t>(code + 32) : character;
    }
    if ((code >= 0xc0 && code <= 0xde && code != 0xd7) || (code >= 0x391 && code <= 0x3a9) ||
        (code >= 0x410 && code <= 0x42f)) {
        return static_cast<wchar_t>(code + 32);
    }
    if (code >= 0x400 && code <= 0x40f) {
        return static_cast<wchar_t>(code + 80);
    }
    return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(character)));
}

std::wstring FoldCase(std::wstring_view text) {
    std::wstring folded(text);
    for (wchar_t& character : folded) {
        character = FoldCase(character);
    }
    return folded;
}

} // namespace quillet::platform
