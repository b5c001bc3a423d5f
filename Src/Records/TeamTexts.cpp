// The tables behind the texts of teams.
#include <quillet/TeamTexts.h>

#include <quillet/Team.h>

#include "Records/TextTable.h"

using quillet::TextOf;

namespace {

using Entry = CTeamTexts::Entry;

constexpr Entry kTeamModes[] = {
    {CTeam::TeamMode0, L"fault tolerance"},
    {CTeam::TeamMode1, L"adaptive load balancing"},
    {CTeam::TeamMode2, L"static link aggregation"},
    {CTeam::TeamMode3, L"gigabit link aggregation"},
    {CTeam::TeamMode4, L"IEEE 802.3ad dynamic link aggregation"},
    {CTeam::TeamMode5, L"switch fault tolerance"},
    {CTeam::TeamMode6, L"virtual machine load balancing"},
    {CTeam::TeamModeUnknown, L"unknown"},
};

constexpr Entry kTeamStatuses[] = {
    {CTeam::TeamStatusOther, L"other"},
    {CTeam::TeamStatusUnknown, L"unknown"},
    {CTeam::TeamStatusEnabled, L"enabled"},
    {CTeam::TeamStatusDisabled, L"disabled"},
    {CTeam::TeamStatusNotApplicable, L"not applicable"},
};

constexpr Entry kAutoDetectStatuses[] = {
    {CTeam::TeamAutoDetectNotStarted, L"not started"},
    {CTeam::TeamAutoDetectRunning, L"running"},
    {CTeam::TeamAutoDetectCompleted, L"completed"},
    {CTeam::TeamAutoDetectFailed, L"failed"},
};

constexpr Entry kSwitchCmdStatuses[] = {
    {CTeam::SwitchCmdStatusNotStarted, L"not started"}, {CTeam::SwitchCmdStatusRunning, L"running"},
    {CTeam::SwitchCmdStatusPassed, L"passed"},          {CTeam::SwitchCmdStatusFailed, L"failed"},
    {CTeam::SwitchCmdStatusStopped, L"stopped"},
};

constexpr Entry kMemberRoles[] = {
    {0, L"not assigned"},
    {1, L"primary"},
    {2, L"secondary"},
};

constexpr Entry kMemberStatuses[] = {
    {CTeamedAdapter::MemberStatusUnknown, L"unknown"},
    {CTeamedAdapter::MemberStatusActive, L"active"},
    {CTeamedAdapter::MemberStatusInactive, L"inactive"},
    {CTeamedAdapter::MemberStatusMissing, L"missing"},
};

// The bits between those of CTeam::Problem occur in the provider's words only.
constexpr Entry kProblems[] = {
    {CTeam::ProblemTooManyMembers, L"a team has at most 8 members"},
    {0x2, L"an adapter is not known to the provider"},
    {CTeam::ProblemModeNotSupported, L"an adapter does not support the team mode"},
    {CTeam::ProblemNoVLANs, L"an adapter cannot carry VLANs, so the team will not either"},
    {CTeam::ProblemNoServerAdapter, L"there is no server adapter among the members"},
    {0x20, L"an adapter is a member of a team already"},
    {0x40, L"an adapter carries VLANs of its own"},
    {CTeam::ProblemNameTaken, L"a team with this name exists"},
    {0x100, L"this cannot be the name of a team"},
    {CTeam::ProblemMoreThanTwo, L"a team of switch fault tolerance has two members"},
    {0x400, L"there is no such team mode"},
    {0x800, L"the adapters differ in a setting that a team needs to be alike"},
    {CTeam::ProblemNoSharedSpeed, L"the adapters have no speed in common"},
    {CTeam::ProblemMixedSpeeds, L"adapters of 10 gigabit and slow ones cannot be in one team"},
};

} // namespace

std::wstring CTeamTexts::TeamMode(LONG lMode) {
    return TextOf(kTeamModes, lMode);
}

std::wstring CTeamTexts::TeamStatus(LONG lStatus) {
    return TextOf(kTeamStatuses, lStatus);
}

std::wstring CTeamTexts::AutoDetectStatus(LONG lStatus) {
    return TextOf(kAutoDetectStatuses, lStatus);
}

std::wstring CTeamTexts::SwitchCmdStatus(LONG lStatus) {
    return TextOf(kSwitchCmdStatuses, lStatus);
}

std::wstring CTeamTexts::MemberRole(LONG lRole) {
    return TextOf(kMemberRoles, lRole);
}

std::wstring CTeamTexts::MemberStatus(LONG lStatus) {
    return TextOf(kMemberStatuses, lStatus);
}

std::vector<std::wstring> CTeamTexts::Problems(ULONGLONG ullMask) {
    return quillet::SentencesOf(kProblems, ullMask, L"the provider's reason ");
}
