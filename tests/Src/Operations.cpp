// The table of operations, and the machine that they run on.
#include "Operations.h"

#include "ProviderNames.h"

#include <LumString.h>

namespace {

constexpr const char* MACHINE = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; Warnings = 5; };
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "First"; OriginalDisplayName = "First adapter"; SlotID = "Slot 1";
        Status = "OK"; StatusInfo = 3; Availability = 3; AdapterStatus = 1; HardwareStatus = 3;
        Speed = 1000000000; FullDuplex = TRUE; LinkSecStatus = 2; Capabilities = {46, 50};
        ControllerID = "C"; MediaType = "Copper"; BusType = "PCI Express"; NegotiatedLinkWidth = "x4";
        PortNumber = "1"; PHYDevice = 1; PartNumber = "P"; NetworkAddresses = {"02-00-5E-00-00-01"};
        PermanentAddress = "02-00-5E-00-00-01"; EEPROMVersion = "1"; SanMacAddress = "02-00-5E-00-00-03";
        PCIDeviceID = "F112"; HbaPath = "hba"; NDISMajorVersion = 6; NDISMinorVersion = 30; AdapterWarnings = 3; };
    instance of Zorel_PhysicalEthernetAdapter as $B {
        DeviceID = "{B}"; Name = "Second"; OriginalDisplayName = "Second adapter"; SlotID = "Slot 1";
        AdapterStatus = 1; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $B; };
    instance of Zorel_AdapterSettingInt {
        Caption = "Padding"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M"; ExposeLevel = 1;
        Writable = TRUE; Grouped = TRUE; GroupId = 7; CurrentValue = 5; DefaultValue = 2; Max = 30; Min = 1; Step = 1;
        Base = 10; Scale = 1; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*SpeedDuplex"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Writable = TRUE; Grouped = FALSE; CurrentValue = 4; DefaultValue = 0;
        PossibleValues = {"0", "4"}; DescriptionMap = {"Auto", "100 full"}; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "Patterns"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Writable = TRUE; Grouped = FALSE; CurrentValues = {"x"}; DefaultValue = "d"; MaxLength = 6; };
    instance of Zorel_TeamSettingString {
        Caption = "Label"; ParentId = "{T}"; ParentType = "TEAM"; Description = "D"; MiniHelp = "M"; ExposeLevel = 1;
        Writable = TRUE; Grouped = FALSE; CurrentValue = "c"; DefaultValue = "d"; MaxLength = 6; };
    instance of Zorel_VLANSettingSlider {
        Caption = "Level"; ParentId = "{V}"; ParentType = "VLAN"; Description = "D"; MiniHelp = "M"; ExposeLevel = 1;
        Writable = TRUE; Grouped = FALSE; CurrentValue = 1; DefaultValue = 1; PossibleValues = {"1", "2"};
        FirstLabel = "f"; LastLabel = "l"; };
    instance of Zorel_BootAgentSettingMultiSelection {
        Caption = "Boot"; ParentId = "{A}"; ParentType = "BOOTAGENT"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Writable = TRUE; Grouped = FALSE; CurrentValue = 1; DefaultValue = 1;
        PossibleValues = {"1"}; DescriptionMap = {"one"}; };)";

constexpr const wchar_t* ADAPTER = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
constexpr const wchar_t* TEAM = LR"(Zorel_TeamOfAdapters.Name="{T}")";
constexpr const wchar_t* VLAN = LR"(Zorel_VLAN.Name="{V}")";
constexpr const wchar_t* BOOT_AGENT = LR"(Zorel_BootAgent.Name="{A}")";
constexpr ProviderName CAPABILITIES{L"L_PROP_ETHERNETADAPTER_CAPABILITIES", L"Capabilities"};
constexpr ProviderName TEAMING_MODE{L"L_PROP_TEAMOFADAPTERS_TEAMINGMODE", L"TeamingMode"};
constexpr ProviderName TEAM_CLASS{L"L_CLASS_ZOREL_TEAMOFADAPTERS", L"Zorel_TeamOfAdapters"};

/// An enumeration of adapters reports an adapter that cannot be read as one code, whatever the provider's.
HRESULT AdapterUnreadable(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::Get ? E_FAIL : code;
}

/// A text that the provider does not have is no failure.
HRESULT TextIsOptional(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::GetQualifier ? S_OK : code;
}

} // namespace

