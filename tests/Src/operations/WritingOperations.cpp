// Writing settings and their checks, performance profiles, power and wake-on-LAN.
#include "Operations.h"

namespace {

// {A} and {B} are a team with room for {C}; {A} and {C} have the profile for hosts of virtual machines.
constexpr const char* kWritingMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Name = "First"; OriginalDisplayName = "First adapter"; Caption = "A"; SlotID = "Slot 1";
        AdapterStatus = 1; HardwareStatus = 3; StatusInfo = 3; Availability = 3; Speed = 1000000000;
        FullDuplex = TRUE; LinkSecStatus = 2; Status = "OK"; Capabilities = {46, 47, 61}; };
    instance of Zorel_PhysicalEthernetAdapter as $B {
        DeviceID = "{B}"; Name = "Second"; OriginalDisplayName = "Second adapter"; Caption = "B"; SlotID = "Slot 2";
        AdapterStatus = 1; HardwareStatus = 3; StatusInfo = 3; Availability = 3; Speed = 1000000000;
        FullDuplex = TRUE; LinkSecStatus = 2; Status = "OK"; Capabilities = {46}; };
    instance of Zorel_PhysicalEthernetAdapter as $C {
        DeviceID = "{C}"; Name = "Third"; OriginalDisplayName = "Third adapter"; Caption = "C"; SlotID = "Slot 3";
        AdapterStatus = 1; HardwareStatus = 3; StatusInfo = 3; Availability = 3; Speed = 1000000000;
        FullDuplex = TRUE; LinkSecStatus = 2; Status = "OK"; Capabilities = {46}; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "TEAM : one"; TeamingMode = 0; };
    instance of Zorel_TeamedMemberAdapter {
        GroupComponent = $T; PartComponent = $A; AdapterFunction = 1; AdapterStatus = 1; };
    instance of Zorel_VLAN { Name = "{V}"; ParentID = "{T}"; VLANName = "Voice"; VLANNumber = 7; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Grouped = FALSE; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "9014"}; DescriptionMap = {"Off", "9014"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Grouped = FALSE; CurrentValue = 5; DefaultValue = 2;
        PossibleValues = {"2", "5"}; DescriptionMap = {"Standard", "Virtualization"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "PerformanceProfile"; ParentId = "{C}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Grouped = FALSE; CurrentValue = 5; DefaultValue = 2;
        PossibleValues = {"2", "5"}; DescriptionMap = {"Standard", "Virtualization"}; };
    instance of Zorel_AdapterSettingEnum {
        Caption = "*RSS"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Grouped = FALSE; CurrentValue = 1; DefaultValue = 1;
        PossibleValues = {"0", "1"}; DescriptionMap = {"Off", "On"}; };
    instance of Zorel_AdapterSettingString {
        Caption = "NetworkAddress"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Grouped = FALSE; CurrentValue = ""; DefaultValue = ""; MaxLength = 12; };
    instance of Zorel_AdapterSettingMultiString {
        Caption = "WakePatterns"; ParentId = "{A}"; ParentType = "NIC"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Grouped = FALSE; CurrentValues = {"x"}; DefaultValue = ""; MaxLength = 12; };
    instance of Zorel_VLANSettingEnum {
        Caption = "*JumboPacket"; ParentId = "{V}"; ParentType = "VLAN"; Description = "D"; MiniHelp = "M";
        ExposeLevel = 1; Grouped = FALSE; CurrentValue = 1514; DefaultValue = 1514;
        PossibleValues = {"1514", "9014"}; DescriptionMap = {"Off", "9014"}; };
    instance of Zorel_PowerConfiguration {
        DeviceID = "{A}"; SavePowerNowEnabled = 2; AutoPowerSaveModeEnabled = 1; ReduceSpeedOnPowerDown = 0;
        SmartPowerDown = 1; EnhancedASPMPowerSaver = 0; ACBSMode = 1; LinkSpeedBatterySaver = 0;
        SystemIdlePowerSaver = 1; WakeFromPowerOff = 1; WakeOnLink = 0; WakeOnMagicPacket = 1;
        WakeOnDirectedPacket = 0; WakeOnPattern = 1; };)";

