// Making a team, and the rules that can be checked before the provider is asked.
#include <quillet/Quillet.h>

#include "Adapters/AdapterIds.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderMethod.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

#include <algorithm>
#include <iterator>

namespace {

using OnNull = PropertyReader::OnNull;

/// What is checked.
enum CheckKind : int { NameOnly = 0, MembersOnly = 1, MembersOnlyToo = 2, NameAndMembers = 3 };

/// The most members of a team of switch fault tolerance.
constexpr std::size_t SWITCH_FAULT_TOLERANCE_MEMBERS = 2;

using CapabilityFlag = bool CAdapterCapInfo::*;

/// The flag that says that an adapter supports a team mode. The flags are not in the order of the modes.
CapabilityFlag SupportFlag(CTeam::TeamMode mode) {
    switch (mode) {
    case CTeam::TeamMode0:
        return &CAdapterCapInfo::m_bTeamMode0;
    case CTeam::TeamMode1:
        return &CAdapterCapInfo::m_bTeamMode1;
    case CTeam::TeamMode2:
        return &CAdapterCapInfo::m_bTeamMode2;
    case CTeam::TeamMode3:
        return &CAdapterCapInfo::m_bTeamMode3;
    case CTeam::TeamMode4:
        return &CAdapterCapInfo::m_bTeamMode4;
    case CTeam::TeamMode5:
        return &CAdapterCapInfo::m_bTeamMode5;
    case CTeam::TeamMode6:
        return &CAdapterCapInfo::m_bTeamMode6;
    default:
        return &CAdapterCapInfo::m_bTeamModeOther;
    }
}

/// The speed flags with their capability codes, lowest speed first.
struct Speed {
    CapabilityFlag flag;
    int code;
};
constexpr Speed SPEEDS[] = {{&CAdapterCapInfo::m_bSpeed10Mb, 32},
                            {&CAdapterCapInfo::m_bSpeed100Mb, 33},
                            {&CAdapterCapInfo::m_bSpeed1Gb, 34},
                            {&CAdapterCapInfo::m_bSpeed10Gb, 35}};

/// What the members of a team amount to, gathered one by one.
class MemberCheck {
  public:
    explicit MemberCheck(CTeam::TeamMode mode) : m_mode(mode), m_support(SupportFlag(mode)) {}

    void Add(const CAdapterCapInfo& member) {
        m_serverFound = m_serverFound || member.m_bServerAdapter;
        if (!(member.*m_support)) {
            m_modesMatch = false;
            return;
        }
        m_vlansPossible = m_vlansPossible && member.m_bVLAN;
        if (!member.m_bCapability47) {
            return; // its speed flags say nothing
        }
        if (member.m_bSpeed10Gb) {
            m_tenGigabitFound = true;
        } else if (!member.m_bSpeed1Gb && (member.m_bSpeed10Mb || member.m_bSpeed100Mb)) {
            m_slowFound = true;
        }
        if (m_mode == CTeam::TeamMode2) {
            ShareSpeeds(member);
        }
    }

    /// @param mask the problems found before; some problems stand alone.
    ULONGLONG Verdict(ULONGLONG mask, std::size_t count) const {
        if (m_tenGigabitFound && m_slowFound) {
            TraceText(L"TEN_GIG_TEAM_MISMATCH");
            return CTeam::ProblemMixedSpeeds;
        }
        if (m_mode == CTeam::TeamMode2 && m_sharedSpeeds.empty()) {
            TraceText(L"SLA FIBER MISMATCH");
            return CTeam::ProblemNoSharedSpeed;
        }
        if (!m_serverFound) {
            TraceText(L"No Server adapters found");
            mask |= CTeam::ProblemNoServerAdapter;
        }
        if (!m_modesMatch) {
            TraceText(L"Team Modes Mismatch");
            mask |= CTeam::ProblemModeNotSupported;
        }
        if (!m_vlansPossible) {
            TraceText(L"VLAN Creation not possible");
            mask |= CTeam::ProblemNoVLANs;
        }
        // Fewer than two are let pass, whatever the line says.
        if (m_mode == CTeam::TeamMode5 && count > SWITCH_FAULT_TOLERANCE_MEMBERS) {
            TraceText(L"SFT Mode. Adapter count <> 2");
            mask |= CTeam::ProblemMoreThanTwo;
        }
        return mask;
    }

