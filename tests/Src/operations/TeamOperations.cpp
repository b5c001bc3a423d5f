// Teams.
#include "Operations.h"

namespace {

// Two members of a team, one of which the provider calls by no known word, and two adapters that are free.
constexpr const char* kTeamMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Caption = "Port A"; OriginalDisplayName = "Adapter A"; Status = "OK"; StatusInfo = 3;
        Availability = 3; AdapterStatus = 1; HardwareStatus = 3; Speed = 1000000000; FullDuplex = TRUE;
        LinkSecStatus = 1; PermanentAddress = "02-00-5E-00-00-0A";
        Capabilities = {4, 10, 32, 34, 37, 46, 47}; };
    instance of Zorel_PhysicalEthernetAdapter as $B {
        DeviceID = "{B}"; Caption = "Port B"; OriginalDisplayName = "Adapter B"; AdapterStatus = 1;
        HardwareStatus = 3; PermanentAddress = "02-00-5E-00-00-0B"; Capabilities = {4, 10, 34, 37, 46, 47}; };
    instance of Zorel_PhysicalEthernetAdapter as $C {
        DeviceID = "{C}"; Caption = "Port C"; OriginalDisplayName = "Adapter C"; AdapterStatus = 1;
        HardwareStatus = 3; PermanentAddress = "02-00-5E-00-00-0C"; Capabilities = {4, 34, 46, 47}; };
    instance of Zorel_TeamOfAdapters as $T {
        Name = "{T}"; Caption = "TEAM : One"; TeamingMode = 4; TeamMacAddress = "02-00-5E-00-00-0A";
        MFOEnabled = FALSE; LinksecEnabled = TRUE; BoundToHyperV = TRUE; };
    instance of Zorel_LogicalEthernetAdapter as $L { DeviceID = "{T}"; StatusInfo = 3; };
    instance of Zorel_NetworkVirtualAdapter { SystemElement = $L; SameElement = $T; };
    instance of Zorel_TeamedMemberAdapter {
        GroupComponent = $T; PartComponent = $A; AdapterFunction = 1; AdapterStatus = 1; };
    instance of Zorel_TeamedMemberAdapter {
        GroupComponent = $T; PartComponent = $B; AdapterFunction = 2; AdapterStatus = 7; };)";

std::wstring Adapter(const wchar_t* id) {
    return std::wstring(LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=")") + id +
           L"\"";
}
constexpr const wchar_t* kTeamTeam = LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_TeamOfAdapters.Name="{T}")";

template <class Collection, class Item>
Collection Listed(std::initializer_list<const wchar_t*> ids) {
    Collection list;
    for (const wchar_t* id : ids) {
        list.m_vecItems.push_back(new Item);
        list.m_vecItems.back()->m_wsAdapterID = Adapter(id);
    }
    return list;
}
CAdapters Adapters(std::initializer_list<const wchar_t*> ids) {
    return Listed<CAdapters, CAdapter>(ids);
}
CTeamedAdapters Members(std::initializer_list<const wchar_t*> ids) {
    return Listed<CTeamedAdapters, CTeamedAdapter>(ids);
}

void Tell(Outputs& out, const CTeam& team) {
    out("path", team.m_wsTeamID)("name", team.m_wsName)("caption", team.m_wsCaption)(
        "mode", LONG{team.m_eTeamMode})("address", team.m_wsTeamMacAddress)("mfo", team.m_bMFOEnabled)(
        "linksec", team.m_bLinkSecEnabled)("hyperv", team.m_bBoundToHyperV);
}

void Tell(Outputs& out, const CTeamedAdapters& members) {
    out("members", members.m_vecItems);
    for (const CTeamedAdapter* member : members.m_vecItems) {
        out("device", member->m_wsDeviceID)("role", member->m_lMemberRole)("status", member->m_lMemberStatus);
    }
}

void Tell(Outputs& out, const CTeamWizTeamModes& modes) {
    out("modes", modes.m_vecItems);
    for (const CTeamWizTeamMode* mode : modes.m_vecItems) {
        out("mode", mode->m_lTeamMode)("text", mode->m_wsDescription);
    }
}

/// One code for whatever could not be read of a team.
HRESULT TeamUnreadable(const JournalEntry&, HRESULT) {
    return static_cast<HRESULT>(WBEM_E_FAILED);
}

/// An instance that cannot be fetched has one code; a property has its own.
HRESULT InstanceUnreadable(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::GetObject ? static_cast<HRESULT>(WBEM_E_FAILED) : code;
}

