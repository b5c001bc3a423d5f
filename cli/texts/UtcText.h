// Moments as text.
#pragma once

#include <chrono>
#include <string>

namespace quilletctl {

/// "2026-11-22 17:24:13", in UTC.
/// @param between what stands between the day and the time
std::string UtcText(std::chrono::system_clock::time_point moment, const char* between);

} // namespace quilletctl
