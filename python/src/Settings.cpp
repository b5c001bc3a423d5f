// Operations on advanced settings and performance profiles.
#include "Connection.h"

namespace quillet::python {

void DefineSettings(pybind11::class_<Connection>& session) {
    using List = std::vector<Setting>;
    Define(session, "adapter_settings",
           static_cast<List (Session::*)(const AdapterId&, SettingSelector)>(&Session::Settings));
    Define(session, "team_settings", static_cast<List (Session::*)(const TeamId&)>(&Session::Settings));
    Define(session, "vlan_settings", static_cast<List (Session::*)(const VlanId&)>(&Session::Settings));
    Define(session, "boot_agent_settings",
           static_cast<List (Session::*)(const BootAgentId&)>(&Session::Settings));
    Define(session, "queue_settings", &Session::QueueSettings);
    Define(session, "settings_of_class", &Session::SettingsOfClass);
    Define(session, "speed_duplex", &Session::SpeedDuplex);
    DefineAs(
        session, "refresh",
        +[](Connection& connection, const std::wstring& objectId, const Setting& setting) {
            Setting refreshed = setting;
            connection.Use()->Refresh(objectId, refreshed);
            return refreshed;
        });
    Define(session, "write", &Session::Write);
    Define(session, "validate_adapter_setting",
           static_cast<SettingVerdict (Session::*)(const AdapterId&, const std::wstring&, std::int32_t)>(
               &Session::ValidateSetting));
    Define(session, "validate_vlan_setting",
           static_cast<Flags<ProviderBit> (Session::*)(const VlanId&, const std::wstring&, std::int32_t)>(
               &Session::ValidateSetting));
    Define(session, "check_jumbo_frames", &Session::CheckJumboFrames);
    Define(session, "check_rss", &Session::CheckRss);
    Define(session, "profiles", &Session::Profiles);
    Define(session, "common_profiles", &Session::CommonProfiles);
    Define(session, "replace_hyper_v_profile", &Session::ReplaceHyperVProfile);
}

} // namespace quillet::python
