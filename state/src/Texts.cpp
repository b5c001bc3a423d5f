// By the system's own comparison of names.
#include "Texts.h"

#include <quillet/client/Text.h>

#include <windows.h>

namespace quillet::state {

namespace {

bool SameCharacter(wchar_t left, wchar_t right) {
    return CompareStringOrdinal(&left, 1, &right, 1, TRUE) == CSTR_EQUAL;
}

} // namespace

bool SameName(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() &&
           CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

bool SameName(std::string_view left, std::string_view right) {
    return left == right || SameName(FromUtf8(left), FromUtf8(right));
}

bool Fits(std::string_view name, std::string_view pattern) {
    return FitsPattern(FromUtf8(name), FromUtf8(pattern), L'*', L'?', SameCharacter);
}

std::string MacDigits(std::string_view text) {
    std::string digits;
    for (const char character : text) {
        if (character == '-' || character == ':' || character == '.') {
            continue;
        }
        const bool isLetter =
            (character >= 'a' && character <= 'f') || (character >= 'A' && character <= 'F');
        if (!isLetter && (character < '0' || character > '9')) {
            return {};
        }
        digits += character >= 'a' ? static_cast<char>(character - 'a' + 'A') : character;
    }
    constexpr std::size_t kDigits = 12;
    return digits.size() == kDigits ? digits : std::string();
}

std::string ListOf(const std::vector<std::string>& texts) {
    std::string list;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        list += (i == 0 ? "" : i + 1 == texts.size() ? " and " : ", ") + texts[i];
    }
    return list;
}

} // namespace quillet::state
