// Advanced settings, their checks, and performance profiles.
#include "Operations.h"

#include <LumString.h>

namespace quillet {

namespace {

template <class Call>
std::vector<Setting> ReadSettings(const char* operation, const std::wstring& owner, Call call) {
    return ReadList<CSettings>(operation, owner, call,
                               [](CSetting&& record) { return SettingFromRecord(std::move(record)); });
}

OfferedProfile FromRecord(CPerformanceProfile&& record) {
    return {static_cast<Profile>(record.m_eProfile), std::move(record.m_wsDescription), record.m_bIsCurrent};
}

} // namespace

std::vector<Setting> Session::Settings(const AdapterId& adapter, SettingSelector selector) {
    return ReadSettings("GetAdapterSettings", adapter.Path(), [&](CSettings& settings) {
        return m_state->quillet.GetAdapterSettings(adapter.Path(), settings, selector);
    });
}

std::vector<Setting> Session::Settings(const TeamId& team) {
    return ReadSettings("GetTeamSettings", team.Path(), [&](CSettings& settings) {
        return m_state->quillet.GetTeamSettings(team.Path(), settings);
    });
}

std::vector<Setting> Session::Settings(const VlanId& vlan) {
    return ReadSettings("GetVlanSettings", vlan.Path(), [&](CSettings& settings) {
        return m_state->quillet.GetVlanSettings(vlan.Path(), settings);
    });
}

std::vector<Setting> Session::Settings(const BootAgentId& bootAgent) {
    return ReadSettings("GetBootAgentSettings", bootAgent.Path(), [&](CSettings& settings) {
        return m_state->quillet.GetBootAgentSettings(bootAgent.Path(), settings);
    });
}

std::vector<Setting> Session::QueueSettings(const AdapterId& adapter) {
    return ReadSettings("GetAdapterVmqSettings", adapter.Path(), [&](CSettings& settings) {
        return m_state->quillet.GetAdapterVmqSettings(CLumString(adapter.Path()), settings);
    });
}

std::vector<Setting> Session::SettingsOfClass(const std::wstring& className, const std::wstring& objectId,
                                              const std::wstring& keyword, SettingSelector selector) {
    return ReadSettings("GetSettingFromClassOnAdapter", objectId, [&](CSettings& settings) {
        return m_state->quillet.GetSettingFromClassOnAdapter(_bstr_t(className.c_str()),
                                                             _bstr_t(objectId.c_str()),
                                                             _bstr_t(keyword.c_str()), settings, selector);
    });
}

std::optional<Setting> Session::SpeedDuplex(const AdapterId& adapter, bool standardKeyword) {
    CSettingEnum record;
    const HRESULT result = Guarded("GetSpeedDuplexSetting", adapter.Path(), [&] {
        return m_state->quillet.GetSpeedDuplexSetting(adapter.Path(), record, standardKeyword);
    });
    if (result == static_cast<HRESULT>(WBEM_E_NOT_FOUND)) {
        return std::nullopt;
    }
    if (FAILED(result)) {
        throw Error(result, "GetSpeedDuplexSetting", adapter.Path());
    }
    return SettingFromRecord(std::move(record));
}

void Session::Refresh(const std::wstring& objectId, Setting& setting) {
    const std::unique_ptr<CSetting> record = ToRecord(setting);
    Do("GetAdapterSettingAsync", objectId,
       [&] { return m_state->quillet.GetAdapterSettingAsync(CLumString(objectId), record.get()); });
    setting = SettingFromRecord(std::move(*record));
}

void Session::Write(const Setting& setting) {
    Do("SetSetting", setting.id.Path(),
       [&] { return m_state->quillet.SetSetting(setting.id.Path(), *ToRecord(setting)); });
}

SettingVerdict Session::ValidateSetting(const AdapterId& adapter, const std::wstring& keyword,
                                        std::int32_t value) {
    SettingVerdict verdict;
    ULONGLONG reasons = 0;
    Do("ValidateSetSetting", adapter.Path(), [&] {
        return m_state->quillet.ValidateSetSetting(adapter.Path(), verdict.isTeamed, keyword, value, reasons);
    });
    verdict.reasons = Flags<ProviderBit>::FromMask(reasons);
    return verdict;
}

Flags<ProviderBit> Session::ValidateSetting(const VlanId& vlan, const std::wstring& keyword,
                                            std::int32_t value) {
    ULONGLONG reasons = 0;
    Do("ValidateSetSettingOnVlan", vlan.Path(),
       [&] { return m_state->quillet.ValidateSetSettingOnVlan(vlan.Path(), keyword, value, reasons); });
    return Flags<ProviderBit>::FromMask(reasons);
}

JumboFrameVerdict Session::CheckJumboFrames(const AdapterId& adapter) {
    JumboFrameVerdict verdict;
    Do("JumboFramePrecheckSetSetting", adapter.Path(), [&] {
        return m_state->quillet.JumboFramePrecheckSetSetting(adapter.Path(), verdict.onAllMembers,
                                                             verdict.isTeamed);
    });
    return verdict;
}

Flags<RssProblem> Session::CheckRss(std::span<const TeamMember> members, std::span<const AdapterId> wanted) {
    ULONGLONG warnings = 0;
    Do("RSS_PrecheckOnTeamModify", {}, [&] {
        return m_state->quillet.RSS_PrecheckOnTeamModify(ToRecords(members), AdaptersOf(wanted), warnings);
    });
    return Flags<RssProblem>::FromMask(warnings);
}

std::vector<OfferedProfile> Session::Profiles(const AdapterId& adapter) {
    return ReadList<CPerformanceProfiles>(
        "GetAdapterProfiles", adapter.Path(),
        [&](CPerformanceProfiles& profiles) {
            return m_state->quillet.GetAdapterProfiles(adapter.Path(), profiles);
        },
        [](CPerformanceProfile&& record) { return FromRecord(std::move(record)); });
}

std::vector<OfferedProfile> Session::CommonProfiles(std::span<const AdapterId> adapters) {
    return ReadList<CPerformanceProfiles>(
        "GetCompatibleTeamProfilesWithAdapters", {},
        [&](CPerformanceProfiles& profiles) {
            return m_state->quillet.GetCompatibleTeamProfilesWithAdapters(AdaptersOf(adapters), profiles);
        },
        [](CPerformanceProfile&& record) { return FromRecord(std::move(record)); });
}

void Session::ReplaceHyperVProfile(Profile profile) {
    Do("ChangeAllAdapterProfilesFromHyperV", {}, [&] {
        return m_state->quillet.ChangeAllAdapterProfilesFromHyperV(
            static_cast<ePERFORMANCE_PROFILE>(profile));
    });
}

std::vector<std::wstring> Texts(Flags<RssProblem> problems) {
    std::vector<std::wstring> texts;
    for (const RssProblem problem : problems.Each()) {
        switch (problem) {
        case RssProblem::TeamGainsRss:
            texts.emplace_back(L"receive side scaling will be enabled on the team");
            break;
        case RssProblem::DisabledAdapterAdded:
            texts.emplace_back(L"an adapter with receive side scaling disabled joins: the team loses it");
            break;
        case RssProblem::IncapableAdapterAdded:
            texts.emplace_back(L"an adapter without receive side scaling joins: the team loses it");
            break;
        case RssProblem::OtherMakerAdded:
            texts.emplace_back(L"an adapter of another maker joins: the team loses receive side scaling");
            break;
        case RssProblem::AddedToIncapableTeam:
            texts.emplace_back(L"the team cannot have the receive side scaling of the adapter that joins");
            break;
        case RssProblem::AddedToMixedTeam:
            texts.emplace_back(L"the team has adapters of several makers, and so no receive side scaling");
            break;
        default: {
            unsigned number = 0;
            for (std::uint64_t mask = Flags(problem).Mask(); mask > 1; mask >>= 1) {
                ++number;
            }
            texts.push_back(L"problem " + std::to_wstring(number));
        }
        }
    }
    return texts;
}

} // namespace quillet
