// Power-saving and wake-on-LAN options of an adapter.
#pragma once

#include <windows.h>

/// The power-saving options of an adapter. Every option but the mode is 0 for off, anything else for on, and
/// `NotAvailable` where the adapter does not have it; such an option is left alone when the others are set.
struct CAdapterPowerUsageInfo {
    /// The power-saving mode: the provider's numbers 0 to 2; no other can be set.
    enum SavePower : DWORD { SavePower0 = 0, SavePower1 = 1, SavePower2 = 2 };
    /// The adapter does not have the option, or it is to be left alone.
    static constexpr DWORD NotAvailable = 0xFFFFFFFF;

    SavePower m_eSavePower = SavePower0;               ///< "SavePowerNowEnabled"
    DWORD m_dwSmartPowerDown = NotAvailable;           ///< "SmartPowerDown"
    DWORD m_dwReduceSpeedOnPowerDown = NotAvailable;   ///< "ReduceSpeedOnPowerDown"
    DWORD m_dwAutoPowerSaveModeEnabled = NotAvailable; ///< "AutoPowerSaveModeEnabled"
    DWORD m_dwEnhancedASPMPowerSaver = NotAvailable;   ///< "EnhancedASPMPowerSaver"
    DWORD m_dwACBSMode = NotAvailable;                 ///< "ACBSMode"
    DWORD m_dwLinkSpeedBatterySaver = NotAvailable;    ///< "LinkSpeedBatterySaver"
    DWORD m_dwSystemIdlePowerSaver = NotAvailable;     ///< "SystemIdlePowerSaver"
};

/// What wakes a machine through an adapter. Every option is 0 for off, anything else for on, and
/// `NotAvailable` where the adapter does not have it; such an option is left alone when the others are set.
struct CAdapterWakeOnLanInfo {
    /// The adapter does not have the option, or it is to be left alone.
    static constexpr DWORD NotAvailable = 0xFFFFFFFF;

    DWORD m_dwWakeFromPowerOff = NotAvailable;     ///< "WakeFromPowerOff"
    DWORD m_dwWakeOnLink = NotAvailable;           ///< "WakeOnLink"
    DWORD m_dwWakeOnMagicPacket = NotAvailable;    ///< "WakeOnMagicPacket"
    DWORD m_dwWakeOnDirectedPacket = NotAvailable; ///< "WakeOnDirectedPacket"
    DWORD m_dwWakeOnPattern = NotAvailable;        ///< "WakeOnPattern"
};
