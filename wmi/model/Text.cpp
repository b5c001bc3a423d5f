// Case folding, UTF-8 and numbers as text, alike on every host and in every locale.
#include <quillet-wmi/Text.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace quillet::wmi {

namespace {

constexpr bool IsHighSurrogate(char32_t c) noexcept {
    return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t c) noexcept {
    return c >= 0xDC00 && c <= 0xDFFF;
}
constexpr char32_t kReplacement = 0xFFFD;

constexpr char32_t Fold(char32_t c) noexcept {
    if (c < 0x80) {
        return c >= U'A' && c <= U'Z' ? c + 32 : c;
    }
    if (c < 0x100) { // Latin-1, without the multiplication sign among the letters
        return c >= 0xC0 && c <= 0xDE && c != 0xD7 ? c + 32 : c;
    }
    if (c < 0x180) { // Latin Extended-A: pairs, upper case first; on odd numbers in two stretches
        if (c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) {
            return c;
        }
        if (c == 0x178) {
            return 0xFF;
        }
        const bool upperIsOdd = (c >= 0x139 && c <= 0x148) || c >= 0x179;
        return (c % 2 == 1) == upperIsOdd ? c + 1 : c;
    }
    if (c >= 0x386 && c <= 0x3AB) { // Greek
        switch (c) {
        case 0x386:
            return 0x3AC;
        case 0x388:
        case 0x389:
        case 0x38A:
            return c + 37;
        case 0x38C:
            return 0x3CC;
        case 0x38E:
        case 0x38F:
            return c + 63;
        default:
            return c >= 0x391 && c != 0x3A2 ? c + 32 : c;
        }
    }
    if (c >= 0x400 && c <= 0x42F) { // Cyrillic
        return c < 0x410 ? c + 80 : c + 32;
    }
    if (c >= 0xFF21 && c <= 0xFF3A) { // full-width Latin
        return c + 32;
    }
    return c;
}

char32_t Unsigned(wchar_t c) noexcept {
    // wchar_t is signed on some hosts.
    if constexpr (sizeof(wchar_t) == 2) {
        return static_cast<char16_t>(c);
    } else {
        return static_cast<char32_t>(c);
    }
}

void AppendUtf8(std::string& out, char32_t c) {
    const auto byte = [&out](char32_t value) { out.push_back(static_cast<char>(value)); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | (c >> 6));
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | (c >> 12));
        byte(0x80 | ((c >> 6) & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | (c >> 18));
        byte(0x80 | ((c >> 12) & 0x3F));
        byte(0x80 | ((c >> 6) & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

} // namespace

wchar_t FoldCase(wchar_t character) noexcept {
    return static_cast<wchar_t>(Fold(Unsigned(character)));
}

void AppendNumber(std::wstring& text, std::uint64_t number) {
    std::array<wchar_t, 20> digits{};
    auto first = digits.end();
    do {
        *--first = static_cast<wchar_t>(L'0' + number % 10);
        number /= 10;
    } while (number != 0);
    text.append(first, digits.end());
}

void AppendNumber(std::wstring& text, std::int64_t number) {
    if (number < 0) {
        text += L'-';
    }
    const auto magnitude = static_cast<std::uint64_t>(number);
    AppendNumber(text, number < 0 ? 0 - magnitude : magnitude);
}

std::wstring Folded(std::wstring_view text) {
    std::wstring result(text);
    std::transform(result.begin(), result.end(), result.begin(), FoldCase);
    return result;
}

int CompareFolded(std::wstring_view left, std::wstring_view right) noexcept {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (left[i] == right[i]) {
            continue;
        }
        const char32_t a = Fold(Unsigned(left[i]));
        const char32_t b = Fold(Unsigned(right[i]));
        if (a != b) {
            return a < b ? -1 : 1;
        }
    }
    return left.size() == right.size() ? 0 : (left.size() < right.size() ? -1 : 1);
}

void AppendCharacter(std::wstring& text, char32_t character) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (character > 0xFFFF) {
            const char32_t offset = character - 0x10000;
            text.push_back(static_cast<wchar_t>(0xD800 + (offset >> 10)));
            text.push_back(static_cast<wchar_t>(0xDC00 + (offset & 0x3FF)));
            return;
        }
    }
    text.push_back(static_cast<wchar_t>(character));
}

