// Session, adapters and the reading of settings: all that only reads.
#include "Operations.h"

#include "Provider/ProviderNames.h"

#include <LumString.h>

namespace {

constexpr const char* kReadingMachine = R"(
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
        Caption = "Padding"; ParentId = "{A}"; ParentType = "NIC"; PartialDataMask = 256; Description = "D"; MiniHelp = "M"; ExposeLevel = 1;
        Writable = TRUE; Grouped = TRUE; GroupId = 7; CurrentValue = 5; DefaultValue = 2; Max = 30; Min = 1; Step = 1;
        Base = 10; Scale = 1; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*SpeedDuplex"; ParentId = "{A}"; ParentType = "NIC"; PartialDataMask = 256; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Writable = TRUE; Grouped = FALSE; CurrentValue = 4; DefaultValue = 0;
        PossibleValues = {"0", "4"}; DescriptionMap = {"Auto", "100 full"}; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "Patterns"; ParentId = "{A}"; ParentType = "NIC"; PartialDataMask = 256; Description = "D"; MiniHelp = "M";
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

constexpr const wchar_t* kReadingAdapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
constexpr const wchar_t* kReadingTeam = LR"(Zorel_TeamOfAdapters.Name="{T}")";
constexpr const wchar_t* kReadingVlan = LR"(Zorel_VLAN.Name="{V}")";
constexpr const wchar_t* kBootAgent = LR"(Zorel_BootAgent.Name="{A}")";
constexpr ProviderName kCapabilities{L"L_PROP_ETHERNETADAPTER_CAPABILITIES", L"Capabilities"};
constexpr ProviderName kTeamingMode{L"L_PROP_TEAMOFADAPTERS_TEAMINGMODE", L"TeamingMode"};
constexpr ProviderName kTeamClass{L"L_CLASS_ZOREL_TEAMOFADAPTERS", L"Zorel_TeamOfAdapters"};

/// An enumeration of adapters reports an adapter that cannot be read as one code, whatever the provider's.
HRESULT AdapterUnreadable(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::Get ? E_FAIL : code;
}

/// An operation that fills a collection of settings.
OperationCase SettingsOf(const char* name, HRESULT (*read)(CQuillet&, CSettings&)) {
    return {name, [read](CQuillet& q, Outputs& out) {
                CSettings all;
                const HRESULT result = read(q, all);
                out("settings", all.m_vecItems);
                return result;
            }};
}

} // namespace

