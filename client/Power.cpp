// Power saving and wake-on-LAN.
#include "Operations.h"

namespace quillet {

namespace {

/// An option's place in the layer's record and in the library's.
template <class Options, class Record>
struct Place {
    std::optional<bool> Options::*option;
    DWORD Record::*field;
};

using Power = CAdapterPowerUsageInfo;
using PowerPlace = Place<PowerOptions, Power>;
constexpr PowerPlace kPower[] = {
    {&PowerOptions::smartPowerDown, &Power::m_dwSmartPowerDown},
    {&PowerOptions::reduceSpeed, &Power::m_dwReduceSpeedOnPowerDown},
    {&PowerOptions::autoPowerSave, &Power::m_dwAutoPowerSaveModeEnabled},
    {&PowerOptions::enhancedAspm, &Power::m_dwEnhancedASPMPowerSaver},
    {&PowerOptions::batteryConnection, &Power::m_dwACBSMode},
    {&PowerOptions::batterySpeed, &Power::m_dwLinkSpeedBatterySaver},
    {&PowerOptions::systemIdle, &Power::m_dwSystemIdlePowerSaver},
};

using Wake = CAdapterWakeOnLanInfo;
using WakePlace = Place<WakeOptions, Wake>;
constexpr WakePlace kWake[] = {
    {&WakeOptions::fromPowerOff, &Wake::m_dwWakeFromPowerOff},
    {&WakeOptions::onLink, &Wake::m_dwWakeOnLink},
    {&WakeOptions::onMagicPacket, &Wake::m_dwWakeOnMagicPacket},
    {&WakeOptions::onDirectedPacket, &Wake::m_dwWakeOnDirectedPacket},
    {&WakeOptions::onPattern, &Wake::m_dwWakeOnPattern},
};

template <class Options, class Record, std::size_t Size>
void ReadPlaces(const Place<Options, Record> (&places)[Size], const Record& record, Options& options) {
    for (const auto& place : places) {
        const DWORD value = record.*place.field;
        if (value != Record::NotAvailable) {
            options.*place.option = value != 0;
        }
    }
}

template <class Options, class Record, std::size_t Size>
void ToRecord(const Place<Options, Record> (&places)[Size], const Options& options, Record& record) {
    for (const auto& place : places) {
        if (const std::optional<bool>& option = options.*place.option) {
            record.*place.field = *option ? 1 : 0;
        }
    }
}

PowerOptions OptionsOf(const Power& record) {
    PowerOptions options;
    options.mode = record.m_eSavePower;
    ReadPlaces(kPower, record, options);
    return options;
}

WakeOptions OptionsOf(const Wake& record) {
    WakeOptions options;
    ReadPlaces(kWake, record, options);
    return options;
}

} // namespace

PowerOptions Session::ReadPower(const AdapterId& adapter) {
    Power record;
    DoInParts(
        "GetAdapterPowerUsageOptions", adapter.Path(),
        [&] { return m_state->quillet.GetAdapterPowerUsageOptions(adapter.Path(), record); },
        [&] { return OptionsOf(record); });
    return OptionsOf(record);
}

WakeOptions Session::ReadWake(const AdapterId& adapter) {
    Wake record;
    DoInParts(
        "GetAdapterWakeOnLanOptions", adapter.Path(),
        [&] { return m_state->quillet.GetAdapterWakeOnLanOptions(adapter.Path(), record); },
        [&] { return OptionsOf(record); });
    return OptionsOf(record);
}

void Session::SetPower(const AdapterId& adapter, const PowerOptions& options) {
    Power record;
    record.m_eSavePower = static_cast<Power::SavePower>(options.mode);
    ToRecord(kPower, options, record);
    Do("SetAdapterPowerUsageOptions", adapter.Path(),
       [&] { return m_state->quillet.SetAdapterPowerUsageOptions(adapter.Path(), record); });
}

void Session::SetWake(const AdapterId& adapter, const WakeOptions& options) {
    Wake record;
    ToRecord(kWake, options, record);
    Do("SetAdapterWakeOnLanOptions", adapter.Path(),
       [&] { return m_state->quillet.SetAdapterWakeOnLanOptions(adapter.Path(), record); });
}

void Session::ReapplyPower(const AdapterId& adapter) {
    Do("SetAdapterPowerManagementCapabilities", adapter.Path(),
       [&] { return m_state->quillet.SetAdapterPowerManagementCapabilities(adapter.Path()); });
}

} // namespace quillet
