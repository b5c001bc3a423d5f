// Power saving, and what wakes the machine.
#pragma once

#include "model/Page.h"

#include <array>

namespace quillet::pages {

/// An option by its label and its place in a record.
template <class Options>
struct PowerOption {
    TextId label;
    std::optional<bool> Options::*value;
};

inline constexpr std::array kPowerOptions{
    PowerOption<PowerOptions>{TextId::PowerAuto, &PowerOptions::autoPowerSave},
    PowerOption<PowerOptions>{TextId::PowerReduceSpeed, &PowerOptions::reduceSpeed},
    PowerOption<PowerOptions>{TextId::PowerSmartDown, &PowerOptions::smartPowerDown},
    PowerOption<PowerOptions>{TextId::PowerAspm, &PowerOptions::enhancedAspm},
    PowerOption<PowerOptions>{TextId::PowerBatteryConnection, &PowerOptions::batteryConnection},
    PowerOption<PowerOptions>{TextId::PowerBatterySpeed, &PowerOptions::batterySpeed},
    PowerOption<PowerOptions>{TextId::PowerIdle, &PowerOptions::systemIdle},
};
inline constexpr std::array kWakeOptions{
    PowerOption<WakeOptions>{TextId::WakePowerOff, &WakeOptions::fromPowerOff},
    PowerOption<WakeOptions>{TextId::WakeLink, &WakeOptions::onLink},
    PowerOption<WakeOptions>{TextId::WakeMagic, &WakeOptions::onMagicPacket},
    PowerOption<WakeOptions>{TextId::WakeDirected, &WakeOptions::onDirectedPacket},
    PowerOption<WakeOptions>{TextId::WakePattern, &WakeOptions::onPattern},
};

/// The page "Power" of an adapter.
class PowerPage : public Page {
  public:
    explicit PowerPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    Job Reading() override;
    bool IsChanged() const override;
    Change Changes() const override;

    /// The options as the user wants them. One without a value is one that the adapter does not have.
    const PowerOptions& Power() const noexcept { return m_power.wanted; }
    const WakeOptions& Wake() const noexcept { return m_wake.wanted; }
    /// The modes that can be chosen, and the one that the adapter is in where that is another one.
    std::vector<std::uint32_t> Modes() const;
    bool HasModes() const noexcept { return m_hasModes && m_power.isRead; }
    /// Why some options cannot be chosen; empty where all can.
    std::wstring WhyNotAll() const;

    void SetMode(std::uint32_t mode);
    void Set(std::optional<bool> PowerOptions::*option, bool isOn);
    void Set(std::optional<bool> WakeOptions::*option, bool isOn);

    /// Lets the adapter apply its power management again, in a client set of its own.
    Job Reapplying();

  private:
    template <class Options>
    struct Edited {
        bool isRead = false;
        Options read;
        Options wanted;
    };
    struct Read;

    void Take(const Read& now, std::wstring notice);
    template <class Options, std::size_t Size>
    void TakeOptions(const std::array<PowerOption<Options>, Size>& options, Edited<Options>& edited,
                     const Options& now, std::wstring& notice);

    AdapterId m_adapter;
    Edited<PowerOptions> m_power;
    Edited<WakeOptions> m_wake;
    bool m_hasModes = false;
};

} // namespace quillet::pages
