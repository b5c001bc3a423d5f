// Numbers by their words, and words by their numbers.
#include "Words.h"

#include "Texts.h"

#include <quillet/client/Text.h>

#include <array>
#include <utility>

namespace quillet::state {

namespace {

constexpr std::array<std::pair<IscsiStatus, const char*>, 3> kIscsiWords{
    {{IscsiStatus::NotBootPort, "off"},
     {IscsiStatus::PrimaryPort, "primary"},
     {IscsiStatus::SecondaryPort, "secondary"}}};
constexpr auto kLastMode = static_cast<std::int32_t>(TeamMode::VirtualMachineLoadBalancing);

} // namespace

std::optional<TeamMode> ModeFrom(const Json& named) {
    for (std::int32_t number = 0; number <= kLastMode; ++number) {
        const auto mode = static_cast<TeamMode>(number);
        const bool isNumber = named.is_number_integer() && named == Json(number);
        const bool isText = named.is_string() && (named == Json(std::to_string(number)) ||
                                                  SameName(named.get<std::string>(), ToUtf8(Text(mode))));
        if (isNumber || isText) {
            return mode;
        }
    }
    return std::nullopt;
}

Json AsJson(TeamMode mode) {
    const auto number = static_cast<std::int32_t>(mode);
    return number >= 0 && number <= kLastMode ? Json(ToUtf8(Text(mode))) : Json(number);
}

std::optional<IscsiStatus> IscsiFrom(std::string_view word) {
    for (const auto& [status, text] : kIscsiWords) {
        if (word == text) {
            return status;
        }
    }
    return std::nullopt;
}

std::optional<std::string> IscsiWord(IscsiStatus status) {
    for (const auto& [known, text] : kIscsiWords) {
        if (status == known) {
            return text;
        }
    }
    return std::nullopt;
}

} // namespace quillet::state
