// Escaping texts, and guessing how wide they are.
#include "commands/report/Markup.h"

#include "texts/Text.h"

#include <algorithm>

namespace quilletctl {

namespace {

constexpr std::size_t kLongestText = 400;
/// Of the widest usual font, in hundredths of its size.
constexpr int kNarrow = 40;
constexpr int kUsual = 64;
constexpr int kWide = 84;
constexpr int kWidest = 101;

int WidthOfAscii(char32_t character) {
    constexpr std::string_view kNarrowOnes = "iIjlt.,:;'!|()[]/\\ -f";
    constexpr std::string_view kWidestOnes = "WMm@%";
    const char letter = static_cast<char>(character);
    if (kNarrowOnes.find(letter) != std::string_view::npos) {
        return kNarrow;
    }
    if (kWidestOnes.find(letter) != std::string_view::npos) {
        return kWidest;
    }
    const bool isWide = (letter >= 'A' && letter <= 'Z') ||
                        std::string_view("w#+=<>~&^").find(letter) != std::string_view::npos;
    return isWide ? kWide : kUsual;
}

int GlyphWidth(char32_t character) {
    constexpr char32_t kLatinEnd = 0x250;
    if (character < 0x80) {
        return WidthOfAscii(character);
    }
    return character < kLatinEnd ? kWide : kWidest;
}

int GlyphWidth(std::u32string_view characters) {
    int width = 0;
    for (const char32_t character : characters) {
        width += GlyphWidth(character);
    }
    return width;
}

} // namespace

std::string Escaped(std::string_view utf8) {
    std::string escaped;
    for (const char each : Shortened(Printable(utf8), kLongestText)) {
        switch (each) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += each;
        }
    }
    // The two characters of three bytes that Unicode has and XML has not.
    for (const char* none : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (std::size_t at = escaped.find(none); at != std::string::npos; at = escaped.find(none, at)) {
            escaped.replace(at, 3, "\xEF\xBF\xBD");
        }
    }
    return escaped;
}

int EstimatedWidth(std::string_view utf8) {
    return GlyphWidth(Characters(utf8));
}

std::string ShortenedTo(std::string_view utf8, int width) {
    const std::string text = Shortened(Printable(utf8), kLongestText);
    // Columns of a terminal are a measure, too: fewer and fewer of them until it fits.
    std::string shortened = text;
    for (std::size_t columns = DisplayWidth(text); EstimatedWidth(shortened) > width && columns > 0;
         --columns) {
        shortened = Shortened(text, columns - 1);
    }
    return shortened;
}

} // namespace quilletctl