// The whole path: a port is found by it among the ports of its board.
constexpr const wchar_t* kWritingAdapter =
    LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
constexpr const wchar_t* kWritingVlan = LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_VLAN.Name="{V}")";
constexpr const wchar_t* kOther =
    LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{B}")";

std::wstring SettingPath(const wchar_t* kind, const wchar_t* caption) {
    return L"Zorel_AdapterSetting" + std::wstring(kind) + L".Caption=\"" + caption +
           LR"(",ParentId="{A}",ParentType="NIC")";
}

void Add(CAdapters& adapters, const wchar_t* path) {
    adapters.m_vecItems.push_back(new CAdapter);
    adapters.m_vecItems.back()->m_wsAdapterID = path;
}

std::string Hex(DWORD number) {
    return Code(static_cast<HRESULT>(number));
}

/// GetAdapterProfiles has one code for whatever keeps it from reading the profiles.
HRESULT ProfilesUnreadable(const JournalEntry&, HRESULT) {
    return static_cast<HRESULT>(WBEM_E_FAILED);
}

/// The members of a team are listed with one code for a team that cannot be fetched.
HRESULT WritingTeamUnreadable(const JournalEntry& failed, HRESULT code) {
    return failed.operation == Operation::GetObject &&
                   failed.target.find(L"Zorel_TeamOfAdapters") != std::wstring::npos
               ? static_cast<HRESULT>(WBEM_E_FAILED)
               : code;
}

/// A write of the setting that `change` makes out of a fresh one.
template <class Setting>
OperationCase Writing(const char* name, const wchar_t* kind, const wchar_t* caption,
                      void (*change)(Setting& setting)) {
    return {name, [=](CQuillet& q, Outputs&) {
                Setting setting;
                change(setting);
                return q.SetSetting(SettingPath(kind, caption), setting);
            }};
}

} // namespace

