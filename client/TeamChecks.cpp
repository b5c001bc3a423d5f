// The checks of teams, and the words for what is a number about them.
#include "Operations.h"

namespace quillet {

namespace {

/// What is asked about a team that is yet to be made: the class.
constexpr const wchar_t* kNewTeam = L"Zorel_TeamOfAdapters";

const std::wstring& ObjectOf(const TeamId& team) {
    static const std::wstring kClass = kNewTeam;
    return team.IsEmpty() ? kClass : team.Path();
}

int KindOf(TeamCheck check) {
    switch (check) {
    case TeamCheck::Name:
        return 0;
    case TeamCheck::Members:
        return 1;
    case TeamCheck::NameAndMembers:
        break;
    }
    return 3;
}

Flags<TeamProblem> ProblemsIn(ULONGLONG mask) {
    return Flags<TeamProblem>::FromMask(mask);
}

} // namespace

Flags<TeamProblem> Session::CheckNewTeam(const NewTeam& team, TeamCheck check) {
    return ProblemsIn(Guarded("CreateTeamCheck", team.name, [&] {
        return m_state->quillet.CreateTeamCheck(RecordMode(team.mode), team.name, AdaptersOf(team.members),
                                                KindOf(check));
    }));
}

Flags<TeamProblem> Session::ValidateTeamName(const std::wstring& name, const TeamId& team) {
    DWORD validation = 0;
    DoOrThrow("ValidateTeamName", name,
              [&] { return m_state->quillet.ValidateTeamName(name, ObjectOf(team), validation); });
    return ProblemsIn(validation);
}

Flags<TeamProblem> Session::ValidateTeamMode(TeamMode mode, const TeamId& team) {
    DWORD validation = 0;
    DoOrThrow("ValidateTeamMode", team.Path(), [&] {
        return m_state->quillet.ValidateTeamMode(RecordMode(mode), ObjectOf(team), validation);
    });
    return ProblemsIn(validation);
}

Flags<TeamProblem> Session::ValidateNewMembers(std::span<const AdapterId> members, TeamMode mode) {
    ULONGLONG validation = 0;
    DoOrThrow("ValidateNewTeamMembers", {}, [&] {
        return m_state->quillet.ValidateNewTeamMembers(AdaptersOf(members), RecordMode(mode), validation);
    });
    return ProblemsIn(validation);
}

Flags<TeamProblem> Session::ValidateMemberSettings(std::span<const AdapterId> members) {
    ULONGLONG validation = 0;
    DoOrThrow("ValidateSettingsOnNewTeam", {},
              [&] { return m_state->quillet.ValidateSettingsOnNewTeam(AdaptersOf(members), validation); });
    return ProblemsIn(validation);
}

Flags<TeamProblem> Session::ValidateAddedMembers(const TeamId& team, std::span<const TeamMember> members,
                                                 std::span<const AdapterId> added) {
    ULONGLONG validation = 0;
    Do("ValidateAddAdapters", team.Path(), [&] {
        return m_state->quillet.ValidateAddAdapters(team.Path(), ToRecords(members), AdaptersOf(added),
                                                    validation);
    });
    return ProblemsIn(validation);
}

std::vector<std::wstring> Texts(Flags<TeamProblem> problems) {
    return CTeamTexts::Problems(problems.Mask());
}

std::wstring Text(TeamMode mode) {
    return CTeamTexts::TeamMode(static_cast<LONG>(mode));
}

std::wstring Text(MemberRole role) {
    return CTeamTexts::MemberRole(static_cast<LONG>(role));
}

std::wstring Text(MemberStatus status) {
    return CTeamTexts::MemberStatus(static_cast<LONG>(status));
}

std::wstring Text(AutoDetectStatus status) {
    return CTeamTexts::AutoDetectStatus(static_cast<LONG>(status));
}

std::wstring Text(SwitchTestStatus status) {
    return CTeamTexts::SwitchCmdStatus(static_cast<LONG>(status));
}

} // namespace quillet
