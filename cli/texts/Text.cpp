// UTF-8 and column widths.
#include "texts/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace quilletctl {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Range {
    char32_t first;
    char32_t last;
};

/// Characters that take no column of their own, in order.
constexpr std::array kZeroWidth{
    Range{0x0300, 0x036F},   Range{0x0483, 0x0489}, Range{0x0591, 0x05BD},   Range{0x05BF, 0x05BF},
    Range{0x05C1, 0x05C2},   Range{0x05C4, 0x05C5}, Range{0x05C7, 0x05C7},   Range{0x0610, 0x061A},
    Range{0x064B, 0x065F},   Range{0x0670, 0x0670}, Range{0x06D6, 0x06DC},   Range{0x06DF, 0x06E4},
    Range{0x06E7, 0x06E8},   Range{0x06EA, 0x06ED}, Range{0x0711, 0x0711},   Range{0x0730, 0x074A},
    Range{0x07A6, 0x07B0},   Range{0x0900, 0x0902}, Range{0x093A, 0x093A},   Range{0x093C, 0x093C},
    Range{0x0941, 0x0948},   Range{0x094D, 0x094D}, Range{0x0951, 0x0957},   Range{0x0962, 0x0963},
    Range{0x0E31, 0x0E31},   Range{0x0E34, 0x0E3A}, Range{0x0E47, 0x0E4E},   Range{0x1160, 0x11FF},
    Range{0x1AB0, 0x1ACE},   Range{0x1DC0, 0x1DFF}, Range{0x200B, 0x200D},   Range{0x2060, 0x2064},
    Range{0x20D0, 0x20F0},   Range{0x302A, 0x302D}, Range{0x3099, 0x309A},   Range{0xFE00, 0xFE0F},
    Range{0xFE20, 0xFE2F},   Range{0xFEFF, 0xFEFF}, Range{0x1F3FB, 0x1F3FF}, Range{0xE0020, 0xE007F},
    Range{0xE0100, 0xE01EF},
};

/// Characters that take two columns, in order.
constexpr std::array kDoubleWidth{
    Range{0x1100, 0x115F},   Range{0x231A, 0x231B},   Range{0x2329, 0x232A},   Range{0x23E9, 0x23EC},
    Range{0x2614, 0x2615},   Range{0x26A1, 0x26A1},   Range{0x2705, 0x2705},   Range{0x274C, 0x274C},
    Range{0x2E80, 0x303E},   Range{0x3041, 0x3247},   Range{0x3250, 0x4DBF},   Range{0x4E00, 0xA4CF},
    Range{0xA960, 0xA97C},   Range{0xAC00, 0xD7A3},   Range{0xF900, 0xFAFF},   Range{0xFE10, 0xFE19},
    Range{0xFE30, 0xFE6F},   Range{0xFF01, 0xFF60},   Range{0xFFE0, 0xFFE6},   Range{0x16FE0, 0x18CFF},
    Range{0x1B000, 0x1B2FF}, Range{0x1F300, 0x1F64F}, Range{0x1F680, 0x1F6FF}, Range{0x1F900, 0x1F9FF},
    Range{0x1FA70, 0x1FAFF}, Range{0x20000, 0x2FFFD}, Range{0x30000, 0x3FFFD},
};

template <std::size_t N>
bool Contains(const std::array<Range, N>& ranges, char32_t character) {
    const auto range = std::partition_point(ranges.begin(), ranges.end(),
                                            [=](const Range& each) { return each.last < character; });
    return range != ranges.end() && range->first <= character;
}

constexpr bool IsSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

constexpr bool IsCharacter(char32_t unit) {
    return unit <= 0x10FFFF && !IsSurrogate(unit);
}

void AppendUtf8(std::string& utf8, char32_t character) {
    const auto append = [&utf8](char32_t byte) { utf8.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | (character >> 6));
        append(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        append(0xE0 | (character >> 12));
        append(0x80 | ((character >> 6) & 0x3F));
        append(0x80 | (character & 0x3F));
    } else {
        append(0xF0 | (character >> 18));
        append(0x80 | ((character >> 12) & 0x3F));
        append(0x80 | ((character >> 6) & 0x3F));
        append(0x80 | (character & 0x3F));
    }
}

std::string Utf8Of(std::u32string_view characters) {
    std::string utf8;
    for (const char32_t character : characters) {
        AppendUtf8(utf8, character);
    }
    return utf8;
}

void AppendWide(std::wstring& text, char32_t character) {
    if (sizeof(wchar_t) == 2 && character > 0xFFFF) {
        const char32_t offset = character - 0x10000;
        text.push_back(static_cast<wchar_t>(0xD800 + (offset >> 10)));
        text.push_back(static_cast<wchar_t>(0xDC00 + (offset & 0x3FF)));
    } else {
        text.push_back(static_cast<wchar_t>(character));
    }
}

