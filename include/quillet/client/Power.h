// Power saving and wake-on-LAN.
#pragma once

#include <cstdint>
#include <optional>

namespace quillet {

/// The power-saving options of an adapter. An option without a value is one that the adapter does not have,
/// or that is to stay as it is.
struct PowerOptions {
    /// The provider's numbers 0 to 2 ("SavePowerNowEnabled").
    std::uint32_t mode = 0;
    std::optional<bool> smartPowerDown{};    ///< "SmartPowerDown"
    std::optional<bool> reduceSpeed{};       ///< "ReduceSpeedOnPowerDown"
    std::optional<bool> autoPowerSave{};     ///< "AutoPowerSaveModeEnabled"
    std::optional<bool> enhancedAspm{};      ///< "EnhancedASPMPowerSaver"
    std::optional<bool> batteryConnection{}; ///< "ACBSMode"
    std::optional<bool> batterySpeed{};      ///< "LinkSpeedBatterySaver"
    std::optional<bool> systemIdle{};        ///< "SystemIdlePowerSaver"
    friend bool operator==(const PowerOptions&, const PowerOptions&) = default;
};

/// What wakes a machine through an adapter. An option without a value is one that the adapter does not have,
/// or that is to stay as it is.
struct WakeOptions {
    std::optional<bool> fromPowerOff{};     ///< "WakeFromPowerOff"
    std::optional<bool> onLink{};           ///< "WakeOnLink"
    std::optional<bool> onMagicPacket{};    ///< "WakeOnMagicPacket"
    std::optional<bool> onDirectedPacket{}; ///< "WakeOnDirectedPacket"
    std::optional<bool> onPattern{};        ///< "WakeOnPattern"
    friend bool operator==(const WakeOptions&, const WakeOptions&) = default;
};

} // namespace quillet