  private:
    void ShareSpeeds(const CAdapterCapInfo& member) {
        for (const Speed& speed : SPEEDS) {
            const bool has = member.*speed.flag;
            if (!m_speedsKnown && has) {
                m_sharedSpeeds.push_back(speed.code);
            } else if (m_speedsKnown && !has) {
                CQuillet::RemoveIntVectorElement(m_sharedSpeeds, speed.code);
            }
        }
        m_speedsKnown = true;
    }

    CTeam::TeamMode m_mode;
    CapabilityFlag m_support;
    bool m_serverFound = false;
    bool m_modesMatch = true;
    bool m_vlansPossible = true;
    bool m_tenGigabitFound = false;
    bool m_slowFound = false;
    bool m_speedsKnown = false;
    std::vector<int> m_sharedSpeeds;
};

} // namespace

ULONGLONG CQuillet::CreateTeamCheck(CTeam::TeamMode mode, const std::wstring& name, const CAdapters& members,
                                    int kind) {
    const OperationTrace trace(L"CreateTeamCheck");
    if (members.m_vecItems.empty() && kind != NameOnly) {
        return CTeam::ProblemNoServerAdapter;
    }
    ULONGLONG mask = 0;
    if (kind == NameOnly || kind == NameAndMembers) {
        CTeams teams;
        // The teams that could be read count, also when others could not.
        EnumerateTeams(teams);
        for (const CTeam* team : teams.m_vecItems) {
            if (team->m_wsCaption == name) {
                TraceText(L"Team Name Not Unique");
                mask |= CTeam::ProblemNameTaken;
            }
        }
    }
    if (kind != MembersOnly && kind != MembersOnlyToo && kind != NameAndMembers) {
        return mask;
    }
    if (members.m_vecItems.size() > CTeam::MaximumMembers) {
        TraceText(L"Maximum adapters in a team");
        mask |= CTeam::ProblemTooManyMembers;
    }
    MemberCheck check(mode);
    for (const CAdapter* member : members.m_vecItems) {
        TraceText(L"calling GetAdapterCapabilities ");
        // A record of its own: the caller's may hold capabilities from before.
        CAdapter adapter;
        if (member && SUCCEEDED(GetAdapterCapabilities(member->m_wsAdapterID, adapter)) &&
            adapter.m_pAdapterCapabilities) {
            check.Add(*adapter.m_pAdapterCapabilities);
        }
    }
    return check.Verdict(mask, members.m_vecItems.size());
}

HRESULT CQuillet::CreateTeam(CTeam::TeamMode mode, const std::wstring& name, const CAdapters& members,
                             CTeam& team, ePERFORMANCE_PROFILE profile, bool mfoEnable, bool linkSecEnable) {
    const OperationTrace trace(L"CreateTeam");
    const ProviderSession session(*this, {name.empty(), L"(wsTeamName.empty())", RESULT_WBEM_FAILED});
    ProviderMethod method(session, L_CLASS_ZOREL_TEAMOFADAPTERS, L_METHOD_TEAMOFADAPTERS_CREATETEAM);
    method.Put(L_PARAM_TEAM_ADAPTERS, AdapterIds(members))
        .Put(L_PARAM_TEAM_TEAMINGMODE, VariantOfLong(mode))
        .Put(L_PARAM_TEAM_TEAMNAME, VariantOfText(name))
        .Put(L_PARAM_TEAM_MFOENABLE, VariantOfBool(mfoEnable))
        .Put(L_PARAM_TEAM_LINKSECENABLED, VariantOfBool(linkSecEnable))
        .Put(L_PARAM_TEAM_TEAMPROFILE, VariantOfLong(profile))
        .Exec(L_CLASS_ZOREL_TEAMOFADAPTERS.name);
    if (method.Failed()) {
        return method.Result();
    }
    // Two readers: without a path the provider's return value is still worth a line.
    std::wstring path;
    method.Read().When(OnNull::Note).String(L_PARAM_TEAM_TEAMPATH, path);
    PropertyReader read = method.Read();
    // The verdict itself decides nothing: there is a new team when there is a path to it.
    if (read.Verdict(L"CreateTeam").Failed()) {
        return read.Result();
    }
    team.m_eTeamMode = mode;
    team.m_wsCaption = name;
    team.m_wsTeamID = path;
    if (path.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"GetObject -> bstrTeamPath");
    }
    const ProviderInstance created(session, path, L"GetObject -> bstrTeamPath");
    return created.Read(L"pTeamInstance")
        .When(OnNull::Note)
        .String(L_PROP_TEAMOFADAPTERS_NAME, team.m_wsName)
        .Result();
}
