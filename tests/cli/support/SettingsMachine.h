// A machine with settings of every kind, and reading it.
#pragma once

#include "support/RunCommandLine.h"

#include <nlohmann/json.hpp>

namespace quillet::tests {

// A team of two, one of which cannot have large frames; a VLAN on the team; settings of every kind on {A}.
inline constexpr const char* kLab = R"(
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "First"; OriginalDisplayName = "First"; SlotID = "1"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter as $B {
        DeviceID = "{B}"; Name = "Second"; OriginalDisplayName = "Second"; SlotID = "1"; AdapterStatus = 1; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "TEAM : one"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $A; AdapterStatus = 1; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; AdapterStatus = 1; };
    instance of Zorel_VLAN {
        Name = "{00000000-0000-0000-0000-0000000000F1}"; ParentID = "{T}"; VLANName = "v"; VLANNumber = 7; };
    instance of Zorel_VLANSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{00000000-0000-0000-0000-0000000000F1}"; ParentType = "VLAN";
        CurrentValue = 1514; PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_TeamSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{T}"; ParentType = "TEAM";
        CurrentValue = 1514; PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1514;
        PossibleValues = {"1514", "9014"}; DescriptionMap = {"Disabled", "9014 Bytes"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*VMQ"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 0; FollowupAction = 1;
        PossibleValues = {"0", "1"}; DescriptionMap = {"Disabled", "Enabled"}; };
    instance of Zorel_AdapterSettingInt {
        Caption = "*TransmitBuffers"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 512; Max = 2048; Min = 80;
        Step = 8; };
    instance of Zorel_AdapterSettingString {
        Caption = "NetworkAddress"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = ""; MaxLength = 12; };
    instance of Zorel_AdapterSettingMultiSelection {
        Caption = "WakeOnEvents"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 1;
        PossibleValues = {"1", "2", "4"}; DescriptionMap = {"Magic Packet", "Directed Packet", "Pattern"}; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "WakePatterns"; ParentId = "{A}"; ParentType = "NIC"; CurrentValues = {"x"}; MaxLength = 4; };
    instance of Zorel_AdapterSettingString {
        Caption = "DriverDate"; ParentId = "{A}"; ParentType = "NIC"; Writable = FALSE; CurrentValue = "2011";
        MaxLength = 10; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{A}"; ParentType = "NIC"; CurrentValue = 5;
        PossibleValues = {"2", "5"}; DescriptionMap = {"Standard", "Virtualization"}; };
    instance of Zorel_PowerConfiguration {
        DeviceID = "{A}"; SavePowerNowEnabled = 2; SmartPowerDown = 1; WakeOnMagicPacket = 0; };
)";

inline std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

/// The current value of a setting of the first adapter, read by a later command.
inline std::string Current(const std::string& state, const std::string& owner, const std::string& setting) {
    const Outcome read = RunCommandLine({"--state", state, "setting", "get", owner, setting, "--json"});
    EXPECT_EQ(read.status, 0) << read.err;
    return read.status == 0 ? nlohmann::ordered_json::parse(read.out).at("setting").at("current").dump()
                            : std::string();
}

} // namespace quillet::tests
