// Teams: listing, reading, changing.
#include "Operations.h"

#include <algorithm>

namespace quillet {

namespace {

Team FromRecord(CTeam&& record) {
    return {
        TeamId(std::move(record.m_wsTeamID)),      std::move(record.m_wsName), std::move(record.m_wsCaption),
        static_cast<TeamMode>(record.m_eTeamMode), record.m_bMFOEnabled,       record.m_bLinkSecEnabled,
        std::move(record.m_wsTeamMacAddress),      record.m_bBoundToHyperV};
}

TeamMember FromRecord(CTeamedAdapter&& record) {
    return {AdapterId(std::move(record.m_wsAdapterID)),
            std::move(record.m_wsDisplayName),
            std::move(record.m_wsDeviceID),
            std::move(record.m_wsCaption),
            static_cast<MemberRole>(record.m_lMemberRole),
            static_cast<MemberStatus>(record.m_lMemberStatus),
            TeamId(std::move(record.m_wsTeamID)),
            std::move(record.m_wsTeamCaption)};
}

OfferedTeamMode FromRecord(CTeamWizTeamMode&& record) {
    return {static_cast<TeamMode>(record.m_lTeamMode), std::move(record.m_wsDescription)};
}

CTeamedAdapter ToRecord(const TeamMember& member) {
    CTeamedAdapter record;
    record.m_wsAdapterID = member.id.Path();
    record.m_wsDisplayName = member.displayName;
    record.m_wsDeviceID = member.deviceId;
    record.m_wsCaption = member.caption;
    record.m_lMemberRole = static_cast<LONG>(member.role);
    record.m_lMemberStatus = static_cast<LONG>(member.status);
    record.m_wsTeamID = member.team.Path();
    record.m_wsTeamCaption = member.teamName;
    return record;
}

template <class Value>
Value At(const std::vector<Value>& values, std::size_t place) {
    return place < values.size() ? values[place] : Value();
}

} // namespace

CTeamedAdapters ToRecords(std::span<const TeamMember> members) {
    CTeamedAdapters records;
    records.m_vecItems.reserve(members.size());
    for (const TeamMember& member : members) {
        records.m_vecItems.push_back(new CTeamedAdapter(ToRecord(member)));
    }
    return records;
}

std::vector<Team> Session::Teams() {
    return ReadList<CTeams>(
        "EnumerateTeams", {}, [&](CTeams& teams) { return m_state->quillet.EnumerateTeams(teams); },
        [](CTeam&& record) { return FromRecord(std::move(record)); });
}

Team Session::ReadTeam(const TeamId& team) {
    CTeam record;
    Do("GetTeamInfo", team.Path(), [&] { return m_state->quillet.GetTeamInfo(team.Path(), record); });
    return FromRecord(std::move(record));
}

StatusInfo Session::ReadStatus(const TeamId& team) {
    CTeam::TeamStatus status{};
    Do("GetTeamStatus", team.Path(), [&] { return m_state->quillet.GetTeamStatus(team.Path(), status); });
    return static_cast<StatusInfo>(status);
}

TeamId Session::TeamByObjectId(const std::wstring& objectId) {
    std::wstring path;
    Do("GetTeamID", objectId, [&] { return m_state->quillet.GetTeamID(objectId, path); });
    return TeamId(std::move(path));
}

std::vector<TeamMember> Session::Members(const TeamId& team) {
    return ReadList<CTeamedAdapters>(
        "GetMemberAdapters", team.Path(),
        [&](CTeamedAdapters& members) { return m_state->quillet.GetMemberAdapters(team.Path(), members); },
        [](CTeamedAdapter&& record) { return FromRecord(std::move(record)); });
}

void Session::RefreshMembers(const TeamId& team, std::vector<TeamMember>& members) {
    CTeamedAdapters records = ToRecords(members);
    Do("GetMemberAdaptersStatus", team.Path(),
       [&] { return m_state->quillet.GetMemberAdaptersStatus(team.Path(), records); });
    members =
        Values(std::move(records), [](CTeamedAdapter&& record) { return FromRecord(std::move(record)); });
}

bool Session::IsPrimary(const AdapterId& adapter) {
    bool primary = false;
    Do("IsPrimaryAdapter", adapter.Path(),
       [&] { return m_state->quillet.IsPrimaryAdapter(adapter.Path(), primary); });
    return primary;
}

int Session::EnabledMembers(const TeamId& team) {
    int count = 0;
    Do("GetNumberEnabledMembers", team.Path(),
       [&] { return m_state->quillet.GetNumberEnabledMembers(team.Path(), count); });
    return count;
}

std::vector<bool> Session::AreTeamed(std::span<const AdapterId> adapters) {
    CAdapters records = AdaptersOf(adapters);
    Do("GetTeamableAdapters", {}, [&] { return m_state->quillet.GetTeamableAdapters(records); });
    std::vector<bool> teamed;
    teamed.reserve(adapters.size());
    for (const CAdapter* record : records.m_vecItems) {
        teamed.push_back(record->m_bTeamed);
    }
    return teamed;
}

std::vector<OfferedTeamMode> Session::TeamModes(const AdapterId& adapter) {
    CAdapter record;
    Do("GetAdapterTeamModes", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterTeamModes(adapter.Path(), record); });
    return record.m_pTeamModes == nullptr
               ? std::vector<OfferedTeamMode>()
               : Values(std::move(*record.m_pTeamModes),
                        [](CTeamWizTeamMode&& mode) { return FromRecord(std::move(mode)); });
}