OperationArea ReadingOperations() {
    return {
        kReadingMachine,
        false,
        {
            {"BeginApply", [](CQuillet& q, Outputs&) { return q.BeginApply(); }},
            {"ApplyDone",
             [](CQuillet& q, Outputs& out) {
                 bool followup = false;
                 const HRESULT result = q.ApplyDone(followup);
                 out("followup", followup);
                 return result;
             }},
            {"GetWarnings",
             [](CQuillet& q, Outputs& out) {
                 ULONGLONG warnings = 77;
                 const HRESULT result = q.GetWarnings(warnings);
                 out("warnings", warnings);
                 return result;
             }},
            {"EnumerateAdapters",
             [](CQuillet& q, Outputs& out) {
                 CAdapters all;
                 const HRESULT result = q.EnumerateAdapters(all);
                 out("adapters", all.m_vecItems);
                 return result;
             },
             AdapterUnreadable},
            {"GetAdapterBasicInfo",
             [](CQuillet& q, Outputs& out) {
                 CAdapter a;
                 const HRESULT result = q.GetAdapterBasicInfo(kReadingAdapter, a);
                 out("name", a.m_wsName);
                 return result;
             }},
            {"GetAdapterDynamicInfo",
             [](CQuillet& q, Outputs& out) {
                 CAdapter a;
                 const HRESULT result = q.GetAdapterDynamicInfo(kReadingAdapter, a);
                 out("record", a.m_pAdapterDynamicInfo != nullptr);
                 return result;
             }},
            {"GetAdapterStatus",
             [](CQuillet& q, Outputs& out) {
                 CAdapter a;
                 const HRESULT result = q.GetAdapterStatus(kReadingAdapter, a);
                 out("record", a.m_pAdapterDynamicInfo != nullptr);
                 return result;
             }},
            {"GetAdapterCapabilities",
             [](CQuillet& q, Outputs& out) {
                 CAdapter a;
                 const HRESULT result = q.GetAdapterCapabilities(kReadingAdapter, a);
                 out("record", a.m_pAdapterCapabilities != nullptr);
                 return result;
             }},
            {"GetAdapterPCIInfo",
             [](CQuillet& q, Outputs& out) {
                 CPCIInfo info;
                 const HRESULT result = q.GetAdapterPCIInfo(kReadingAdapter, info);
                 out("controller", info.m_wsControllerID);
                 return result;
             }},
            {"EnumerateOtherPortOfAdapter",
             [](CQuillet& q, Outputs& out) {
                 CAdapterPorts ports;
                 const HRESULT result = q.EnumerateOtherPortOfAdapter(kReadingAdapter, ports);
                 out("ports", ports.m_vecItems);
                 return result;
             }},
            {"IdentifyAdapter", [](CQuillet& q, Outputs&) { return q.IdentifyAdapter(kReadingAdapter, 1); }},
            {"GetHbaPath",
             [](CQuillet& q, Outputs& out) {
                 std::wstring path = L"before";
                 const HRESULT result = q.GetHbaPath(kReadingAdapter, path);
                 out("path", path);
                 return result;
             }},
            {"GetNDIS_Version",
             [](CQuillet& q, Outputs& out) {
                 int major = 77;
                 int minor = 77;
                 const HRESULT result = q.GetNDIS_Version(kReadingAdapter, major, minor);
                 out("major", major)("minor", minor);
                 return result;
             }},
            {"GetAdapterWarnings",
             [](CQuillet& q, Outputs& out) {
                 ULONGLONG warnings = 77;
                 const HRESULT result = q.GetAdapterWarnings(kReadingAdapter, warnings);
                 out("warnings", warnings);
                 return result;
             }},
            SettingsOf(
                "GetAdapterSettings",
                [](CQuillet& q, CSettings& all) { return q.GetAdapterSettings(kReadingAdapter, all); }),
            SettingsOf("GetAdapterVmqSettings",
                       [](CQuillet& q, CSettings& all) {
                           return q.GetAdapterVmqSettings(CLumString(kReadingAdapter), all);
                       }),
            SettingsOf("GetTeamSettings",
                       [](CQuillet& q, CSettings& all) { return q.GetTeamSettings(kReadingTeam, all); }),
            SettingsOf("GetVlanSettings",
                       [](CQuillet& q, CSettings& all) { return q.GetVlanSettings(kReadingVlan, all); }),
            SettingsOf("GetBootAgentSettings",
                       [](CQuillet& q, CSettings& all) { return q.GetBootAgentSettings(kBootAgent, all); }),
            {"GetSpeedDuplexSetting",
             [](CQuillet& q, Outputs& out) {
                 CSettingEnum one;
                 const HRESULT result = q.GetSpeedDuplexSetting(kReadingAdapter, one, true);
                 out("caption", one.m_wsCaption);
                 return result;
             }},
            {"GetAdapterSettingAsync",
             [](CQuillet& q, Outputs& out) {
                 CSettingEnum one;
                 one.m_wsCaption = L"*SpeedDuplex";
                 const HRESULT result = q.GetAdapterSettingAsync(CLumString(L"{A}"), &one);
                 out("description", one.m_wsDescription);
                 return result;
             }},
            {"GetSettingOnTeamOrAdapter",
             [](CQuillet& q, Outputs& out) {
                 CSettings all;
                 bool onAll = false;
                 const HRESULT result = QuilletTestAccess::GetSettingOnTeamOrAdapter(
                     q, {kReadingAdapter}, all, onAll, SettingName::SpeedDuplex);
                 out("settings", all.m_vecItems)("onAll", onAll);
                 return result;
             }},
            {"GetDataFromValues",
             [](CQuillet& q, Outputs& out) {
                 std::wstring text = L"before";
                 const HRESULT result = QuilletTestAccess::GetDataFromValues(q, L_CLASS_ZOREL_ETHERNETADAPTER,
                                                                             kCapabilities, 46, text);
                 out("text", text);
                 return result;
             }},
            {"GetDataFromValueMap",
             [](CQuillet& q, Outputs& out) {
                 std::wstring text = L"before";
                 const HRESULT result =
                     QuilletTestAccess::GetDataFromValueMap(q, kTeamClass, kTeamingMode, 1, text);
                 out("text", text);
                 return result;
             }},
        },
    };
}
