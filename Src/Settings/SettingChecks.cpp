// Checks of one setting across several adapters: what the members of a team have in common, and what a change
// of the members does to it.
#include <quillet/Quillet.h>

#include "Adapters/AdapterIds.h"
#include "Provider/ObjectIds.h"
#include "Settings/OwnedSetting.h"
#include "Provider/ProviderSession.h"

#include <algorithm>

/// A member of a team, as far as one setting goes.
struct CQuillet::MemberSetting {
    std::wstring adapterId;
    bool thirdParty = false; ///< the adapter does not tell what it can do
    bool carries = false;    ///< the adapter has the setting
    bool enabled = false;    ///< and it is enabled
};

namespace {

/// What the counts of IsTeamCapableOfAdvancedSetting carry instead of the number of capable members.
constexpr LONG NOT_ON_EVERY_MEMBER = 2;
constexpr LONG THIRD_PARTY_MEMBER = 3;

template <class Member>
LONG Count(const std::vector<Member>& members, bool Member::*what) {
    return static_cast<LONG>(
        std::count_if(members.begin(), members.end(), [=](const Member& member) { return member.*what; }));
}

/// Whether every member can have the setting enabled. The counts are those of the members, but the first
/// becomes the reason when the answer is no.
template <class Member>
bool IsCapable(const std::vector<Member>& members, LONG& capable, LONG& enabled) {
    const LONG all = static_cast<LONG>(members.size());
    capable = Count(members, &Member::carries);
    enabled = Count(members, &Member::enabled);
    if (capable == all) {
        TraceText(L"CQuillet::IsTeamCapableOfAdvancedSetting - all members are capable of the setting.");
        if (all > 0 && enabled == all) {
            TraceText(L"CQuillet::IsTeamCapableOfAdvancedSetting - all members have the setting enabled.");
        }
        return true;
    }
    if (Count(members, &Member::thirdParty) > 0) {
        TraceText(L"CQuillet::IsTeamCapableOfAdvancedSetting - at least one adapter is a 3rd party.");
        capable = THIRD_PARTY_MEMBER;
    } else {
        TraceText(
            L"CQuillet::IsTeamCapableOfAdvancedSetting - at least one adapter does not support the setting.");
        capable = NOT_ON_EVERY_MEMBER;
    }
    return false;
}

template <class Member>
bool IsOldTeamCapable(const std::vector<Member>& members) {
    LONG capable = 0;
    LONG enabled = 0;
    if (!IsCapable(members, capable, enabled)) {
        return false;
    }
    TraceText(L"IsOldTeamCapableOfSetting - Old team is capable of the setting.");
    return true;
}

/// What a change of a team's members is judged by.
struct RssChange {
    bool oldEnabled;    ///< the team has members, and all have RSS enabled
    bool oldThirdParty; ///< the team holds another maker's adapter
    bool oldCapable;    ///< every member has the setting
    bool thirdPartyAdded;
    bool incapableAdded;
    bool disabledAdded;
    bool enabledAdded;
    bool newEnabled; ///< all members of the changed team have RSS enabled
};

/// The first case that applies decides.
ULONGLONG Judge(const RssChange& change) {
    const struct {
        bool applies;
        ULONGLONG warning;
        const wchar_t* text;
    } cases[] = {
        {change.thirdPartyAdded && change.oldEnabled, RssWarningThirdPartyAdded,
         L"CQuillet::RSS_PrecheckOnTeamModify() - adding a 3rd party NIC to RSS enabled Team."},
        {change.incapableAdded && change.oldEnabled, RssWarningIncapableAdapterAdded,
         L"CQuillet::RSS_PrecheckOnTeamModify() - adding non RSS device to RSS enabled Team."},
        {change.disabledAdded && change.oldEnabled, RssWarningDisabledAdapterAdded,
         L"The old team had RSS enabled and an adapter with RSS disabled was added, disabling RSS on the "
         L"whole team."},
        {change.enabledAdded && change.oldThirdParty, RssWarningAddedToMixedTeam,
         L"CQuillet::RSS_PrecheckOnTeamModify() - adding RSS enabled NIC to MVT Team."},
        {change.enabledAdded && !change.oldCapable, RssWarningAddedToIncapableTeam,
         L"CQuillet::RSS_PrecheckOnTeamModify() - adding RSS enabled NIC to unsupported RSS Team."},
        {change.newEnabled && !change.oldEnabled, RssWarningTeamGainsRss,
         L"CQuillet::RSS_PrecheckOnTeamModify() - new Team now has RSS enabled, when it previously did not."},
        {true, RssWarningNone,
         L"CQuillet::RSS_PrecheckOnTeamModify() - Team + adapter will not change after adding to team."},
    };
    const auto decisive =
        std::find_if(std::begin(cases), std::end(cases), [](const auto& each) { return each.applies; });
    TraceText(decisive->text);
    return decisive->warning;
}

} // namespace

