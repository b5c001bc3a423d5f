// The well-known advanced settings and the keywords that the provider knows them by.
#pragma once

#include <windows.h>

#include <quillet/Export.h>

#include <string>

/// The well-known settings.
enum class SettingName : LONG {
    SpeedDuplex = 0,
    FlowControl = 1,
    MaxFrameSize = 2,
    RssMode = 3,
    NumTxDescriptors = 4,
    NumRxDescriptors = 5,
    TcpSegmentation = 6,
    LsoV2IPv4 = 7,
    LsoV2IPv6 = 8,
    IPSecEnabled = 9
};

/// Keywords of the well-known settings. Each has a standardised one, which begins with "*", and most an older
/// one.
class QUILLET_API CAdvancedSettingNames {
  public:
    /// Whether `GetSettingName` gives standardised keywords.
    bool m_bUseStandardKeywords = false;

    CAdvancedSettingNames() = default;
    /// @param bUseStandardKeywords whether `GetSettingName` gives standardised keywords.
    explicit CAdvancedSettingNames(bool bUseStandardKeywords);
    CAdvancedSettingNames(const CAdvancedSettingNames&) = default;
    CAdvancedSettingNames& operator=(const CAdvancedSettingNames&) = default;
    virtual ~CAdvancedSettingNames();

    /// The setting's keyword: the standardised one if those are used, else the older one, which is
    /// "SettingNameUnknown" for a setting without. "None" for a number that is no setting. The standardised
    /// keyword of `SettingName::TcpSegmentation` is given only where the operating system is of the NT
    /// platform and its major version is at least 6.
    std::wstring GetSettingName(SettingName eName) const;
    /// Whether the text is one of the setting's keywords, whichever are used (case counts).
    bool IsSettingName(SettingName eName, const std::wstring& rwsKeyword) const;
};
