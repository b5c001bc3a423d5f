// Reading heads strictly.
#include "server/HttpFraming.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

namespace quillet::wsman {

namespace {

constexpr std::string_view kNewLine = "\r\n";

bool IsOfToken(char character) {
    constexpr std::string_view kOthers = "!#$%&'*+-.^_`|~";
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z') || kOthers.find(character) != std::string_view::npos;
}

/// Neither a control character nor the half of a line's end.
bool IsOfText(char character) {
    return static_cast<unsigned char>(character) >= 0x20 ? character != 0x7F : character == '\t';
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(text.begin(), text.end(), lower.begin(), [](char each) {
        return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
    });
    return lower;
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

/// Takes one field; false: it is none, or contradicts another one.
bool Take(std::string_view line, HttpFraming& framing) {
    const std::size_t colon = line.find(':');
    if (colon == 0 || colon == std::string_view::npos ||
        !std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(colon), IsOfToken)) {
        return false;
    }
    const std::string name = Lower(line.substr(0, colon));
    const std::string_view value = Trimmed(line.substr(colon + 1));
    if (name == "content-length") {
        std::size_t length = 0;
        const auto read = std::from_chars(value.data(), value.data() + value.size(), length);
        const bool isFirst = !framing.length;
        framing.length = length;
        return isFirst && read.ec == std::errc() && read.ptr == value.data() + value.size();
    }
    if (name == "transfer-encoding") {
        return !std::exchange(framing.isChunked, true) && Lower(value) == "chunked";
    }
    return true;
}

} // namespace

std::optional<HttpFraming> FramingOf(std::string_view head) {
    HttpFraming framing;
    bool isFirst = true;
    bool isWhole = false;
    while (!isWhole) {
        const std::size_t end = head.find(kNewLine);
        const std::string_view line = head.substr(0, end);
        if (end == std::string_view::npos || !std::all_of(line.begin(), line.end(), IsOfText)) {
            return std::nullopt;
        }
        head.remove_prefix(end + kNewLine.size());
        isWhole = line.empty();
        if (!isWhole && !std::exchange(isFirst, false) && !Take(line, framing)) {
            return std::nullopt;
        }
    }
    const bool isOneOfTwo = !framing.isChunked || !framing.length;
    return !isFirst && head.empty() && isOneOfTwo ? std::optional(framing) : std::nullopt;
}

} // namespace quillet::wsman
