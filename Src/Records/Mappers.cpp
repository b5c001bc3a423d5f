// The provider's numbers for the state of an adapter and for the mode of a team, turned into the enumerations
// of the records.
#include <quillet/Quillet.h>

CAdapterDynamicInfo::DuplexMode CQuillet::GetDuplex(const bool& fullDuplex) {
    return fullDuplex ? CAdapterDynamicInfo::DuplexFull : CAdapterDynamicInfo::DuplexHalf;
}

CAdapterDynamicInfo::LinkSpeed CQuillet::GetLinkSpeed(const LONG& speed) {
    constexpr LONG kMegabit = 1000000;
    switch (speed / kMegabit) {
    case 0:
        return CAdapterDynamicInfo::LinkSpeedNone;
    case 1:
        return CAdapterDynamicInfo::LinkSpeed1Mb;
    case 10:
        return CAdapterDynamicInfo::LinkSpeed10Mb;
    case 100:
        return CAdapterDynamicInfo::LinkSpeed100Mb;
    case 1000:
        return CAdapterDynamicInfo::LinkSpeed1Gb;
    default:
        // 10 gigabit does not fit 32 bits, so every large speed that is no other class counts as the fastest
        // one on purpose. Only a negative number gets here with 10000 or less.
        return speed <= 10000 ? CAdapterDynamicInfo::LinkSpeedOther : CAdapterDynamicInfo::LinkSpeed10Gb;
    }
}

CAdapterDynamicInfo::LinkSecStatus CQuillet::GetLinkSecStatus(const LONG& status) {
    return status >= CAdapterDynamicInfo::LinkSecStatus0 && status <= CAdapterDynamicInfo::LinkSecStatus9
               ? static_cast<CAdapterDynamicInfo::LinkSecStatus>(status)
               : CAdapterDynamicInfo::LinkSecStatusUnknown;
}

CDataCenter::DCBStatus CQuillet::GetDCBStatus(const LONG& status) {
    return status >= CDataCenter::DCBStatus0 && status <= CDataCenter::DCBStatus3
               ? static_cast<CDataCenter::DCBStatus>(status)
               : CDataCenter::DCBStatusUnknown;
}

CTeam::TeamMode CQuillet::GetTeamMode(const LONG& mode) {
    // Read as unsigned, a negative number is a large one.
    return static_cast<ULONG>(mode) <= static_cast<ULONG>(CTeam::TeamMode6)
               ? static_cast<CTeam::TeamMode>(mode)
               : CTeam::TeamModeUnknown;
}
