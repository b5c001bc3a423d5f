// Looking at names and addresses.
#include "names/HostName.h"

#include <algorithm>
#include <charconv>

namespace quilletctl {

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";

bool IsMadeOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

} // namespace

bool IsIPv4Address(std::string_view text) {
    int count = 0;
    for (bool isLast = false; !isLast; ++count) {
        const std::size_t dot = text.find('.');
        isLast = dot == std::string_view::npos;
        const std::string_view piece = text.substr(0, dot);
        unsigned number = 0;
        if (piece.empty() || piece.size() > 3 || !IsMadeOf(piece, kDigits) ||
            std::from_chars(piece.data(), piece.data() + piece.size(), number).ec != std::errc() ||
            number > 255) {
            return false;
        }
        text.remove_prefix(isLast ? text.size() : dot + 1);
    }
    return count == 4;
}

bool IsMacAddress(std::string_view text) {
    return text.size() == 12 && IsMadeOf(text, kHexDigits);
}

bool IsHostName(std::string_view text) {
    if (text.empty() || text.size() > 255) {
        return false;
    }
    if (text.find(':') != std::string_view::npos) {
        // The zone of a link-local address may have any name.
        const std::string_view address = text.substr(0, text.find('%'));
        const bool hasEnough = std::count(address.begin(), address.end(), ':') >= 2;
        return hasEnough && address.find(":::") == std::string_view::npos &&
               IsMadeOf(address, "0123456789abcdefABCDEF:.");
    }
    if (IsMadeOf(text, "0123456789.")) {
        return IsIPv4Address(text);
    }
    // What is beyond ASCII is for the name service to judge.
    return std::all_of(text.begin(), text.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= 0x80 || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= '0' && byte <= '9') || byte == '-' || byte == '_' || byte == '.';
    });
}

} // namespace quilletctl
