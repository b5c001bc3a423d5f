// The table.
#include "ClientOperations.h"

#include <quillet-simulator/FlashImage.h>

#include <map>

namespace quillet::tests {

namespace {

const AdapterId kAdapter(LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")");
const TeamId kTeam(LR"(Zorel_TeamOfAdapters.Name="{T}")");
const VlanId kVlan(LR"(Zorel_VLAN.Name="{V}")");
const BootAgentId kBootAgent(LR"(Zorel_BootAgent.Name="{A}")");
const DiagnosticId kTest(LR"(Zorel_DiagTest.Name="All")");
const TeamId kWholeTeam(LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_TeamOfAdapters.Name="{T}")");
const VlanId kWholeVlan(LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_VLAN.Name="{V}")");

AdapterId Whole(const wchar_t* id) {
    return AdapterId(std::wstring(LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=")") +
                     id + L"\"");
}

TeamMember Member(const wchar_t* id) {
    TeamMember member;
    member.id = Whole(id);
    return member;
}

Setting SettingOf(const wchar_t* kind, const wchar_t* keyword, SettingValue value) {
    Setting setting;
    setting.id = SettingId(L"Zorel_AdapterSetting" + std::wstring(kind) + L".Caption=\"" + keyword +
                           LR"(",ParentId="{A}",ParentType="NIC")");
    setting.value = std::move(value);
    return setting;
}

std::vector<std::byte> Image() {
    const std::vector<std::uint8_t> image = simulator::WriteFlashImage({{L"PXE", L"1.4.0", 0, 1, {1, 2, 3}}});
    const auto* bytes = reinterpret_cast<const std::byte*>(image.data());
    return {bytes, bytes + image.size()};
}

Authentication AuthenticationWith(std::int32_t outer) {
    Authentication authentication;
    authentication.methods = {outer, 2, 5, false};
    authentication.userName = L"new user";
    authentication.password = Secret(L"CANARY of the password to set CANARY");
    authentication.pac = L"new authority";
    authentication.changedCredentials = 1;
    authentication.windowsCredentials = 1;
    return authentication;
}

/// Most operations yield something that only their own tests look at.
template <class Read>
ClientOperation Reading(Read read, std::string operation = {}) {
    return {std::move(operation), [read](Session& session) { static_cast<void>(read(session)); }};
}

const NewVlan kTaken{10, L"Voice"};
const NewVlan kUntagged{0, L"Voice"};
const NewVlan kNew{20, L"Data"};

std::map<std::string, ClientOperation> Table() {
    const std::vector<std::wstring> kTypes{L"PXE"};
    std::map<std::string, ClientOperation> table;
    const auto read = [&table](const char* name, auto call, std::string operation = {}) {
        table[name] = Reading(call, std::move(operation));
    };
    const auto write = [&table](const char* name, std::function<void(Session&)> call,
                                std::string operation = {}) {
        table[name] = {std::move(operation), std::move(call)};
    };

    read("GetWarnings", [](Session& s) { return s.Warnings(); });
    read("EnumerateAdapters", [](Session& s) { return s.Adapters(); });
    read("GetAdapterBasicInfo", [](Session& s) { return s.ReadAdapter(kAdapter); });
    read("GetAdapterDynamicInfo", [](Session& s) { return s.ReadState(kAdapter); });
    read("GetAdapterStatus", [](Session& s) { return s.ReadConditions(kAdapter); });
    read("GetAdapterCapabilities", [](Session& s) { return s.Capabilities(kAdapter); });
    read("GetAdapterPCIInfo", [](Session& s) { return s.ReadHardware(kAdapter); });
    read("EnumerateOtherPortOfAdapter", [](Session& s) { return s.TeamedPorts(kAdapter); });
    write("IdentifyAdapter", [](Session& s) { s.Identify(kAdapter, std::chrono::seconds(1)); });
    read("GetHbaPath", [](Session& s) { return s.HbaPath(kAdapter); });
    read("GetNDIS_Version", [](Session& s) { return s.ReadNdisVersion(kAdapter); });
    read("GetAdapterWarnings", [](Session& s) { return s.Warnings(kAdapter); });

    read("GetAdapterSettings", [](Session& s) { return s.Settings(kAdapter); });
    read("GetAdapterVmqSettings", [](Session& s) { return s.QueueSettings(kAdapter); });
    read("GetTeamSettings", [](Session& s) { return s.Settings(kTeam); });
    read("GetVlanSettings", [](Session& s) { return s.Settings(kVlan); });
    read("GetBootAgentSettings", [](Session& s) { return s.Settings(kBootAgent); });
    read("GetSpeedDuplexSetting", [](Session& s) { return s.SpeedDuplex(kAdapter, true); });
    write("GetAdapterSettingAsync", [](Session& s) {
        Setting setting;
        setting.keyword = L"*SpeedDuplex";
        setting.value = ChoiceValue();
        s.Refresh(L"{A}", setting);
    });
    write(
        "SetSetting_Number",
        [](Session& s) {
            s.Write(SettingOf(L"Enum", L"*JumboPacket", ChoiceValue{9014, 0, {}}));
        },
        "SetSetting");
    write(
        "SetSetting_Text",
        [](Session& s) {
            s.Write(SettingOf(L"String", L"NetworkAddress", TextValue{L"02005E", {}, {}}));
        },
        "SetSetting");
    write(
        "SetSetting_List",
        [](Session& s) {
            s.Write(SettingOf(L"MultiString", L"WakePatterns", TextListValue{{L"a", L"b"}, {}, {}}));
        },
        "SetSetting");
    read("ValidateSetSetting",
         [](Session& s) { return s.ValidateSetting(Whole(L"{A}"), L"*JumboPacket", 9000); });
    read("ValidateSetSettingOnVlan",
         [](Session& s) { return s.ValidateSetting(kWholeVlan, L"*JumboPacket", 9000); });
    read("JumboFramePrecheckSetSetting", [](Session& s) { return s.CheckJumboFrames(Whole(L"{A}")); });
    read("RSS_PrecheckOnTeamModify", [](Session& s) {
        return s.CheckRss(std::vector{Member(L"{A}")}, std::vector{Whole(L"{A}"), Whole(L"{B}")});
    });
    read("GetAdapterProfiles", [](Session& s) { return s.Profiles(Whole(L"{A}")); });
    write("ChangeAllAdapterProfilesFromHyperV", [](Session& s) { s.ReplaceHyperVProfile(Profile(2)); });
    read("GetCompatibleTeamProfilesWithAdapters",
         [](Session& s) { return s.CommonProfiles(std::vector{Whole(L"{A}")}); });
    read("GetAdapterPowerUsageOptions", [](Session& s) { return s.ReadPower(Whole(L"{A}")); });
    write("SetAdapterPowerUsageOptions", [](Session& s) {
        s.SetPower(Whole(L"{A}"), {0, true, true, true, true, true, true, true});
    });
    read("GetAdapterWakeOnLanOptions", [](Session& s) { return s.ReadWake(Whole(L"{A}")); });
    write("SetAdapterWakeOnLanOptions", [](Session& s) {
        s.SetWake(Whole(L"{A}"), {true, true, true, true, true});
    });
    write("SetAdapterPowerManagementCapabilities", [](Session& s) { s.ReapplyPower(Whole(L"{A}")); });

    read("EnumerateTeams", [](Session& s) { return s.Teams(); });
    read("GetTeamInfo", [](Session& s) { return s.ReadTeam(kWholeTeam); });
    read("GetTeamStatus", [](Session& s) { return s.ReadStatus(kWholeTeam); });
    read("GetMemberAdapters", [](Session& s) { return s.Members(kWholeTeam); });
    write("GetMemberAdaptersStatus", [](Session& s) {
        std::vector members{Member(L"{A}"), Member(L"{B}")};
        s.RefreshMembers(kWholeTeam, members);
    });
    read("IsPrimaryAdapter", [](Session& s) { return s.IsPrimary(Whole(L"{A}")); });
    read("CreateTeamCheck", [](Session& s) {
        NewTeam team{L"TEAM : One", TeamMode::DynamicLinkAggregation};
        team.members = {Whole(L"{A}"), Whole(L"{C}")};
        return s.CheckNewTeam(team);
    });
    read("CreateTeam", [](Session& s) {
        NewTeam team{L"TEAM : Two", TeamMode::FaultTolerance};
        team.members = {Whole(L"{C}")};
        team.multiVendor = true;
        return s.CreateTeam(team);
    });
    read("ValidateTeamName", [](Session& s) { return s.ValidateTeamName(L"TEAM : One"); });
    read("ValidateTeamMode", [](Session& s) { return s.ValidateTeamMode(TeamMode::Unknown, kWholeTeam); });
    read("ValidateNewTeamMembers", [](Session& s) {
        return s.ValidateNewMembers(std::vector{Whole(L"{A}"), Whole(L"{C}")}, TeamMode::FaultTolerance);
    });
    read("ValidateSettingsOnNewTeam", [](Session& s) {
        return s.ValidateMemberSettings(std::vector{Whole(L"{none}"), Whole(L"{C}")});
    });
    read("ValidateAddAdapters", [](Session& s) {
        return s.ValidateAddedMembers(kWholeTeam, std::vector{Member(L"{A}"), Member(L"{B}")},
                                      std::vector{Whole(L"{C}")});
    });
    read("GetTeamNamePrefix", [](Session& s) { return s.TeamNamePrefix(); });
    write("ModifyMemberList", [](Session& s) {
        s.SetMembers(kWholeTeam, std::vector{Member(L"{A}"), Member(L"{B}")},
                     std::vector{Whole(L"{A}"), Whole(L"{C}")});
    });
    write("ModifyTeamInfo",
          [](Session& s) { s.ModifyTeam(kWholeTeam, L"Renamed", TeamMode::FaultTolerance); });
    write("SetTeamedAdapterPriority", [](Session& s) { s.SetRole(Whole(L"{B}"), MemberRole::Primary); });
    write("RemoveTeam", [](Session& s) { s.RemoveTeam(kWholeTeam); });
    read("GetTeamableAdapters", [](Session& s) {
        return s.AreTeamed(std::vector{Whole(L"{C}"), Whole(L"{A}")});
    });
    read("GetAdapterTeamModes", [](Session& s) { return s.TeamModes(Whole(L"{A}")); });
    read("GetCompatibleTeamModesWithAdapters", [](Session& s) {
        return s.CommonTeamModes(std::vector{Whole(L"{A}"), Whole(L"{B}")});
    });
    read("GetBestTeamMode", [](Session& s) { return s.FindBestTeamMode(kWholeTeam); });
    read("TestSwitchConfiguration",
         [](Session& s) { return s.TestSwitch(kWholeTeam, SwitchCommand::Start); });
    read("GetNumberEnabledMembers", [](Session& s) { return s.EnabledMembers(kWholeTeam); });

    read("EnumerateVLANsOfAdapter", [](Session& s) { return s.Vlans(kAdapter); });
    read("EnumerateVLANsOfTeam", [](Session& s) { return s.Vlans(kTeam); });
    read("GetVLANInfo", [](Session& s) { return s.ReadVlan(kVlan); });
    read("GetVlanStatus", [](Session& s) { return s.ReadStatus(kVlan); });
    read("GetVLANID", [](Session& s) { return s.VlanByObjectId(L"{V}"); });
    read("ParentSupportingVLAN", [](Session& s) { return s.SupportsVlans(kAdapter); });
    read(
        "ParentSupportingVLAN_Team", [](Session& s) { return s.SupportsVlans(kTeam); },
        "ParentSupportingVLAN");
    read("CreateVLANAdapterCheck", [](Session& s) { return s.CheckVlan(kAdapter, kTaken); });
    read("CreateVLANTeamCheck", [](Session& s) { return s.CheckVlan(kTeam, kTaken); });
    read("CreateUnTaggedVLANAdapterCheck", [](Session& s) { return s.CheckVlan(kAdapter, kUntagged); });
    read("CreateUnTaggedVLANTeamCheck", [](Session& s) { return s.CheckVlan(kTeam, kUntagged); });
    read("CheckForUniqueIDForUnTaggedVLAN", [](Session& s) { return s.CheckVlan(kTeam, kUntagged); });
    for (const char* name : {"CreateMultipleVLANAdapterCheck", "CheckForUniqueIDForMultipleVLANs"}) {
        read(name, [](Session& s) { return s.CheckVlans(kAdapter, std::vector{kTaken}); });
    }
    read("CreateMultipleVLANTeamCheck", [](Session& s) { return s.CheckVlans(kTeam, std::vector{kTaken}); });
    read("CheckForUntaggedVLANOnAdapter", [](Session& s) { return s.HasVlan(kAdapter, 10); });
    read("CheckForUntaggedVLANOnTeam", [](Session& s) { return s.HasVlan(kTeam, 10); });
    read("CheckForTaggedVLANOnAdapter", [](Session& s) { return s.TaggedVlans(kAdapter); });
    read("CheckForTaggedVLANOnTeam", [](Session& s) { return s.TaggedVlans(kTeam); });
    read("AddVLANToAdapter", [](Session& s) { return s.AddVlan(kAdapter, kNew); });
    read("AddVLANToTeam", [](Session& s) { return s.AddVlan(kTeam, kNew); });
    write("ModifyVLANProperty", [](Session& s) { s.ModifyVlan(kVlan, kNew); });
    write("RemoveVLAN", [](Session& s) { s.RemoveVlan(kVlan); });

    read("EnumerateDiagnostics", [](Session& s) { return s.Diagnostics(kAdapter); });
    write("RunDiagnostics", [](Session& s) { s.StartDiagnostic(kTest, kAdapter); });
    write("StopDiagnostics", [](Session& s) { s.StopDiagnostic(kTest, kAdapter); });
    read("GetDiagnosticsResult", [](Session& s) { return s.ReadResult(kTest); });
    read("GetDiagnosticsPackageResults", [](Session& s) {
        TestResult package;
        package.path = LR"(Zorel_DiagResult.Name="{1}")";
        package.packageName = L"All";
        return s.ReadPackageResults(kTest, package);
    });
    read("GetAdapterBootAgentInfo", [](Session& s) { return s.ReadBootAgent(kAdapter); });
    read("ReadBootAgentFlash", [](Session& s) { return s.ReadFlash(kBootAgent); });
    read("WriteBootAgentFlash", [kTypes](Session& s) { return s.WriteFlash(kBootAgent, Image(), kTypes); });
    read("ReadBootAgentImageFile", [](Session& s) { return s.ReadImageFile(kBootAgent, Image()); });
    read("VerifyImageType", [kTypes](Session& s) { return s.VerifyImages(kBootAgent, Image(), kTypes); });
    read("EnumerateISCSIAdapters", [](Session& s) { return s.IscsiAdapters(); });
    read("SetiSCSIStatus",
         [](Session& s) { return s.SetIscsiStatus(kBootAgent, IscsiStatus::SecondaryPort); });
    read("GetiSCSI_Info", [](Session& s) { return s.ReadIscsiSupport(kAdapter); });

    read("GetAdapterLinksecManualAuthOptions", [](Session& s) { return s.ReadManualKeys(kAdapter); });
    write("SetAdapterLinksecManualAuthOptions", [](Session& s) {
        ManualKeys keys;
        keys.outgoing.key = Secret(L"CANARY of the outgoing key to set CANARY");
        keys.incoming.key = Secret(L"CANARY of the incoming key to set CANARY");
        s.SetManualKeys(kAdapter, keys, Reload::Driver);
    });
    read("GetAdapterLinksecStrictPreferredOptions",
         [](Session& s) { return s.ReadAuthentication(kAdapter); });
    write("SetAdapterLinksecStrictPreferredOptions",
          [](Session& s) { s.SetAuthentication(kAdapter, AuthenticationWith(4), Reload::Driver); });
    write(
        "SetAdapterLinksecStrictPreferredOptions_Outer1",
        [](Session& s) { s.SetAuthentication(kAdapter, AuthenticationWith(1), Reload::Driver); },
        "SetAdapterLinksecStrictPreferredOptions");
    read("GetAdapterLinksecEapType", [](Session& s) { return s.ReadAuthenticationMethods(kAdapter); });
    write("AdapterImportManualPAC", [](Session& s) {
        s.ImportPac(kAdapter, {LR"(C:\pac\new.pac)", Secret(L"CANARY of the new file CANARY"), true},
                    Reload::Driver);
    });
    write("DeletePacFile", [](Session& s) { s.DeletePac(kAdapter, L"old.pac"); });
    read("GetAdapterPacFileContents", [](Session& s) { return s.ReadPac(kAdapter, L"old.pac"); });
    write("SetAdapterManualPMKOptions", [](Session& s) {
        s.SetMasterKey(kAdapter, {Secret(L"CANARY of the master key to set CANARY"), true}, Reload::No);
    });
    read("GetAdapterManualPMKOptions", [](Session& s) { return s.ReadMasterKey(kAdapter); });
    read("GetAdapterSavedCredOptions", [](Session& s) { return s.ReadSavedCredentials(kAdapter); });
    read("GetAdapterLinksecSecurityStats", [](Session& s) { return s.ReadSecurityLog(kAdapter); });
    return table;
}

} // namespace

const ClientOperation* FindClientOperation(const std::string& name) {
    static const std::map<std::string, ClientOperation> kTable = Table();
    const auto found = kTable.find(name);
    return found == kTable.end() ? nullptr : &found->second;
}

} // namespace quillet::tests
