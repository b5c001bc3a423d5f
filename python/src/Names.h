// Which class of Python's stands for which value: the enumerations by their names, the records field by
// field.
#pragma once

#include <quillet/client.h>

#include <tuple>

namespace quillet::python {

/// The class of an enumeration in quillet._words; null for what is none.
template <class Enum>
inline constexpr const char* kEnumName = nullptr;

template <>
inline constexpr const char* kEnumName<LinkSpeed> = "LinkSpeed";
template <>
inline constexpr const char* kEnumName<Duplex> = "Duplex";
template <>
inline constexpr const char* kEnumName<LinkSecurityStatus> = "LinkSecurityStatus";
template <>
inline constexpr const char* kEnumName<AdapterCondition> = "AdapterCondition";
template <>
inline constexpr const char* kEnumName<HardwareStatus> = "HardwareStatus";
template <>
inline constexpr const char* kEnumName<StatusInfo> = "StatusInfo";
template <>
inline constexpr const char* kEnumName<Availability> = "Availability";
template <>
inline constexpr const char* kEnumName<Capability> = "Capability";
template <>
inline constexpr const char* kEnumName<MemberRole> = "MemberRole";
template <>
inline constexpr const char* kEnumName<MemberStatus> = "MemberStatus";
template <>
inline constexpr const char* kEnumName<TeamMode> = "TeamMode";
template <>
inline constexpr const char* kEnumName<TeamCheck> = "TeamCheck";
template <>
inline constexpr const char* kEnumName<TeamProblem> = "TeamProblem";
template <>
inline constexpr const char* kEnumName<AutoDetectStatus> = "AutoDetectStatus";
template <>
inline constexpr const char* kEnumName<SwitchCommand> = "SwitchCommand";
template <>
inline constexpr const char* kEnumName<SwitchTestStatus> = "SwitchTestStatus";
template <>
inline constexpr const char* kEnumName<VlanProblem> = "VlanProblem";
template <>
inline constexpr const char* kEnumName<VlanSupport> = "VlanSupport";
template <>
inline constexpr const char* kEnumName<RssProblem> = "RssProblem";
template <>
inline constexpr const char* kEnumName<Profile> = "Profile";
template <>
inline constexpr const char* kEnumName<TestState> = "TestState";
template <>
inline constexpr const char* kEnumName<RunEnd> = "RunEnd";
template <>
inline constexpr const char* kEnumName<IscsiStatus> = "IscsiStatus";
template <>
inline constexpr const char* kEnumName<FlashStage> = "FlashStage";

/// A field of a record, and what Python calls it.
template <class Record, class Member>
struct Field {
    const char* name;
    Member Record::*member;
};
template <class Record, class Member>
Field(const char*, Member Record::*) -> Field<Record, Member>;

/// A record's class in quillet._values, and its fields.
template <class Record>
struct Fields;

template <>
struct Fields<Adapter> {
    static constexpr const char* kName = "Adapter";
    static constexpr auto kFields =
        std::tuple(Field{"path", &Adapter::id}, Field{"name", &Adapter::name},
                   Field{"display_name", &Adapter::displayName}, Field{"device_id", &Adapter::deviceId},
                   Field{"slot", &Adapter::slot});
};

template <>
struct Fields<AdapterState> {
    static constexpr const char* kName = "AdapterState";
    static constexpr auto kFields = std::tuple(
        Field{"speed", &AdapterState::speed}, Field{"duplex", &AdapterState::duplex},
        Field{"link_security", &AdapterState::linkSecurity}, Field{"conditions", &AdapterState::conditions},
        Field{"status_info", &AdapterState::statusInfo}, Field{"availability", &AdapterState::availability},
        Field{"hardware", &AdapterState::hardware}, Field{"text", &AdapterState::text});
};

template <>
struct Fields<AdapterHardware> {
    static constexpr const char* kName = "AdapterHardware";
    static constexpr auto kFields = std::tuple(Field{"controller_id", &AdapterHardware::controllerId},
                                               Field{"media_type", &AdapterHardware::mediaType},
                                               Field{"link_width", &AdapterHardware::negotiatedLinkWidth},
                                               Field{"port_number", &AdapterHardware::portNumber},
                                               Field{"part_number", &AdapterHardware::partNumber},
                                               Field{"mac_address", &AdapterHardware::macAddress},
                                               Field{"eeprom_version", &AdapterHardware::eepromVersion},
                                               Field{"san_mac_address", &AdapterHardware::sanMacAddress},
                                               Field{"pci_device_id", &AdapterHardware::pciDeviceId});
};

template <>
struct Fields<AdapterOverview> {
    static constexpr const char* kName = "AdapterOverview";
    static constexpr auto kFields = std::tuple(
        Field{"adapter", &AdapterOverview::adapter}, Field{"object_id", &AdapterOverview::objectId},
        Field{"state", &AdapterOverview::state}, Field{"hardware", &AdapterOverview::hardware},
        Field{"team_path", &AdapterOverview::team}, Field{"team_name", &AdapterOverview::teamName},
        Field{"role", &AdapterOverview::role}, Field{"failure", &AdapterOverview::failure});
};

template <>
struct Fields<TeamedPort> {
    static constexpr const char* kName = "TeamedPort";
    static constexpr auto kFields =
        std::tuple(Field{"path", &TeamedPort::id}, Field{"teamed", &TeamedPort::teamed},
                   Field{"team_path", &TeamedPort::team});
};

template <>
struct Fields<NdisVersion> {
    static constexpr const char* kName = "NdisVersion";
    static constexpr auto kFields =
        std::tuple(Field{"major", &NdisVersion::major}, Field{"minor", &NdisVersion::minor});
};

template <>
struct Fields<NumberValue> {
    static constexpr const char* kName = "NumberValue";
    static constexpr auto kFields =
        std::tuple(Field{"current", &NumberValue::current}, Field{"standard", &NumberValue::standard},
                   Field{"minimum", &NumberValue::minimum}, Field{"maximum", &NumberValue::maximum},
                   Field{"step", &NumberValue::step}, Field{"base", &NumberValue::base},
                   Field{"scale", &NumberValue::scale});
};

template <>
struct Fields<Choice> {
    static constexpr const char* kName = "Choice";
    static constexpr auto kFields = std::tuple(Field{"value", &Choice::value}, Field{"text", &Choice::text});
};

template <>
struct Fields<ChoiceValue> {
    static constexpr const char* kName = "ChoiceValue";
    static constexpr auto kFields =
        std::tuple(Field{"current", &ChoiceValue::current}, Field{"standard", &ChoiceValue::standard},
                   Field{"choices", &ChoiceValue::choices});
};

template <>
struct Fields<SliderValue> {
    static constexpr const char* kName = "SliderValue";
    static constexpr auto kFields =
        std::tuple(Field{"current", &SliderValue::current}, Field{"standard", &SliderValue::standard},
                   Field{"first_label", &SliderValue::firstLabel},
                   Field{"last_label", &SliderValue::lastLabel}, Field{"possible", &SliderValue::possible});
};

template <>
struct Fields<TextValue> {
    static constexpr const char* kName = "TextValue";
    static constexpr auto kFields =
        std::tuple(Field{"current", &TextValue::current}, Field{"standard", &TextValue::standard},
                   Field{"maximum_length", &TextValue::maximumLength});
};

template <>
struct Fields<SelectionValue> {
    static constexpr const char* kName = "SelectionValue";
    static constexpr auto kFields =
        std::tuple(Field{"current", &SelectionValue::current}, Field{"standard", &SelectionValue::standard},
                   Field{"choices", &SelectionValue::choices});
};

template <>
struct Fields<TextListValue> {
    static constexpr const char* kName = "TextListValue";
    static constexpr auto kFields =
        std::tuple(Field{"current", &TextListValue::current}, Field{"standard", &TextListValue::standard},
                   Field{"maximum_length", &TextListValue::maximumLength});
};

template <>
struct Fields<Setting> {
    static constexpr const char* kName = "Setting";
    static constexpr auto kFields =
        std::tuple(Field{"path", &Setting::id}, Field{"keyword", &Setting::keyword},
                   Field{"description", &Setting::description}, Field{"help", &Setting::help},
                   Field{"expose_level", &Setting::exposeLevel}, Field{"writable", &Setting::writable},
                   Field{"group", &Setting::group}, Field{"value", &Setting::value});
};

template <>
struct Fields<SettingVerdict> {
    static constexpr const char* kName = "SettingVerdict";
    static constexpr auto kFields =
        std::tuple(Field{"is_teamed", &SettingVerdict::isTeamed}, Field{"reasons", &SettingVerdict::reasons});
};

template <>
struct Fields<JumboFrameVerdict> {
    static constexpr const char* kName = "JumboFrameVerdict";
    static constexpr auto kFields = std::tuple(Field{"is_teamed", &JumboFrameVerdict::isTeamed},
                                               Field{"on_all_members", &JumboFrameVerdict::onAllMembers});
};

template <>
struct Fields<OfferedProfile> {
    static constexpr const char* kName = "OfferedProfile";
    static constexpr auto kFields = std::tuple(Field{"profile", &OfferedProfile::profile},
                                               Field{"description", &OfferedProfile::description},
                                               Field{"is_current", &OfferedProfile::isCurrent});
};

template <>
struct Fields<PowerOptions> {
    static constexpr const char* kName = "PowerOptions";
    static constexpr auto kFields = std::tuple(
        Field{"mode", &PowerOptions::mode}, Field{"smart_power_down", &PowerOptions::smartPowerDown},
        Field{"reduce_speed", &PowerOptions::reduceSpeed},
        Field{"auto_power_save", &PowerOptions::autoPowerSave},
        Field{"enhanced_aspm", &PowerOptions::enhancedAspm},
        Field{"battery_connection", &PowerOptions::batteryConnection},
        Field{"battery_speed", &PowerOptions::batterySpeed}, Field{"system_idle", &PowerOptions::systemIdle});
};

template <>
struct Fields<WakeOptions> {
    static constexpr const char* kName = "WakeOptions";
    static constexpr auto kFields = std::tuple(Field{"from_power_off", &WakeOptions::fromPowerOff},
                                               Field{"on_link", &WakeOptions::onLink},
                                               Field{"on_magic_packet", &WakeOptions::onMagicPacket},
                                               Field{"on_directed_packet", &WakeOptions::onDirectedPacket},
                                               Field{"on_pattern", &WakeOptions::onPattern});
};

template <>
struct Fields<Team> {
    static constexpr const char* kName = "Team";
    static constexpr auto kFields =
        std::tuple(Field{"path", &Team::id}, Field{"object_id", &Team::objectId}, Field{"name", &Team::name},
                   Field{"mode", &Team::mode}, Field{"multi_vendor", &Team::multiVendor},
                   Field{"link_security", &Team::linkSecurity}, Field{"mac_address", &Team::macAddress},
                   Field{"bound_to_hyper_v", &Team::boundToHyperV});
};

template <>
struct Fields<TeamMember> {
    static constexpr const char* kName = "TeamMember";
    static constexpr auto kFields =
        std::tuple(Field{"path", &TeamMember::id}, Field{"display_name", &TeamMember::displayName},
                   Field{"device_id", &TeamMember::deviceId}, Field{"caption", &TeamMember::caption},
                   Field{"role", &TeamMember::role}, Field{"status", &TeamMember::status},
                   Field{"team_path", &TeamMember::team}, Field{"team_name", &TeamMember::teamName});
};

template <>
struct Fields<OfferedTeamMode> {
    static constexpr const char* kName = "OfferedTeamMode";
    static constexpr auto kFields = std::tuple(Field{"mode", &OfferedTeamMode::mode},
                                               Field{"description", &OfferedTeamMode::description});
};

template <>
struct Fields<BestTeamMode> {
    static constexpr const char* kName = "BestTeamMode";
    static constexpr auto kFields =
        std::tuple(Field{"best", &BestTeamMode::best}, Field{"status", &BestTeamMode::status},
                   Field{"coverage", &BestTeamMode::coverage});
};

template <>
struct Fields<SwitchTrouble> {
    static constexpr const char* kName = "SwitchTrouble";
    static constexpr auto kFields = std::tuple(
        Field{"cause", &SwitchTrouble::cause}, Field{"solution", &SwitchTrouble::solution},
        Field{"cause_id", &SwitchTrouble::causeId}, Field{"solution_id", &SwitchTrouble::solutionId});
};

template <>
struct Fields<SwitchTest> {
    static constexpr const char* kName = "SwitchTest";
    static constexpr auto kFields =
        std::tuple(Field{"status", &SwitchTest::status}, Field{"troubles", &SwitchTest::troubles});
};

template <>
struct Fields<NewTeam> {
    static constexpr const char* kName = "NewTeam";
    static constexpr auto kFields = std::tuple(
        Field{"name", &NewTeam::name}, Field{"mode", &NewTeam::mode}, Field{"members", &NewTeam::members},
        Field{"profile", &NewTeam::profile}, Field{"multi_vendor", &NewTeam::multiVendor},
        Field{"link_security", &NewTeam::linkSecurity});
};

template <>
struct Fields<Vlan> {
    static constexpr const char* kName = "Vlan";
    static constexpr auto kFields = std::tuple(
        Field{"path", &Vlan::id}, Field{"object_id", &Vlan::objectId}, Field{"caption", &Vlan::caption},
        Field{"parent_id", &Vlan::parentId}, Field{"name", &Vlan::name}, Field{"number", &Vlan::number},
        Field{"status", &Vlan::status});
};

} // namespace quillet::python
