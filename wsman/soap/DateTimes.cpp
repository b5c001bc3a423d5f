// Datetimes from form to form.
#include "soap/DateTimes.h"

#include <quillet-wmi/Model.h>
#include <quillet-wmi/Text.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace quillet::wsman {

namespace {

/// Reads a text from its beginning, piece by piece.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : m_rest(text) {}

    bool IsAtEnd() const noexcept { return m_rest.empty(); }
    bool Take(char character) {
        const bool isNext = !m_rest.empty() && m_rest.front() == character;
        m_rest.remove_prefix(isNext ? 1 : 0);
        return isNext;
    }
    /// A number of so many digits.
    std::optional<std::uint32_t> Number(std::size_t least, std::size_t most) {
        const std::size_t length = std::min(m_rest.find_first_not_of("0123456789"), m_rest.size());
        if (length < least || length > most) {
            return std::nullopt;
        }
        std::uint32_t number = 0;
        for (const char digit : m_rest.substr(0, length)) {
            number = number * 10 + static_cast<std::uint32_t>(digit - '0');
        }
        m_rest.remove_prefix(length);
        return number;
    }
    /// What stands behind a decimal point, in millionths; 0 where there is no point.
    std::optional<std::uint32_t> Fraction() {
        if (!Take('.')) {
            return 0;
        }
        const std::size_t length = std::min(m_rest.find_first_not_of("0123456789"), m_rest.size());
        if (length == 0) {
            return std::nullopt;
        }
        std::string digits(m_rest.substr(0, std::min<std::size_t>(length, 6)));
        digits.resize(6, '0');
        m_rest.remove_prefix(length);
        return Scanner(digits).Number(6, 6);
    }

  private:
    std::string_view m_rest;
};

std::string Formatted(const char* format, auto... numbers) {
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), format, numbers...);
    return text.data();
}

/// Minutes from UTC: "Z", "+02:00"; 0 where there is none.
std::optional<int> Offset(Scanner& text) {
    if (text.IsAtEnd() || text.Take('Z')) {
        return 0;
    }
    const bool isWest = text.Take('-');
    if (!isWest && !text.Take('+')) {
        return std::nullopt;
    }
    const auto hours = text.Number(2, 2);
    const bool isSeparated = text.Take(':');
    const auto minutes = text.Number(2, 2);
    if (!hours || !isSeparated || !minutes || *hours > 14 || *minutes > 59) {
        return std::nullopt;
    }
    const int offset = static_cast<int>(*hours * 60 + *minutes);
    return isWest ? -offset : offset;
}

/// xs:dateTime and xs:date.
std::optional<std::string> FromDateTime(std::string_view given) {
    Scanner text(given);
    const auto year = text.Number(4, 4);
    const bool hasMonth = text.Take('-');
    const auto month = text.Number(2, 2);
    const bool hasDay = text.Take('-');
    const auto day = text.Number(2, 2);
    if (!year || !hasMonth || !month || !hasDay || !day || *month - 1 > 11 || *day - 1 > 30) {
        return std::nullopt;
    }
    std::string time = "******.******";
    if (text.Take('T')) {
        const auto hour = text.Number(2, 2);
        const bool hasMinute = text.Take(':');
        const auto minute = text.Number(2, 2);
        const bool hasSecond = text.Take(':');
        const auto second = text.Number(2, 2);
        const auto fraction = text.Fraction();
        if (!hour || !hasMinute || !minute || !hasSecond || !second || !fraction || *hour > 23 ||
            *minute > 59 || *second > 60) {
            return std::nullopt;
        }
        time = Formatted("%02u%02u%02u.%06u", *hour, *minute, *second, *fraction);
    }
    const auto offset = Offset(text);
    if (!offset || !text.IsAtEnd()) {
        return std::nullopt;
    }
    return Formatted("%04u%02u%02u", *year, *month, *day) + time +
           Formatted("%c%03d", *offset < 0 ? '-' : '+', std::abs(*offset));
}

/// xs:duration in days, hours, minutes and seconds; years and months have no length.
std::optional<std::string> FromDuration(std::string_view given) {
    Scanner text(given);
    if (!text.Take('P')) {
        return std::nullopt;
    }
    std::uint32_t days = 0;
    std::uint32_t hours = 0;
    std::uint32_t minutes = 0;
    std::uint32_t seconds = 0;
    std::uint32_t fraction = 0;
    bool isTime = text.Take('T');
    do {
        const auto number = text.Number(1, 8);
        const auto behind = text.Fraction();
        if (!number || !behind) {
            return std::nullopt;
        }
        if (!isTime && text.Take('D')) {
            days = *number;
            isTime = text.Take('T');
        } else if (isTime && text.Take('H')) {
            hours = *number;
        } else if (isTime && text.Take('M')) {
            minutes = *number;
        } else if (isTime && text.Take('S')) {
            seconds = *number;
            fraction = *behind;
        } else {
            return std::nullopt;
        }
    } while (!text.IsAtEnd());
    minutes += seconds / 60;
    hours += minutes / 60;
    days += hours / 24;
    constexpr std::uint32_t kMostDays = 99'999'999;
    return days > kMostDays ? std::nullopt
                            : std::optional(Formatted("%08u%02u%02u%02u.%06u:000", days, hours % 24,
                                                      minutes % 60, seconds % 60, fraction));
}

/// The number at the beginning of a text; 0 where there is none.
int NumberIn(const std::string& digits) {
    return int(std::strtol(digits.c_str(), nullptr, 10));
}

} // namespace

XmlDateTime ToXmlDateTime(std::wstring_view cim) {
    const std::string text = wmi::ToUtf8(cim);
    const bool isWhole = text.find('*') == std::string::npos;
    if (!isWhole || text.size() != 25) {
        return {"CIM_DateTime", text};
    }
    const auto piece = [&text](std::size_t place, std::size_t length) { return text.substr(place, length); };
    if (text[21] == ':') {
        const auto number = [&](std::size_t place, std::size_t length) {
            return std::to_string(NumberIn(piece(place, length)));
        };
        const std::string fraction = piece(15, 6) == "000000" ? std::string() : "." + piece(15, 6);
        return {"Interval", "P" + number(0, 8) + "DT" + number(8, 2) + "H" + number(10, 2) + "M" +
                                number(12, 2) + fraction + "S"};
    }
    const int offset = NumberIn(piece(22, 3));
    const std::string zone = offset == 0 ? "Z" : text[21] + Formatted("%02d:%02d", offset / 60, offset % 60);
    return {"Datetime", piece(0, 4) + "-" + piece(4, 2) + "-" + piece(6, 2) + "T" + piece(8, 2) + ":" +
                            piece(10, 2) + ":" + piece(12, 2) + "." + piece(15, 6) + zone};
}

std::optional<std::wstring> FromXmlDateTime(std::string_view text) {
    const std::optional<std::string> read = text.size() == 25 && text[14] == '.'
                                                ? std::optional(std::string(text))
                                            : text.starts_with('P') ? FromDuration(text)
                                                                    : FromDateTime(text);
    std::optional<std::wstring> cim = read ? wmi::FromUtf8(*read) : std::nullopt;
    return cim && wmi::IsDateTime(*cim) ? cim : std::nullopt;
}

} // namespace quillet::wsman