bool CQuillet::CheckForValueMismatch(const CSettings& settings, bool exact) {
    const OperationTrace trace(L"CheckForValueMismatch");
    const auto number = [](const CSetting& setting) {
        LONG value = 0;
        setting.GetCurrentVal(value);
        return value;
    };
    const CSetting* reference = nullptr;
    for (const CSetting* setting : settings.m_vecItems) {
        reference = setting ? setting : reference;
    }
    for (const CSetting* setting : settings.m_vecItems) {
        if (setting && (exact ? setting->CurrentValueToSTRING() != reference->CurrentValueToSTRING()
                              : number(*setting) < number(*reference))) {
            TraceText(L"CQuillet::CheckForValueMismatch - Settings do not match!");
            return false;
        }
    }
    return true;
}

bool CQuillet::IsScalableNetworkingPackInstalled(const CAdapters& adapters) {
    const OperationTrace trace(L"IsScalableNetworkingPackInstalled");
    for (const CAdapter* adapter : adapters.m_vecItems) {
        if (!adapter) {
            continue;
        }
        CAdapter read; // the caller's record stays as it is
        if (SUCCEEDED(GetAdapterCapabilities(adapter->m_wsAdapterID, read)) &&
            read.m_pAdapterCapabilities->m_bCapability47 && read.m_pAdapterCapabilities->m_bCapability61) {
            TraceText(L"CQuillet::IsScalableNetworkingPackInstalled - SNP is installed!");
            return true;
        }
    }
    return false;
}

HRESULT CQuillet::GetJumboFrameSettings(const std::vector<std::wstring>& adapterIds, CSettings& settings,
                                        bool& onAll) {
    const OperationTrace trace(L"GetJumboFrameSettings");
    return GetSettingOnTeamOrAdapter(adapterIds, settings, onAll, SettingName::MaxFrameSize);
}

HRESULT CQuillet::JumboFramePrecheckSetSetting(const std::wstring& adapterId, bool& onAllMembers,
                                               bool& isTeamed) {
    const OperationTrace trace(L"JumboFramePrecheckSetSetting");
    onAllMembers = true;
    std::wstring teamId;
    HRESULT result = FindTeamOfAdapter(adapterId, isTeamed, teamId);
    if (FAILED(result) || !isTeamed) {
        return result;
    }
    CTeamedAdapters members;
    result = GetMemberAdapters(teamId, members);
    if (FAILED(result)) {
        return trace.Fail(result, L"GetMemberAdapters() call FAILED");
    }
    CSettings settings;
    bool onAll = false;
    result = GetJumboFrameSettings(AdapterIds(members), settings, onAll);
    if (FAILED(result)) {
        return trace.Fail(result, L"GetJumboFrameSettings Fail");
    }
    onAllMembers = onAll;
    return S_OK;
}

HRESULT CQuillet::ReadSettingOfMembers(const std::vector<std::wstring>& adapterIds, SettingName name,
                                       std::vector<MemberSetting>& members) {
    for (const std::wstring& adapterId : adapterIds) {
        MemberSetting member;
        member.adapterId = adapterId;
        CAdapter read;
        member.thirdParty = FAILED(GetAdapterCapabilities(adapterId, read));
        members.push_back(std::move(member));
    }
    // All at once: each query walks the settings of the whole machine.
    std::vector<OwnedSetting> settings;
    bool onAll = false;
    const HRESULT result = FindSettings(adapterIds, name, settings, onAll);
    if (FAILED(result)) {
        return result;
    }
    for (MemberSetting& member : members) {
        const std::wstring parentId = ParentIdOf(member.adapterId);
        for (const OwnedSetting& each : settings) {
            if (IsSameObjectId(each.parentId, parentId)) {
                member.carries = true;
                member.enabled = member.enabled || each.setting->IsEnabled();
            }
        }
    }
    return S_OK;
}

