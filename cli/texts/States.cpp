// Words and tones of states.
#include "texts/States.h"

namespace quilletctl {

Tone ToneOf(quillet::StatusInfo status) noexcept {
    switch (status) {
    case quillet::StatusInfo::Enabled:
        return Tone::Good;
    case quillet::StatusInfo::NotApplicable:
        return Tone::Plain;
    default:
        return Tone::Warning;
    }
}

std::optional<bool> IsUp(const std::optional<quillet::AdapterState>& state) noexcept {
    return state ? std::optional(state->hardware == quillet::HardwareStatus::LinkPresent) : std::nullopt;
}

std::optional<bool> IsAnyUp(std::optional<bool> one, std::optional<bool> other) noexcept {
    const bool isTold = one && other;
    return one == true || other == true ? std::optional(true)
                                        : (isTold ? std::optional(false) : std::nullopt);
}

std::string LinkText(const std::optional<quillet::AdapterState>& state) {
    const std::optional<bool> isUp = IsUp(state);
    return !isUp ? "" : *isUp ? "up" : "down";
}

Tone LinkTone(const std::optional<quillet::AdapterState>& state) noexcept {
    const std::optional<bool> isUp = IsUp(state);
    return !isUp ? Tone::Plain : *isUp ? Tone::Good : Tone::Bad;
}

} // namespace quilletctl