std::vector<OfferedTeamMode> Session::CommonTeamModes(std::span<const AdapterId> adapters) {
    return ReadList<CTeamWizTeamModes>(
        "GetCompatibleTeamModesWithAdapters", {},
        [&](CTeamWizTeamModes& modes) {
            constexpr bool kRefresh = true;
            return m_state->quillet.GetCompatibleTeamModesWithAdapters(AdaptersOf(adapters), modes, kRefresh);
        },
        [](CTeamWizTeamMode&& record) { return FromRecord(std::move(record)); });
}

BestTeamMode Session::FindBestTeamMode(const TeamId& team) {
    BestTeamMode best;
    CTeamWizTeamMode mode;
    CTeam::TeamAutoDetectStatus status{};
    DoOrThrow("GetBestTeamMode", team.Path(),
              [&] { return m_state->quillet.GetBestTeamMode(team.Path(), mode, status, best.coverage); });
    best.best = FromRecord(std::move(mode));
    best.status = static_cast<AutoDetectStatus>(status);
    return best;
}

SwitchTest Session::TestSwitch(const TeamId& team, SwitchCommand command) {
    CTeam::SwitchCmdStatus status{};
    std::vector<std::wstring> causes;
    std::vector<std::wstring> solutions;
    std::vector<int> causeIds;
    std::vector<int> solutionIds;
    Do("TestSwitchConfiguration", team.Path(), [&] {
        return m_state->quillet.TestSwitchConfiguration(team.Path(), static_cast<CTeam::SwitchCmd>(command),
                                                        status, causes, solutions, causeIds, solutionIds);
    });
    SwitchTest test{static_cast<SwitchTestStatus>(status), {}};
    // Lists of the provider's need not be of one length.
    for (std::size_t i = 0; i < std::max(causes.size(), solutions.size()); ++i) {
        test.troubles.push_back({At(causes, i), At(solutions, i), At(causeIds, i), At(solutionIds, i)});
    }
    return test;
}

std::wstring Session::TeamNamePrefix() {
    std::wstring prefix;
    Do("GetTeamNamePrefix", {}, [&] { return m_state->quillet.GetTeamNamePrefix(prefix); });
    return prefix;
}

Team Session::CreateTeam(const NewTeam& team) {
    CTeam record;
    DoInParts(
        "CreateTeam", team.name,
        [&] {
            return m_state->quillet.CreateTeam(RecordMode(team.mode), team.name, AdaptersOf(team.members),
                                               record, static_cast<ePERFORMANCE_PROFILE>(team.profile),
                                               team.multiVendor, team.linkSecurity);
        },
        [&] { return FromRecord(std::move(record)); });
    return FromRecord(std::move(record));
}

void Session::SetMembers(const TeamId& team, std::span<const TeamMember> members,
                         std::span<const AdapterId> wanted) {
    Do("ModifyMemberList", team.Path(), [&] {
        return m_state->quillet.ModifyMemberList(team.Path(), ToRecords(members), AdaptersOf(wanted));
    });
}

void Session::AddMember(const TeamId& team, const AdapterId& adapter) {
    SetMembers(team, {}, std::span(&adapter, 1));
}

void Session::RemoveMember(const TeamId& team, const AdapterId& adapter) {
    TeamMember member;
    member.id = adapter;
    SetMembers(team, std::span(&member, 1), {});
}

void Session::ModifyTeam(const TeamId& team, const std::wstring& name, TeamMode mode) {
    CTeam record;
    record.m_wsTeamID = team.Path();
    record.m_wsCaption = name;
    record.m_eTeamMode = RecordMode(mode);
    Do("ModifyTeamInfo", team.Path(), [&] { return m_state->quillet.ModifyTeamInfo(team.Path(), record); });
}

void Session::SetRole(const AdapterId& member, MemberRole role) {
    Do("SetTeamedAdapterPriority", member.Path(),
       [&] { return m_state->quillet.SetTeamedAdapterPriority(member.Path(), static_cast<LONG>(role)); });
}

void Session::RemoveTeam(const TeamId& team) {
    Do("RemoveTeam", team.Path(), [&] { return m_state->quillet.RemoveTeam(team.Path()); });
}

bool HasSwitchTest(TeamMode mode) {
    // It asks nobody, so any object will do.
    return CQuillet().TestSwitchSupport(RecordMode(mode)) != 0;
}

} // namespace quillet