bool CQuillet::IsTeamCapableOfAdvancedSetting(const std::vector<std::wstring>& adapterIds,
                                              const SettingName& name, LONG& capable, LONG& enabled) {
    const OperationTrace trace(L"IsTeamCapableOfAdvancedSetting");
    capable = 0;
    enabled = 0;
    std::vector<MemberSetting> members;
    return SUCCEEDED(ReadSettingOfMembers(adapterIds, name, members)) && IsCapable(members, capable, enabled);
}

bool CQuillet::IsOldTeamCapableOfSetting(const CTeamedAdapters& members, const SettingName& name) {
    const OperationTrace trace(L"IsOldTeamCapableOfSetting");
    std::vector<MemberSetting> read;
    return SUCCEEDED(ReadSettingOfMembers(AdapterIds(members), name, read)) && IsOldTeamCapable(read);
}

HRESULT CQuillet::RSS_PrecheckOnTeamModify(const CTeamedAdapters& currentMembers,
                                           const CAdapters& wantedAdapters, ULONGLONG& warnings) {
    const OperationTrace trace(L"RSS_PrecheckOnTeamModify");
    warnings = RssWarningNone;
    // Without a connection every adapter would look like another maker's.
    if (const ProviderSession session(*this); session.Failed()) {
        return session.Result();
    }
    if (!IsScalableNetworkingPackInstalled(wantedAdapters)) {
        return trace.Fail(S_OK, L"The Scalable Networking Pack is not installed!");
    }
    std::vector<std::wstring> added;
    GetNewAdaptersAddedToTeam(currentMembers, wantedAdapters, added);
    if (added.empty()) {
        return trace.Fail(S_OK, L"RSS_PrecheckOnTeamModify -> The user is only removing an adapter(s).");
    }
    if (AdapterIds(wantedAdapters).size() == 1) {
        return trace.Fail(
            S_OK, L"RSS_PrecheckOnTeamModify -> The new Team only contains 1 adapter, returning success");
    }

    std::vector<std::wstring> ids = AdapterIds(currentMembers);
    const auto oldCount = static_cast<std::ptrdiff_t>(ids.size());
    ids.insert(ids.end(), added.begin(), added.end());
    std::vector<MemberSetting> all;
    const HRESULT result = ReadSettingOfMembers(ids, SettingName::RssMode, all);
    if (FAILED(result)) {
        return trace.Fail(result, L"GetSettingOnTeamOrAdapter() call FAILED");
    }
    const std::vector<MemberSetting> oldTeam(all.begin(), all.begin() + oldCount);
    const std::vector<MemberSetting> newcomers(all.begin() + oldCount, all.end());
    const auto any = [](const std::vector<MemberSetting>& members, auto test) {
        return std::any_of(members.begin(), members.end(), test);
    };
    RssChange change{};
    change.oldEnabled = !oldTeam.empty() && !any(oldTeam, [](const auto& member) { return !member.enabled; });
    change.oldThirdParty = any(oldTeam, [](const auto& member) { return member.thirdParty; });
    change.oldCapable = IsOldTeamCapable(oldTeam);
    change.thirdPartyAdded = any(newcomers, [](const auto& member) { return member.thirdParty; });
    change.incapableAdded = any(newcomers, [](const auto& member) { return !member.carries; });
    change.disabledAdded =
        any(newcomers, [](const auto& member) { return member.carries && !member.enabled; });
    change.enabledAdded = any(newcomers, [](const auto& member) { return member.enabled; });
    change.newEnabled = !any(all, [&](const auto& member) {
        return HasAdapter(wantedAdapters, member.adapterId) && !member.enabled;
    });
    warnings = Judge(change);
    return S_OK;
}