const std::vector<OperationCase>& Operations() {
    static const std::vector<OperationCase> operations = {
        {"BeginApply", [](CQuillet& q) { return q.BeginApply(); }},
        {"ApplyDone",
         [](CQuillet& q) {
             bool followup;
             return q.ApplyDone(followup);
         }},
        {"GetWarnings",
         [](CQuillet& q) {
             ULONGLONG warnings = 0;
             return q.GetWarnings(warnings);
         }},
        {"EnumerateAdapters",
         [](CQuillet& q) {
             CAdapters all;
             return q.EnumerateAdapters(all);
         },
         AdapterUnreadable},
        {"GetAdapterBasicInfo",
         [](CQuillet& q) {
             CAdapter a;
             return q.GetAdapterBasicInfo(ADAPTER, a);
         }},
        {"GetAdapterDynamicInfo",
         [](CQuillet& q) {
             CAdapter a;
             return q.GetAdapterDynamicInfo(ADAPTER, a);
         }},
        {"GetAdapterStatus",
         [](CQuillet& q) {
             CAdapter a;
             return q.GetAdapterStatus(ADAPTER, a);
         }},
        {"GetAdapterCapabilities",
         [](CQuillet& q) {
             CAdapter a;
             return q.GetAdapterCapabilities(ADAPTER, a);
         }},
        {"GetAdapterPCIInfo",
         [](CQuillet& q) {
             CPCIInfo info;
             return q.GetAdapterPCIInfo(ADAPTER, info);
         }},
        {"EnumerateOtherPortOfAdapter",
         [](CQuillet& q) {
             CAdapterPorts ports;
             return q.EnumerateOtherPortOfAdapter(ADAPTER, ports);
         }},
        {"IdentifyAdapter", [](CQuillet& q) { return q.IdentifyAdapter(ADAPTER, 1); }},
        {"GetHbaPath",
         [](CQuillet& q) {
             std::wstring path;
             return q.GetHbaPath(ADAPTER, path);
         }},
        {"GetNDIS_Version",
         [](CQuillet& q) {
             int major, minor;
             return q.GetNDIS_Version(ADAPTER, major, minor);
         }},
        {"GetAdapterWarnings",
         [](CQuillet& q) {
             ULONGLONG warnings;
             return q.GetAdapterWarnings(ADAPTER, warnings);
         }},
        {"GetAdapterSettings",
         [](CQuillet& q) {
             CSettings all;
             return q.GetAdapterSettings(ADAPTER, all);
         }},
        {"GetAdapterVmqSettings",
         [](CQuillet& q) {
             CSettings all;
             return q.GetAdapterVmqSettings(CLumString(ADAPTER), all);
         }},
        {"GetTeamSettings",
         [](CQuillet& q) {
             CSettings all;
             return q.GetTeamSettings(TEAM, all);
         }},
        {"GetVlanSettings",
         [](CQuillet& q) {
             CSettings all;
             return q.GetVlanSettings(VLAN, all);
         }},
        {"GetBootAgentSettings",
         [](CQuillet& q) {
             CSettings all;
             return q.GetBootAgentSettings(BOOT_AGENT, all);
         }},
        {"GetSpeedDuplexSetting",
         [](CQuillet& q) {
             CSettingEnum one;
             return q.GetSpeedDuplexSetting(ADAPTER, one, true);
         }},
        {"GetAdapterSettingAsync",
         [](CQuillet& q) {
             CSettingEnum one;
             one.m_wsCaption = L"*SpeedDuplex";
             return q.GetAdapterSettingAsync(CLumString(L"{A}"), &one);
         }},
        {"GetSettingOnTeamOrAdapter",
         [](CQuillet& q) {
             CSettings all;
             bool onAll;
             return QuilletTestAccess::GetSettingOnTeamOrAdapter(q, {ADAPTER}, all, onAll,
                                                                 SettingName::SpeedDuplex);
         }},
        {"GetDataFromValues",
         [](CQuillet& q) {
             std::wstring text;
             return QuilletTestAccess::GetDataFromValues(q, L_CLASS_ZOREL_ETHERNETADAPTER, CAPABILITIES, 46,
                                                         text);
         },
         TextIsOptional},
        {"GetDataFromValueMap",
         [](CQuillet& q) {
             std::wstring text;
             return QuilletTestAccess::GetDataFromValueMap(q, TEAM_CLASS, TEAMING_MODE, 1, text);
         },
         TextIsOptional},
    };
    return operations;
}

void PrintTo(const OperationCase& operation, std::ostream* out) {
    *out << operation.name;
}

std::string OperationTestName(const testing::TestParamInfo<OperationCase>& info) {
    return info.param.name;
}

void OperationsTest::SetUp() {
    UseText(MACHINE);
    Connect();
}