void JoinSurrogates(std::wstring& text) {
    if constexpr (sizeof(wchar_t) > 2) {
        const auto first =
            std::find_if(text.begin(), text.end(), [](wchar_t c) { return IsHighSurrogate(Unsigned(c)); });
        auto written = static_cast<std::size_t>(first - text.begin());
        for (std::size_t i = written; i < text.size(); ++i) {
            char32_t c = Unsigned(text[i]);
            if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(Unsigned(text[i + 1]))) {
                c = 0x10000 + ((c - 0xD800) << 10) + (Unsigned(text[i + 1]) - 0xDC00);
                ++i;
            }
            text[written++] = static_cast<wchar_t>(c);
        }
        text.resize(written);
    }
}

std::string ToUtf8(std::wstring_view text) {
    // Most texts are ASCII to their end, and a loop without a branch for each character is much quicker.
    char32_t all = 0;
    for (const wchar_t c : text) {
        all |= Unsigned(c);
    }
    std::string out;
    if (all < 0x80) {
        out.resize(text.size());
        std::transform(text.begin(), text.end(), out.begin(), [](wchar_t c) { return static_cast<char>(c); });
        return out;
    }
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = Unsigned(text[i]);
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(Unsigned(text[i + 1]))) {
            c = 0x10000 + ((c - 0xD800) << 10) + (Unsigned(text[i + 1]) - 0xDC00);
            ++i;
        } else if (IsHighSurrogate(c) || IsLowSurrogate(c) || c > 0x10FFFF) {
            c = kReplacement;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::optional<char32_t> DecodeUtf8(std::string_view text, std::size_t& position) noexcept {
    const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = at(position);
    if (lead < 0x80) {
        ++position;
        return lead;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
    if (length == 0 || lead > 0xF4 || text.size() - position < length) {
        return std::nullopt;
    }
    char32_t c = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned char next = at(position + i);
        if ((next & 0xC0) != 0x80) {
            return std::nullopt;
        }
        c = (c << 6) | (next & 0x3Fu);
    }
    constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    if (c < kSmallest[length] || c > 0x10FFFF || IsHighSurrogate(c) || IsLowSurrogate(c)) {
        return std::nullopt;
    }
    position += length;
    return c;
}

std::optional<std::wstring> FromUtf8(std::string_view text) {
    unsigned all = 0;
    for (const char c : text) {
        all |= static_cast<unsigned char>(c);
    }
    if (all < 0x80) {
        return std::wstring(text.begin(), text.end());
    }
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::optional<char32_t> c = DecodeUtf8(text, position);
        if (!c) {
            return std::nullopt;
        }
        AppendCharacter(result, *c);
    }
    return result;
}

std::optional<TextNumber> ParseDecimal(std::wstring_view text) noexcept {
    TextNumber number;
    if (!text.empty() && text.front() == L'-') {
        number.negative = true;
        text.remove_prefix(1);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') {
            return std::nullopt;
        }
        const auto digit = static_cast<std::uint64_t>(c - L'0');
        if (number.magnitude > (UINT64_MAX - digit) / 10) {
            return std::nullopt;
        }
        number.magnitude = number.magnitude * 10 + digit;
    }
    if (number.negative && number.magnitude > std::uint64_t{1} << 63) {
        return std::nullopt;
    }
    number.negative = number.negative && number.magnitude != 0;
    return number;
}

std::wstring RealText(double number) {
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    std::wstring text(buffer.data(), end);
    if (std::isfinite(number) && text.find(L'.') == std::wstring::npos) {
        const std::size_t exponent = text.find(L'e');
        text.insert(exponent == std::wstring::npos ? text.size() : exponent, L".0");
    }
    return text;
}

std::optional<double> ParseReal(std::wstring_view text) {
    // from_chars also takes "inf" and "nan", which are no numbers here.
    const bool plain = std::all_of(text.begin(), text.end(), [](wchar_t c) {
        return (c >= L'0' && c <= L'9') || c == L'.' || c == L'-' || c == L'+' || c == L'e' || c == L'E';
    });
    if (!plain || text.empty()) {
        return std::nullopt;
    }
    std::string narrow;
    std::transform(text.begin(), text.end(), std::back_inserter(narrow),
                   [](wchar_t c) { return static_cast<char>(c); });
    double number = 0;
    const auto result = std::from_chars(narrow.data(), narrow.data() + narrow.size(), number);
    if (result.ec != std::errc() || result.ptr != narrow.data() + narrow.size()) {
        return std::nullopt;
    }
    return number;
}

} // namespace quillet::wmi