/// The team of a list of members, not the members themselves.
HRESULT TeamOfMembersUnreadable(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::GetObject && failed.target == kTeamTeam
               ? static_cast<HRESULT>(WBEM_E_FAILED)
               : code;
}

bool GoesOnAlways(const JournalEntry&) {
    return true;
}

/// A member whose own status cannot be read is only not counted.
bool IsOfAMember(const JournalEntry& failed) {
    return failed.operation == Operation::SetBlanket || failed.operation == Operation::Get ||
           (failed.operation == Operation::GetObject && failed.target != kTeamTeam);
}

/// An adapter whose memberships cannot be asked for is a phantom, and the others go on.
HRESULT Phantom(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::ExecQuery ? S_OK : code;
}
bool IsQuery(const JournalEntry& failed) {
    return failed.operation == Operation::ExecQuery;
}

/// Without the path of the new team there is none to read.
HRESULT PathDecides(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::Get && failed.target == L"TeamPath"
               ? static_cast<HRESULT>(WBEM_E_FAILED)
               : code;
}

} // namespace

OperationArea TeamOperations() {
    return {
        kTeamMachine,
        true,
        {
            {"EnumerateTeams",
             [](CQuillet& q, Outputs& out) {
                 CTeams teams;
                 const HRESULT result = q.EnumerateTeams(teams);
                 out("teams", teams.m_vecItems);
                 for (const CTeam* team : teams.m_vecItems) {
                     Tell(out, *team);
                 }
                 return result;
             }},
            {"GetTeamInfo",
             [](CQuillet& q, Outputs& out) {
                 CTeam team;
                 const HRESULT result = q.GetTeamInfo(kTeamTeam, team);
                 Tell(out, team);
                 return result;
             },
             TeamUnreadable},
            {"GetTeamStatus",
             [](CQuillet& q, Outputs& out) {
                 CTeam::TeamStatus status{};
                 const HRESULT result = q.GetTeamStatus(kTeamTeam, status);
                 out("status", LONG{status});
                 return result;
             },
             InstanceUnreadable},
            {"GetMemberAdapters",
             [](CQuillet& q, Outputs& out) {
                 CTeamedAdapters members;
                 const HRESULT result = q.GetMemberAdapters(kTeamTeam, members);
                 Tell(out, members);
                 return result;
             },
             TeamOfMembersUnreadable},
            {"GetMemberAdaptersStatus",
             [](CQuillet& q, Outputs& out) {
                 CTeamedAdapters members = Members({L"{A}", L"{B}"});
                 const HRESULT result = q.GetMemberAdaptersStatus(kTeamTeam, members);
                 Tell(out, members);
                 return result;
             }},
            {"IsPrimaryAdapter",
             [](CQuillet& q, Outputs& out) {
                 bool primary = false;
                 const HRESULT result = q.IsPrimaryAdapter(Adapter(L"{A}"), primary);
                 out("primary", primary);
                 return result;
             }},
            {"GetTeamsEthernetAdapterPath",
             [](CQuillet& q, Outputs& out) {
                 _bstr_t path(L"");
                 const HRESULT result = QuilletTestAccess::GetTeamsEthernetAdapterPath(q, kTeamTeam, path);
                 out("path", std::wstring(path));
                 return result;
             }},
            {"CreateTeamCheck",
             [](CQuillet& q, Outputs& out) {
                 out("mask",
                     q.CreateTeamCheck(CTeam::TeamMode4, L"TEAM : One", Adapters({L"{A}", L"{C}"}), 3));
                 return S_OK;
             },
             {},
             GoesOnAlways,
             true},
            {"CreateTeam",
             [](CQuillet& q, Outputs& out) {
                 CTeam team;
                 const HRESULT result = q.CreateTeam(CTeam::TeamMode0, L"TEAM : Two", Adapters({L"{C}"}),
                                                     team, PERFORMANCE_PROFILE_CUSTOM, true, false);
                 Tell(out, team);
                 return result;
             },
             PathDecides},
            {"ValidateTeamName",
             [](CQuillet& q, Outputs& out) {
                 DWORD word = 0;
                 const HRESULT result = q.ValidateTeamName(L"TEAM : One", L"Zorel_TeamOfAdapters", word);
                 out("word", word);
                 return result;
             }},
            {"ValidateTeamMode",
             [](CQuillet& q, Outputs& out) {
                 DWORD word = 0;
                 const HRESULT result = q.ValidateTeamMode(CTeam::TeamModeUnknown, kTeamTeam, word);
                 out("word", word);
                 return result;
             }},
            {"ValidateNewTeamMembers",
             [](CQuillet& q, Outputs& out) {
                 ULONGLONG word = 0;
                 const HRESULT result =
                     q.ValidateNewTeamMembers(Adapters({L"{A}", L"{C}"}), CTeam::TeamMode0, word);
                 out("word", word);
                 return result;
             }},
            {"ValidateSettingsOnNewTeam",
             [](CQuillet& q, Outputs& out) {
                 ULONGLONG word = 0;
                 const HRESULT result = q.ValidateSettingsOnNewTeam(Adapters({L"{none}", L"{C}"}), word);
                 out("word", word);
                 return result;
             }},
            {"ValidateAddAdapters",
             [](CQuillet& q, Outputs& out) {
                 ULONGLONG word = 0;
                 const HRESULT result =
                     q.ValidateAddAdapters(kTeamTeam, Members({L"{A}", L"{B}"}), Adapters({L"{C}"}), word);
                 out("word", word);
                 return result;
             }},
            {"GetTeamNamePrefix",
             [](CQuillet& q, Outputs& out) {
                 std::wstring prefix;
                 const HRESULT result = q.GetTeamNamePrefix(prefix);
                 out("prefix", prefix);
                 return result;
             }},
            {"ModifyMemberList",
             [](CQuillet& q, Outputs&) {
                 return q.ModifyMemberList(kTeamTeam, Members({L"{A}", L"{B}"}), Adapters({L"{A}", L"{C}"}));
             }},
            {"ModifyTeamInfo",
             [](CQuillet& q, Outputs&) {
                 CTeam team;
                 team.m_wsCaption = L"Renamed";
                 return q.ModifyTeamInfo(kTeamTeam, team);
             }},
            {"SetTeamedAdapterPriority",
             [](CQuillet& q, Outputs&) { return q.SetTeamedAdapterPriority(Adapter(L"{B}"), 1); }},
            {"RemoveTeam", [](CQuillet& q, Outputs&) { return q.RemoveTeam(kTeamTeam); }},
            {"GetTeamableAdapters",
             [](CQuillet& q, Outputs& out) {
                 CAdapters adapters = Adapters({L"{C}", L"{A}"});
                 const HRESULT result = q.GetTeamableAdapters(adapters);
                 out("first", adapters.m_vecItems[0]->m_bTeamed)("second", adapters.m_vecItems[1]->m_bTeamed);
                 return result;
             },
             Phantom, IsQuery},
            {"GetAdapterTeamModes",
             [](CQuillet& q, Outputs& out) {
                 CAdapter adapter;
                 const HRESULT result = q.GetAdapterTeamModes(Adapter(L"{A}"), adapter);
                 if (adapter.m_pTeamModes) {
                     Tell(out, *adapter.m_pTeamModes);
                 }
                 return result;
             }},
            {"GetCompatibleTeamModesWithAdapters",
             [](CQuillet& q, Outputs& out) {
                 CTeamWizTeamModes modes;
                 const HRESULT result =
                     q.GetCompatibleTeamModesWithAdapters(Adapters({L"{A}", L"{B}"}), modes, true);
                 Tell(out, modes);
                 return result;
             }},
            {"GetBestTeamMode",
             [](CQuillet& q, Outputs& out) {
                 CTeamWizTeamMode mode;
                 CTeam::TeamAutoDetectStatus status{};
                 unsigned int coverage = 0;
                 const HRESULT result = q.GetBestTeamMode(kTeamTeam, mode, status, coverage);
                 out("mode", mode.m_lTeamMode)("text", mode.m_wsDescription)("status", LONG{status})(
                     "coverage", coverage);
                 return result;
             }},
            {"TestSwitchConfiguration",
             [](CQuillet& q, Outputs& out) {
                 CTeam::SwitchCmdStatus status{};
                 std::vector<std::wstring> causes, solutions;
                 std::vector<int> causeIds, solutionIds;
                 const HRESULT result = q.TestSwitchConfiguration(kTeamTeam, CTeam::SwitchCmdStart, status,
                                                                  causes, solutions, causeIds, solutionIds);
                 out("status", LONG{status})("causes", causes)("solutions", solutions)("causeIds", causeIds)(
                     "solutionIds", solutionIds);
                 return result;
             }},
            {"GetNumberEnabledMembers",
             [](CQuillet& q, Outputs& out) {
                 int count = 0;
                 const HRESULT result = q.GetNumberEnabledMembers(kTeamTeam, count);
                 out("count", count);
                 return result;
             },
             TeamOfMembersUnreadable, IsOfAMember},
        },
    };
}