/// Decodes the character at the position and moves past it; past one byte where it is malformed.
char32_t NextCharacter(std::string_view utf8, std::size_t& position) noexcept {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(utf8[at]); };
    const unsigned char lead = byte(position);
    const std::size_t start = position++;
    if (lead < 0x80) {
        return lead;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || utf8.size() - start < length) {
        return kReplacement;
    }
    char32_t character = lead & (0xFFU >> (length + 1));
    for (std::size_t at = start + 1; at < start + length; ++at) {
        if ((byte(at) & 0xC0) != 0x80) {
            return kReplacement;
        }
        character = (character << 6) | (byte(at) & 0x3F);
    }
    constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    if (character < kSmallest[length] || !IsCharacter(character)) {
        return kReplacement;
    }
    position = start + length;
    return character;
}

/// The character at the position, moving past it; a surrogate by itself as it is.
char32_t NextCharacter(std::wstring_view text, std::size_t& position) noexcept {
    // Through the unsigned number of the same size: wchar_t is signed on some hosts.
    const auto unit = static_cast<char32_t>(text[position++]);
    if (unit >= 0xD800 && unit <= 0xDBFF && position < text.size()) {
        const auto low = static_cast<char32_t>(text[position]);
        if (low >= 0xDC00 && low <= 0xDFFF) {
            ++position;
            return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        }
    }
    return unit;
}

std::size_t WidthOf(char32_t character) {
    if (character < 0x300) {
        return 1;
    }
    return Contains(kZeroWidth, character) ? 0 : Contains(kDoubleWidth, character) ? 2 : 1;
}

bool Steers(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) ||
           (character >= 0x200E && character <= 0x200F) || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

} // namespace

std::string ToUtf8(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t character = NextCharacter(text, i);
        AppendUtf8(utf8, IsCharacter(character) ? character : kReplacement);
    }
    return utf8;
}

bool IsUtf8(std::string_view text) noexcept {
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        // The character itself takes three bytes.
        if (NextCharacter(text, position) == kReplacement && position == start + 1) {
            return false;
        }
    }
    return true;
}

bool IsWellFormed(std::wstring_view text) noexcept {
    for (std::size_t position = 0; position < text.size();) {
        if (!IsCharacter(NextCharacter(text, position))) {
            return false;
        }
    }
    return true;
}

std::u32string Characters(std::string_view utf8) {
    std::u32string characters;
    characters.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();) {
        characters.push_back(NextCharacter(utf8, position));
    }
    return characters;
}

std::u32string Folded(std::string_view utf8) {
    std::u32string characters = Characters(utf8);
    for (char32_t& character : characters) {
        if (character >= U'A' && character <= U'Z') {
            character += U'a' - U'A';
        }
    }
    return characters;
}

std::wstring ToWide(std::string_view utf8) {
    std::wstring text;
    text.reserve(utf8.size());
    for (const char32_t character : Characters(utf8)) {
        AppendWide(text, character);
    }
    return text;
}

const char* YesOrNo(bool flag) noexcept {
    return flag ? "yes" : "no";
}

bool SameIgnoringCase(std::string_view left, std::string_view right) noexcept {
    const auto fold = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [fold](char a, char b) { return fold(a) == fold(b); });
}

std::size_t DisplayWidth(std::string_view utf8) {
    std::size_t width = 0;
    for (const char32_t character : Characters(utf8)) {
        width += WidthOf(character);
    }
    return width;
}

std::string Printable(std::string_view utf8) {
    std::string printable;
    printable.reserve(utf8.size());
    for (const char32_t character : Characters(utf8)) {
        AppendUtf8(printable, Steers(character) ? kReplacement : character);
    }
    return printable;
}

std::string Shortened(std::string_view utf8, std::size_t columns) {
    if (DisplayWidth(utf8) <= columns) {
        return std::string(utf8);
    }
    const std::u32string characters = Characters(utf8);
    const std::size_t room = columns > 0 ? columns - 1 : 0; // beside the ellipsis
    std::string beginning;
    std::size_t width = 0;
    for (const char32_t character : characters) {
        if (width + WidthOf(character) > (room + 1) / 2) {
            break;
        }
        width += WidthOf(character);
        AppendUtf8(beginning, character);
    }
    std::size_t end = characters.size();
    while (end > 0 && width + WidthOf(characters[end - 1]) <= room) {
        width += WidthOf(characters[--end]);
    }
    // What combines with a character that is gone would sit on the ellipsis.
    while (end < characters.size() && WidthOf(characters[end]) == 0) {
        ++end;
    }
    AppendUtf8(beginning, 0x2026);
    return beginning + Utf8Of(std::u32string_view(characters).substr(end));
}

} // namespace quilletctl
