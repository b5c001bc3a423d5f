// Operations on teams.
#include "Connection.h"

namespace quillet::python {

void DefineTeams(pybind11::class_<Connection>& session) {
    Define(session, "teams", &Session::Teams);
    Define(session, "read_team", &Session::ReadTeam);
    Define(session, "team_status", static_cast<StatusInfo (Session::*)(const TeamId&)>(&Session::ReadStatus));
    Define(session, "members", &Session::Members);
    DefineAs(
        session, "refresh_members",
        +[](Connection& connection, const TeamId& team, const std::vector<TeamMember>& members) {
            std::vector<TeamMember> refreshed = members;
            connection.Use()->RefreshMembers(team, refreshed);
            return refreshed;
        });
    Define(session, "is_primary", &Session::IsPrimary);
    Define(session, "are_teamed", &Session::AreTeamed);
    Define(session, "team_by_object_id", &Session::TeamByObjectId);
    Define(session, "enabled_members", &Session::EnabledMembers);
    Define(session, "team_modes", &Session::TeamModes);
    Define(session, "common_team_modes", &Session::CommonTeamModes);
    Define(session, "find_best_team_mode", &Session::FindBestTeamMode);
    Define(session, "test_switch", &Session::TestSwitch);
    Define(session, "team_name_prefix", &Session::TeamNamePrefix);
    Define(session, "check_new_team", &Session::CheckNewTeam);
    Define(session, "validate_team_name", &Session::ValidateTeamName);
    Define(session, "validate_team_mode", &Session::ValidateTeamMode);
    Define(session, "validate_new_members", &Session::ValidateNewMembers);
    Define(session, "validate_member_settings", &Session::ValidateMemberSettings);
    Define(session, "validate_added_members", &Session::ValidateAddedMembers);
    Define(session, "create_team", &Session::CreateTeam);
    Define(session, "set_members", &Session::SetMembers);
    Define(session, "add_member", &Session::AddMember);
    Define(session, "remove_member", &Session::RemoveMember);
    Define(session, "modify_team", &Session::ModifyTeam);
    Define(session, "set_role", &Session::SetRole);
    Define(session, "remove_team", &Session::RemoveTeam);
}

} // namespace quillet::python
