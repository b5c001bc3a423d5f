// The power-saving and wake-on-LAN options by the keys that documents have them under.
#pragma once

#include <quillet-state/Document.h>

#include <quillet/client/Power.h>

#include <array>
#include <cstdint>
#include <optional>

namespace quillet::state {

template <class Record>
struct Option {
    const char* key;
    std::optional<bool> Record::*field;
};

/// Beside "mode", which is a number.
inline constexpr std::array kPowerOptions{
    Option<PowerOptions>{"autoPowerSave", &PowerOptions::autoPowerSave},
    Option<PowerOptions>{"reduceSpeed", &PowerOptions::reduceSpeed},
    Option<PowerOptions>{"smartPowerDown", &PowerOptions::smartPowerDown},
    Option<PowerOptions>{"aspm", &PowerOptions::enhancedAspm},
    Option<PowerOptions>{"batteryConnection", &PowerOptions::batteryConnection},
    Option<PowerOptions>{"batterySpeed", &PowerOptions::batterySpeed},
    Option<PowerOptions>{"systemIdle", &PowerOptions::systemIdle},
};
inline constexpr std::array kWakeOptions{
    Option<WakeOptions>{"powerOff", &WakeOptions::fromPowerOff},
    Option<WakeOptions>{"link", &WakeOptions::onLink},
    Option<WakeOptions>{"magicPacket", &WakeOptions::onMagicPacket},
    Option<WakeOptions>{"directedPacket", &WakeOptions::onDirectedPacket},
    Option<WakeOptions>{"pattern", &WakeOptions::onPattern},
};

inline constexpr std::int32_t kLastPowerMode = 2;

/// What an adapter has, as documents have it.
Json AsJson(const PowerOptions& power);
Json AsJson(const WakeOptions& wake);

} // namespace quillet::state
