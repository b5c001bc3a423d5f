// Provider calls of the operations on teams.
#include "CallCounts.h"

#include <algorithm>

namespace quillet::tests {

namespace {

/// Teams of two.
MachineSize Teams(unsigned n) {
    return {.adapters = 2 * n, .teams = n};
}
/// The first team among others that must not matter.
MachineSize OneAmongTeams(unsigned n) {
    return Teams(n + 1);
}
/// One team of so many.
MachineSize Members(unsigned n) {
    return {.adapters = n, .teams = 1, .members = n};
}
/// The same with adapters that could join.
MachineSize MembersAndOthers(unsigned n) {
    return {.adapters = 2 * n, .teams = 1, .members = n};
}
/// How many of n adapters a team of one takes.
unsigned Newcomers(unsigned n) {
    return std::min<unsigned>(n, static_cast<unsigned>(CTeam::MaximumMembers) - 1);
}
MachineSize MembersAndTheirSettings(unsigned n) {
    return {.adapters = n + 1, .settings = 6, .teams = 1, .members = n + 1};
}

/// The teams, each with the properties that the enumeration brings.
constexpr auto kAllTeams = [](unsigned n) { return Enumeration(n); };

/// The members as adapters and as memberships; the team is asked for its caption, and each adapter for its
/// state, once for every member.
Count MemberAdapters(unsigned members) {
    return Query(members) + members * kObject + Query(members) + members * kObject;
}

/// The adapter's capabilities, and the text that the class gives to each of the seven that are team modes.
constexpr Count kTeamModes{.objects = 1 + 7};

const Operation kTeamCallCountsOperations[] = {
    {"EnumerateTeams", Teams, OfMachine<&CQuillet::EnumerateTeams>, kAllTeams},
    {"GetTeamInfo", OneAmongTeams, OfTeam<&CQuillet::GetTeamInfo>, kOneObject},
    {"GetTeamStatus", OneAmongTeams, OfTeam<&CQuillet::GetTeamStatus>,
     // The state is that of the team's logical adapter, whose path is made here.
     kOneObject},
    {"GetTeamSettings", OneAmongTeams, OfTeam<&CQuillet::GetTeamSettings>, [](unsigned) { return Query(0); }},
    {"GetMemberAdapters", Members, OfTeam<&CQuillet::GetMemberAdapters>, MemberAdapters},
    {"GetMemberAdaptersStatus", [](unsigned n) { return Members(n + 1); },
     [](CQuillet& q, unsigned n) {
         CTeamedAdapters members = FirstMembers(n + 1);
         return q.GetMemberAdaptersStatus(TeamId(1), members);
     },
     // One membership for each member, and the state of its adapter.
     [](unsigned n) { return Query(n + 1) + (n + 1) * kObject; }},
    {"IsPrimaryAdapter", OneAmongTeams, OfAdapter<&CQuillet::IsPrimaryAdapter>,
     [](unsigned) { return kFirstOfQuery; }},
    {"GetNumberEnabledMembers", Members, OfTeam<&CQuillet::GetNumberEnabledMembers>,
     [](unsigned n) { return MemberAdapters(n) + n * kObject; }},
    {"CreateTeamCheck_OfTheName", Teams,
     [](CQuillet& q, unsigned) {
         return q.CreateTeamCheck(CTeam::TeamMode0, L"New", {}, 0) == 0 ? S_OK : E_UNEXPECTED;
     },
     kAllTeams},
    {"CreateTeamCheck_OfTheMembers", [](unsigned n) { return MachineSize{.adapters = n, .teams = n / 2}; },
     [](CQuillet& q, unsigned n) {
         q.CreateTeamCheck(CTeam::TeamMode0, L"New", FirstAdapters(n), 1);
         return S_OK;
     },
     // The capabilities of each; the teams are not looked at.
     [](unsigned n) { return n * kObject; }},
    {"CreateTeamCheck_OfBoth", [](unsigned n) { return Teams(n + 1); },
     [](CQuillet& q, unsigned n) {
         q.CreateTeamCheck(CTeam::TeamMode0, L"New", FirstAdapters(n + 1), 3);
         return S_OK;
     },
     [](unsigned n) { return Enumeration(n + 1) + (n + 1) * kObject; }},
    {"CreateTeam", [](unsigned n) { return MachineSize{.adapters = n + 3}; },
     [](CQuillet& q, unsigned) {
         CTeam team;
         return q.CreateTeam(CTeam::TeamMode0, L"New", FirstAdapters(2), team, ePERFORMANCE_PROFILE(2), false,
                             false);
     },
     // The new team is read back for its name.
     [](unsigned) { return kMethod + kObject; }},
    {"ValidateTeamName", OneAmongTeams,
     [](CQuillet& q, unsigned) {
         DWORD validation = 0;
         return q.ValidateTeamName(L"New", L"Zorel_TeamOfAdapters", validation);
     },
     kOneMethod},
    {"ValidateNewTeamMembers", Members,
     [](CQuillet& q, unsigned n) {
         ULONGLONG validation = 0;
         return q.ValidateNewTeamMembers(FirstAdapters(n), CTeam::TeamMode0, validation);
     },
     // All members go in one call; of none nothing is asked.
     [](unsigned n) { return (n > 0 ? 1 : 0) * kMethod; }},
    {"ValidateSettingsOnNewTeam", Members,
     [](CQuillet& q, unsigned n) {
         ULONGLONG validation = 0;
         return q.ValidateSettingsOnNewTeam(FirstAdapters(n), validation);
     },
     [](unsigned n) { return (n > 0 ? 1 : 0) * kMethod; }},
    {"ValidateAddAdapters", MembersAndOthers,
     [](CQuillet& q, unsigned n) {
         ULONGLONG validation = 0;
         return q.ValidateAddAdapters(TeamId(1), FirstMembers(n), FirstAdapters(2 * n), validation);
     },
     kOneMethod},
    {"GetTeamNamePrefix", Teams, OfMachine<&CQuillet::GetTeamNamePrefix>,
     // The prefix is a qualifier of the class.
     kOneObject},
    {"ModifyMemberList_ToTheSameMembers", Members,
     [](CQuillet& q, unsigned n) { return q.ModifyMemberList(TeamId(1), FirstMembers(n), FirstAdapters(n)); },
     // Nobody leaves, nobody comes.
     [](unsigned) { return Count{}; }},
    {"ModifyMemberList_ByMoreMembers",
     [](unsigned n) { return MachineSize{.adapters = n + 1, .teams = 1, .members = 1}; },
     [](CQuillet& q, unsigned n) {
         return q.ModifyMemberList(TeamId(1), FirstMembers(1), FirstAdapters(1 + Newcomers(n)));
     },
     // Each newcomer is an instance of the class, which is fetched once, and is written by itself.
     [](unsigned n) { return (n > 0 ? 1 : 0) * kObject + Newcomers(n) * kCommit; }},
    {"ModifyMemberList_ToTheFirstMember", Members,
     [](CQuillet& q, unsigned n) {
         return q.ModifyMemberList(TeamId(1), FirstMembers(n), FirstAdapters(n > 0 ? 1 : 0));
     },
     // The memberships tell which of them go. All are looked at; each that goes is one deletion.
     [](unsigned n) { return n > 1 ? Query(n) + (n - 1) * Count{.deletions = 1} : Count{}; }},
    {"ModifyTeamInfo", OneAmongTeams,
     [](CQuillet& q, unsigned) {
         CTeam team;
         team.m_eTeamMode = CTeam::TeamMode1;
         team.m_wsCaption = L"Renamed";
         return q.ModifyTeamInfo(TeamId(1), team);
     },
     // Mode and caption go back together.
     [](unsigned) { return kObject + kCommit; }},
    {"SetTeamedAdapterPriority", OneAmongTeams,
     [](CQuillet& q, unsigned) { return q.SetTeamedAdapterPriority(AdapterId(2), 1); },
     [](unsigned) { return kFirstOfQuery + kCommit; }},
    {"RemoveTeam", [](unsigned n) { return Members(n + 1); },
     [](CQuillet& q, unsigned) { return q.RemoveTeam(TeamId(1)); },
     // What hangs on a team is the provider's business.
     [](unsigned) { return Count{.deletions = 1}; }},
    {"GetTeamableAdapters", Teams,
     [](CQuillet& q, unsigned n) {
         CAdapters adapters = FirstAdapters(2 * n);
         return q.GetTeamableAdapters(adapters);
     },
     // Whether there is a first membership is all that counts.
     [](unsigned n) { return (2 * n) * kFirstOfQuery; }},
    {"GetAdapterTeamModes", OneAmongTeams, OfAdapter<&CQuillet::GetAdapterTeamModes>,
     [](unsigned) { return kTeamModes; }},
    {"GetCompatibleTeamModesWithAdapters", OneAmongTeams,
     [](CQuillet& q, unsigned n) {
         CTeamWizTeamModes modes;
         return q.GetCompatibleTeamModesWithAdapters(FirstAdapters(n + 1), modes, true);
     },
     [](unsigned n) { return (n + 1) * kTeamModes; }},
    {"JumboFramePrecheckSetSetting", MembersAndTheirSettings,
     [](CQuillet& q, unsigned n) {
         bool onAll = false;
         bool teamed = false;
         // The last one of an odd number has its slot to itself.
         return q.JumboFramePrecheckSetSetting(FullPath(AdapterId(n + 1)), onAll, teamed);
     },
     // The ports tell the team, the team its members. Of the enumerated settings each adapter has one in six;
     // they are enumerated once for all.
     [](unsigned n) {
         const unsigned ports = n % 2 == 0 ? 1 : 2;
         return kObject + Query(ports) + ports * Query(1) + MemberAdapters(n + 1) + Enumeration(n + 1);
     }},
    {"RSS_PrecheckOnTeamModify", [](unsigned n) { return MembersAndTheirSettings(n + 2); },
     [](CQuillet& q, unsigned n) {
         ULONGLONG warnings = 0;
         // One more than there are.
         return q.RSS_PrecheckOnTeamModify(FirstMembers(n + 2), FirstAdapters(n + 3), warnings);
     },
     // The first adapter has the networking pack already; then the capabilities of all members, old and new,
     // and the enumerated settings once for all.
     [](unsigned n) { return kObject + (n + 3) * kObject + Enumeration(n + 3); }},
};

std::string TeamCaseName(const testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Teams, CallCountsTest, testing::ValuesIn(kTeamCallCountsOperations), TeamCaseName);

} // namespace

} // namespace quillet::tests
