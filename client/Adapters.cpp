// Adapters.
#include "Operations.h"

#include <algorithm>

namespace quillet {

namespace {

Adapter FromRecord(CAdapter&& record) {
    return {AdapterId(std::move(record.m_wsAdapterID)), std::move(record.m_wsName),
            std::move(record.m_wsDisplayName), std::move(record.m_wsDeviceID), std::move(record.m_wsSlotID)};
}

AdapterState FromRecord(const CAdapterDynamicInfo& record) {
    // The status is a word of 32 bits; widened with its sign it would be more of them.
    const auto conditions = static_cast<std::uint32_t>(record.m_lAdapterStatus);
    return {static_cast<LinkSpeed>(record.m_eLinkSpeed),
            static_cast<Duplex>(record.m_eDuplexMode),
            static_cast<LinkSecurityStatus>(record.m_eLinkSecStatus),
            Flags<AdapterCondition>::FromMask(conditions),
            static_cast<StatusInfo>(record.m_lStatusInfo),
            static_cast<Availability>(record.m_lAvailability),
            static_cast<HardwareStatus>(record.m_lHardwareStatus),
            record.m_wsStatus};
}

AdapterState StateIn(const CAdapter& adapter) {
    const CAdapterDynamicInfo* record = adapter.m_pAdapterDynamicInfo;
    return record != nullptr ? FromRecord(*record) : AdapterState();
}

TeamedPort FromRecord(CAdapterPort&& record) {
    return {AdapterId(std::move(record.m_wsAdapterID)), record.m_bTeamed,
            TeamId(std::move(record.m_wsTeamID))};
}

} // namespace

CAdapters AdaptersOf(std::span<const AdapterId> ids) {
    CAdapters adapters;
    adapters.m_vecItems.reserve(ids.size());
    for (const AdapterId& id : ids) {
        adapters.m_vecItems.push_back(new CAdapter);
        adapters.m_vecItems.back()->m_wsAdapterID = id.Path();
    }
    return adapters;
}

std::vector<Adapter> Session::Adapters() {
    return ReadList<CAdapters>(
        "EnumerateAdapters", {},
        [&](CAdapters& adapters) { return m_state->quillet.EnumerateAdapters(adapters); },
        [](CAdapter&& record) { return FromRecord(std::move(record)); });
}

std::wstring Session::ObjectIdOf(const AdapterId& adapter) {
    std::wstring objectId;
    // A path without one is odd, and no failure of anything.
    Guarded("GetGUI", adapter.Path(), [&] { return m_state->quillet.GetGUI(adapter.Path(), objectId); });
    return objectId;
}

AdapterId Session::AdapterByObjectId(const std::wstring& objectId) {
    std::wstring path;
    Do("GetAdapterID", objectId, [&] { return m_state->quillet.GetAdapterID(objectId, path); });
    return AdapterId(std::move(path));
}

Adapter Session::ReadAdapter(const AdapterId& adapter) {
    CAdapter record;
    Do("GetAdapterBasicInfo", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterBasicInfo(adapter.Path(), record); });
    record.m_wsAdapterID = adapter.Path();
    return FromRecord(std::move(record));
}

AdapterState Session::ReadState(const AdapterId& adapter) {
    CAdapter record;
    DoInParts(
        "GetAdapterDynamicInfo", adapter.Path(),
        [&] { return m_state->quillet.GetAdapterDynamicInfo(adapter.Path(), record); },
        [&] { return StateIn(record); });
    return StateIn(record);
}

Flags<AdapterCondition> Session::ReadConditions(const AdapterId& adapter) {
    CAdapter record;
    Do("GetAdapterStatus", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterStatus(adapter.Path(), record); });
    return StateIn(record).conditions;
}

std::vector<Capability> Session::Capabilities(const AdapterId& adapter) {
    CAdapter record;
    Do("GetAdapterCapabilities", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterCapabilities(adapter.Path(), record); });
    std::vector<Capability> capabilities;
    if (const CAdapterCapInfo* known = record.m_pAdapterCapabilities) {
        for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
            if (known->*flag.m_pFlag) {
                capabilities.push_back(static_cast<Capability>(flag.m_lCode));
            }
        }
    }
    std::sort(capabilities.begin(), capabilities.end());
    return capabilities;
}

AdapterHardware Session::ReadHardware(const AdapterId& adapter) {
    CPCIInfo record;
    Do("GetAdapterPCIInfo", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterPCIInfo(adapter.Path(), record); });
    return {std::move(record.m_wsControllerID),        std::move(record.m_wsMediaType),
            std::move(record.m_wsNegotiatedLinkWidth), std::move(record.m_wsPortNumber),
            std::move(record.m_wsPartNumber),          std::move(record.m_wsMacAddress),
            std::move(record.m_wsEEPROMVersion),       std::move(record.m_wsSanMacAddress),
            std::move(record.m_wsPCIDeviceID)};
}

std::vector<TeamedPort> Session::TeamedPorts(const AdapterId& adapter) {
    return ReadList<CAdapterPorts>(
        "EnumerateOtherPortOfAdapter", adapter.Path(),
        [&](CAdapterPorts& ports) {
            return m_state->quillet.EnumerateOtherPortOfAdapter(adapter.Path(), ports);
        },
        [](CAdapterPort&& record) { return FromRecord(std::move(record)); });
}

void Session::Identify(const AdapterId& adapter, std::chrono::seconds duration) {
    Do("IdentifyAdapter", adapter.Path(),
       [&] { return m_state->quillet.IdentifyAdapter(adapter.Path(), static_cast<LONG>(duration.count())); });
}

std::wstring Session::HbaPath(const AdapterId& adapter) {
    std::wstring path;
    Do("GetHbaPath", adapter.Path(), [&] { return m_state->quillet.GetHbaPath(adapter.Path(), path); });
    return path;
}

NdisVersion Session::ReadNdisVersion(const AdapterId& adapter) {
    NdisVersion version;
    Do("GetNDIS_Version", adapter.Path(),
       [&] { return m_state->quillet.GetNDIS_Version(adapter.Path(), version.major, version.minor); });
    return version;
}

Flags<ProviderBit> Session::Warnings(const AdapterId& adapter) {
    ULONGLONG warnings = 0;
    Do("GetAdapterWarnings", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterWarnings(adapter.Path(), warnings); });
    return Flags<ProviderBit>::FromMask(warnings);
}

} // namespace quillet