OperationArea WritingOperations() {
    return {
        kWritingMachine,
        true,
        {
            Writing<CSettingEnum>("SetSetting_Number", L"Enum", L"*JumboPacket",
                                  [](CSettingEnum& choice) { choice.SetCurrentValue(LONG(9014)); }),
            Writing<CSettingString>("SetSetting_Text", L"String", L"NetworkAddress",
                                    [](CSettingString& text) { text.m_wsCurrentValue = L"02005E"; }),
            Writing<CSettingMultiString>("SetSetting_List", L"MultiString", L"WakePatterns",
                                         [](CSettingMultiString& list) {
                                             list.m_vecCurrentValues = {L"a", L"b"};
                                         }),
            {"ValidateSetSetting",
             [](CQuillet& q, Outputs& out) {
                 bool isTeamed = false;
                 ULONGLONG warnings = 77;
                 const HRESULT result =
                     q.ValidateSetSetting(kWritingAdapter, isTeamed, L"*JumboPacket", 9000, warnings);
                 out("isTeamed", isTeamed)("warnings", warnings);
                 return result;
             }},
            {"ValidateSetSettingOnVlan",
             [](CQuillet& q, Outputs& out) {
                 ULONGLONG warnings = 77;
                 const HRESULT result =
                     q.ValidateSetSettingOnVlan(kWritingVlan, L"*JumboPacket", 9000, warnings);
                 out("warnings", warnings);
                 return result;
             }},
            {"JumboFramePrecheckSetSetting",
             [](CQuillet& q, Outputs& out) {
                 bool onAll = false;
                 bool isTeamed = false;
                 const HRESULT result = q.JumboFramePrecheckSetSetting(kWritingAdapter, onAll, isTeamed);
                 out("onAllMembers", onAll)("isTeamed", isTeamed);
                 return result;
             },
             WritingTeamUnreadable},
            {.name = "RSS_PrecheckOnTeamModify",
             .run =
                 [](CQuillet& q, Outputs& out) {
                     CTeamedAdapters members;
                     members.m_vecItems.push_back(new CTeamedAdapter);
                     members.m_vecItems.back()->m_wsAdapterID = kWritingAdapter;
                     CAdapters wanted;
                     Add(wanted, kWritingAdapter);
                     Add(wanted, kOther);
                     ULONGLONG warnings = 77;
                     const HRESULT result = q.RSS_PrecheckOnTeamModify(members, wanted, warnings);
                     out("warnings", warnings);
                     return result;
                 },
             // An adapter whose capabilities cannot be read counts as another maker's.
             .goesOn = [](const JournalEntry&) { return true; },
             .differs = true},
            {"GetAdapterProfiles",
             [](CQuillet& q, Outputs& out) {
                 CPerformanceProfiles profiles;
                 const HRESULT result = q.GetAdapterProfiles(kWritingAdapter, profiles);
                 out("profiles", profiles.m_vecItems);
                 return result;
             },
             ProfilesUnreadable},
            {.name = "ChangeAllAdapterProfilesFromHyperV",
             .run =
                 [](CQuillet& q, Outputs&) {
                     return q.ChangeAllAdapterProfilesFromHyperV(static_cast<ePERFORMANCE_PROFILE>(2));
                 },
             // One adapter that fails does not keep the others.
             .goesOn = [](const JournalEntry&) { return true; },
             .differs = true},
            {"GetCompatibleTeamProfilesWithAdapters",
             [](CQuillet& q, Outputs& out) {
                 CAdapters adapters;
                 Add(adapters, kWritingAdapter);
                 CPerformanceProfiles profiles;
                 const HRESULT result = q.GetCompatibleTeamProfilesWithAdapters(adapters, profiles);
                 out("profiles", profiles.m_vecItems);
                 return result;
             }},
            {"GetAdapterPowerUsageOptions",
             [](CQuillet& q, Outputs& out) {
                 CAdapterPowerUsageInfo info;
                 const HRESULT result = q.GetAdapterPowerUsageOptions(kWritingAdapter, info);
                 out("mode", info.m_eSavePower)("first", Hex(info.m_dwAutoPowerSaveModeEnabled))(
                     "last", Hex(info.m_dwSystemIdlePowerSaver));
                 return result;
             }},
            {"SetAdapterPowerUsageOptions",
             [](CQuillet& q, Outputs&) {
                 CAdapterPowerUsageInfo info;
                 info.m_dwAutoPowerSaveModeEnabled = info.m_dwReduceSpeedOnPowerDown =
                     info.m_dwSmartPowerDown = info.m_dwEnhancedASPMPowerSaver = info.m_dwACBSMode =
                         info.m_dwLinkSpeedBatterySaver = info.m_dwSystemIdlePowerSaver = 1;
                 return q.SetAdapterPowerUsageOptions(kWritingAdapter, info);
             }},
            {"GetAdapterWakeOnLanOptions",
             [](CQuillet& q, Outputs& out) {
                 CAdapterWakeOnLanInfo info;
                 const HRESULT result = q.GetAdapterWakeOnLanOptions(kWritingAdapter, info);
                 out("first", Hex(info.m_dwWakeFromPowerOff))("last", Hex(info.m_dwWakeOnPattern));
                 return result;
             }},
            {"SetAdapterWakeOnLanOptions",
             [](CQuillet& q, Outputs&) {
                 CAdapterWakeOnLanInfo info;
                 info.m_dwWakeFromPowerOff = info.m_dwWakeOnLink = info.m_dwWakeOnMagicPacket =
                     info.m_dwWakeOnDirectedPacket = info.m_dwWakeOnPattern = 1;
                 return q.SetAdapterWakeOnLanOptions(kWritingAdapter, info);
             }},
            {"SetAdapterPowerManagementCapabilities",
             [](CQuillet& q, Outputs&) { return q.SetAdapterPowerManagementCapabilities(kWritingAdapter); }},
        },
    };
}
