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

bool IsUp(const quillet::AdapterState& state) noexcept {
    return state.hardware == quillet::HardwareStatus::LinkPresent;
}

std::string LinkText(const std::optional<quillet::AdapterState>& state) {
    return !state ? "" : IsUp(*state) ? "up" : "down";
}

Tone LinkTone(const std::optional<quillet::AdapterState>& state) noexcept {
    return !state ? Tone::Plain : IsUp(*state) ? Tone::Good : Tone::Bad;
}

} // namespace quilletctl
