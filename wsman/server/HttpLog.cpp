// A line for a request.
#include "server/HttpServer.h"

#include <array>
#include <ctime>

namespace quillet::wsman {

namespace {

/// What a peer sent, as one word of a line.
std::string Word(std::string_view text) {
    constexpr std::size_t kMost = 120;
    std::string word;
    for (const char each : text.substr(0, kMost)) {
        word += each > ' ' && each < 0x7F ? each : '?';
    }
    return word.empty() ? "-" : word;
}

/// The last part of a URI is what tells.
std::string_view LastPart(std::string_view uri) {
    return uri.substr(uri.find_last_of('/') + 1);
}

} // namespace

std::string LogLine::Text() const {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> when{};
    std::strftime(when.data(), when.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    std::string text = when.data();
    for (const std::string_view each :
         {std::string_view(user), std::string_view(peer), LastPart(action), LastPart(resource)}) {
        text += ' ' + Word(each);
    }
    return text + ' ' + std::to_string(status) + ' ' + (result.empty() ? "-" : result) + ' ' +
           std::to_string(duration.count()) + " ms";
}

} // namespace quillet::wsman
