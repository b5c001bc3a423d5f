// Texts of settings: numbers in decimal, and comparison without regard to case.
#include "Records/Text.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace quillet {

namespace {

bool IsSpace(wchar_t wc) noexcept {
    return wc == L' ' || (wc >= L'\t' && wc <= L'\r');
}

wchar_t Fold(wchar_t wc) noexcept {
    return wc >= L'A' && wc <= L'Z' ? static_cast<wchar_t>(wc - L'A' + L'a') : wc;
}

} // namespace

LONG ParseDecimal(const std::wstring& rwsText) noexcept {
    constexpr std::int64_t lowest = std::numeric_limits<LONG>::min();
    constexpr std::int64_t highest = std::numeric_limits<LONG>::max();
    auto it = std::find_if_not(rwsText.begin(), rwsText.end(), IsSpace);
    std::int64_t sign = 1;
    if (it != rwsText.end() && (*it == L'-' || *it == L'+')) {
        sign = *it == L'-' ? -1 : 1;
        ++it;
    }
    std::int64_t value = 0;
    for (; it != rwsText.end() && *it >= L'0' && *it <= L'9'; ++it) {
        value = std::clamp(value * 10 + sign * (*it - L'0'), lowest, highest);
    }
    return static_cast<LONG>(value);
}

std::wstring FormatDecimal(LONG lValue) {
    return std::to_wstring(lValue);
}

bool EqualsIgnoringCase(const std::wstring& rwsLeft, const std::wstring& rwsRight) noexcept {
    return std::equal(rwsLeft.begin(), rwsLeft.end(), rwsRight.begin(), rwsRight.end(),
                      [](wchar_t wcLeft, wchar_t wcRight) { return Fold(wcLeft) == Fold(wcRight); });
}

} // namespace quillet
