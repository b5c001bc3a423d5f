// Writing moments, without the C library's shared buffers and the host's time zone.
#include "texts/UtcText.h"

namespace quilletctl {

namespace {

std::string TwoDigits(long long number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

} // namespace

std::string UtcText(std::chrono::system_clock::time_point moment, const char* between) {
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::seconds>(moment - day));
    return std::to_string(static_cast<int>(date.year())) + '-' +
           TwoDigits(static_cast<unsigned>(date.month())) + '-' +
           TwoDigits(static_cast<unsigned>(date.day())) + between + TwoDigits(time.hours().count()) + ':' +
           TwoDigits(time.minutes().count()) + ':' + TwoDigits(time.seconds().count());
}

} // namespace quilletctl
