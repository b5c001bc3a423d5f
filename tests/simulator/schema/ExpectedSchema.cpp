// The table of what clients rely on. It is written from the clients' side, by what they read, put and call,
// and not taken over from the schema: a type that is wrong there is found here.
#include "ExpectedSchema.h"

#include <map>
#include <sstream>
#include <stdexcept>

namespace quillet::simulator::tests {

namespace {

// A class, then one member a line: a property is "[key|write|secret] type Name", with "ref Class" for a type
// where it is a reference; a method is "Name(in-parameters) -> out-parameters". An indented line goes on with
// the one above it.
constexpr const wchar_t* Table = LR"(
class Zorel_NetService
key string Name
uint64 Warnings
BeginApply() -> sint32 ClientSetHandle
Apply(sint32 ClientSetHandle) -> sint32 FollowupAction
GetKavlorWarnings() -> uint64 Warnings

class Zorel_PhysicalEthernetAdapter
key string DeviceID
string Name
string Caption
string OriginalDisplayName
string SlotID
uint64 Speed
uint32 LinkSecStatus
boolean FullDuplex
uint32 AdapterStatus
uint16 StatusInfo
uint16 Availability
uint32 HardwareStatus
string Status
uint16[] Capabilities
string ControllerID
string MediaType
string BusType
string NegotiatedLinkWidth
string PortNumber
sint32 PHYDevice
string PartNumber
string[] NetworkAddresses
string PermanentAddress
string EEPROMVersion
string SanMacAddress
string PCIDeviceID
IdentifyAdapter(sint32 nSeconds)
GetHbaPath() -> string HbaPath
GetNDISVersion() -> uint32 dwMajorVersion, uint32 dwMinorVersion
GetAdapterWarnings() -> uint64 dwAdapterWarnings
ValidateSettingOnNewTeam(string[] Adapters, string SettingName) -> uint64 ValResult
IsiSCSIEnabled() -> sint32 iSCSIStatus
IsiSCSISupported() -> boolean bIsiSCSIOS, boolean bIsiSCSIPatch, boolean bIsiSCSIHotFix
GetLinksecManualCfgKeys() -> secret string strTXSAKey, sint32 nTXAssocNum1, sint32 nTXAssocNum2, boolean
    bIncludeSCIOnTX, string strTXSCI, secret string strRXSAKey, sint32 nRXAssocNum1, sint32 nRXAssocNum2,
    string strRXSCI, boolean bUseEncryption
SetLinksecManualCfgKeys(secret string strTXSAKey, sint32 nTXAssocNum1, sint32 nTXAssocNum2, boolean
    bIncludeSCIOnTX, string strTXSCI, secret string strRXSAKey, sint32 nRXAssocNum1, sint32 nRXAssocNum2,
    string strRXSCI, boolean bUseEncryption, boolean bDriverReload)
GetLinksecParams() -> sint32 OuterEAPType, sint32 InnerEAPType, boolean bMachineCred, string
    LinksecCredUsername, string MachineNameDomainName, secret string LinksecCredPassword, sint32 WindowsCreds,
    boolean bAutoPAC, string PACPath, sint32 KeySecType, boolean bRandMACAddress
SetLinksecParams(sint32 OuterEAPType, sint32 InnerEAPType, string LinksecCredUsername, secret string
    LinksecCredPassword, sint32 TypeOfCredsChanged, boolean bMachineCred, sint32 WindowsCreds, boolean
    bAutoPAC, string PACPath, boolean bCredChanged, boolean bDriverReload, sint32 KeySecType, boolean
    bRandMACAddress)
ImportManualPAC(string PACPath, secret string PACFilePassword, boolean bPACInfoChanged, boolean bReload)
DeletePacFile(string strPACFileDelete)
GetPACFileContents(string strPACFile) -> sint32 PACFileType, string strPACFileInfo, string strPACFileAid,
    string strPACFileAidInfo, string strPACFileIid, sint32 PACFileExpiryTime
SetLinksecManualPMKeys(secret string strManualPMKey, boolean bDriverReload, boolean bRandMACAddress)
GetLinksecManualPMKeys() -> secret string strManualPMKey, boolean bRandMACAddress
GetLinksecSavedCreds() -> boolean bMachineCred, string strUsername, secret string strPassword, string
    strMachineDomainName
GetLinksecSecurityStatsLog() -> string strSecStats
GetPowerUsageOptions() -> uint32 SavePowerNowEnabled, uint32 AutoPowerSaveModeEnabled, uint32
    ReduceSpeedOnPowerDown, uint32 SmartPowerDown, uint32 EnhancedASPMPowerSaver, uint32 ACBSMode, uint32
    LinkSpeedBatterySaver, uint32 SystemIdlePowerSaver
SetPowerUsageOptions(uint32 SavePowerNowEnabled, uint32 AutoPowerSaveModeEnabled, uint32
    ReduceSpeedOnPowerDown, uint32 SmartPowerDown, uint32 EnhancedASPMPowerSaver, uint32 ACBSMode, uint32
    LinkSpeedBatterySaver, uint32 SystemIdlePowerSaver)
GetWakeOnLanPowerOptions() -> uint32 WakeFromPowerOff, uint32 WakeOnLink, uint32 WakeOnMagicPacket, uint32
    WakeOnDirectedPacket, uint32 WakeOnPattern
SetWakeOnLanPowerOptions(uint32 WakeFromPowerOff, uint32 WakeOnLink, uint32 WakeOnMagicPacket, uint32
    WakeOnDirectedPacket, uint32 WakeOnPattern)
SetPowerMgmtCapabilities()

class Zorel_LogicalEthernetAdapter
key string DeviceID
uint16 StatusInfo

class Zorel_NetworkVirtualAdapter
key ref Zorel_LogicalEthernetAdapter SystemElement
key ref Zorel_TeamOfAdapters SameElement

class Zorel_TeamOfAdapters
key string Name
write string Caption
write sint32 TeamingMode
string TeamMacAddress
boolean MFOEnabled
boolean LinksecEnabled
boolean BoundToHyperV
string TeamPrefix
CreateTeam(string[] Adapters, sint32 TeamingMode, string TeamName, boolean MFOEnable, boolean LinksecEnabled,
    sint32 TeamProfile) -> string TeamPath
ValidateTeamName(string Caption) -> uint32 ValResult
ValidateTeamMode(sint32 TeamingMode) -> uint32 ValResult
ValidateNewTeamMembers(string[] NewAdapters, sint32 NewTeamMode) -> uint64 ValResultNewTeam
ValidateAddAdapters(string[] Adapters) -> uint64 ValResult
ValidateSetting(string Adapter, string SettingName, sint32 Value) -> uint64 ValResult
GetBestTeamMode() -> uint32 Status, uint32 PercentOfCoverage, sint32 ErrorMessageId, sint32 TeamingMode
TestSwitchConfiguration(sint32 Cmd) -> sint32 Status, string[] strCause, string[] strSolution, sint32[]
    CauseMessageId, sint32[] SolutionMessageId

class Zorel_TeamedMemberAdapter
key ref Zorel_TeamOfAdapters GroupComponent
key ref Zorel_PhysicalEthernetAdapter PartComponent
write sint32 AdapterFunction
sint32 AdapterStatus

class Zorel_VLAN
key string Name
string Caption
string ParentID
write string VLANName
write sint32 VLANNumber
uint16 StatusInfo
ValidateSetting(string SettingName, sint32 Value) -> uint64 ValResult

class Zorel_802dot1QVLANService
key string Name
CreateVLAN(sint32 VLANNumber, string Name) -> string VLANPath

class Zorel_DiagTest
key string Name
sint32 TestId
boolean Grouped
sint32 GroupId
RunTest(string SystemElement)
DiscontinueTest(string SystemElement, string Result) -> boolean TestingStopped

class Zorel_DiagResult
key string Name
string DiagnosticName
string PackageName
string Title
string Result
sint32 ResultCode
string Description
boolean IsPackage
uint16 TestState
sint32[] TestResultIds
sint32[] TestResultsAttr

class Zorel_BootAgent
key string Name
string Version
sint32 VersionNumber
boolean UpdateAvailable
sint32 FlashImageType
sint32 iSCSI_Status
sint32 InstalledFlashImageTypes
ReadFlash() -> uint8[] FlashData
ProgramFlashEx(uint8[] NewFlashData, string[] ImageType) -> sint32 FlashRetCode
ReadImageFile(uint8[] FlashData) -> sint32 FlashRetCode, string[] ImageType, string[] ImageVersionNumber,
    sint32[] ImageGroupNumber, sint32[] ImageExposeLevel
VerifyImageType(uint8[] FlashData, string[] ImageType) -> sint32 FlashRetCode
SetiSCSI_Status(sint32 iSCSI_State) -> uint32 RetCode

class Zorel_BootAgent_iSCSI_Adapters
key string Name
string AdapterName
sint32 iSCSI_Status
SetiSCSI_Status(sint32 iSCSI_State) -> uint32 RetCode
)";

// The setting classes repeat one pattern for each owner.
constexpr const wchar_t* SettingOwners[] = {L"Adapter", L"Team", L"VLAN", L"BootAgent"};
constexpr const wchar_t* EverySetting = LR"(key string Caption
key string ParentId
key string ParentType
string Description
string MiniHelp
sint32 ExposeLevel
boolean Writable
boolean Grouped
sint32 GroupId
)";
const std::pair<const wchar_t*, const wchar_t*> SettingKinds[] = {
    {L"", L""},
    {L"Int", L"write sint32 CurrentValue\nsint32 DefaultValue\nsint32 Max\nsint32 Min\nsint32 Step\n"
             L"sint32 Base\nsint32 Scale\n"},
    {L"Enum", L"write sint32 CurrentValue\nsint32 DefaultValue\nstring[] DescriptionMap\n"
              L"string[] PossibleValues\n"},
    {L"Slider", L"write sint32 CurrentValue\nsint32 DefaultValue\nstring[] PossibleValues\n"
                L"string FirstLabel\nstring LastLabel\n"},
    {L"String", L"write string CurrentValue\nstring DefaultValue\nsint32 MaxLength\n"},
    {L"MultiSelection", L"write sint32 CurrentValue\nsint32 DefaultValue\nstring[] DescriptionMap\n"
                        L"string[] PossibleValues\n"},
    {L"MultiString", L"write string[] CurrentValues\nstring DefaultValue\nsint32 MaxLength\n"},
};

CIMTYPE TypeOf(std::wstring text) {
    static const std::map<std::wstring, CIMTYPE> types = {
        {L"boolean", CIM_BOOLEAN}, {L"uint8", CIM_UINT8},   {L"uint16", CIM_UINT16}, {L"sint32", CIM_SINT32},
        {L"uint32", CIM_UINT32},   {L"uint64", CIM_UINT64}, {L"string", CIM_STRING},
    };
    CIMTYPE flags = 0;
    if (text.size() > 2 && text.substr(text.size() - 2) == L"[]") {
        flags = CIM_FLAG_ARRAY;
        text.resize(text.size() - 2);
    }
    return types.at(text) | flags;
}

ExpectedElement ReadElement(const std::wstring& text) {
    std::wistringstream words(text);
    ExpectedElement element;
    std::wstring word;
    while (words >> word) {
        if (word == L"key") {
            element.key = true;
        } else if (word == L"write") {
            element.write = true;
        } else if (word == L"secret") {
            element.secret = true;
        } else if (word == L"ref") {
            element.type = CIM_REFERENCE;
            words >> element.reference >> element.name;
        } else {
            element.type = TypeOf(word);
            words >> element.name;
        }
    }
    if (element.name.empty()) {
        throw std::logic_error("a line of the table has no name");
    }
    return element;
}

std::vector<ExpectedElement> ReadElements(const std::wstring& text) {
    std::vector<ExpectedElement> elements;
    std::wistringstream pieces(text);
    for (std::wstring piece; std::getline(pieces, piece, L',');) {
        elements.push_back(ReadElement(piece));
    }
    return elements;
}

std::vector<ExpectedClass> Read(const std::wstring& table) {
    std::vector<ExpectedClass> classes;
    std::vector<std::wstring> members;
    std::wistringstream lines(table);
    for (std::wstring line; std::getline(lines, line);) {
        if (line.rfind(L"    ", 0) == 0) {
            members.back() += line;
        } else if (!line.empty()) {
            members.push_back(line);
        }
    }
    for (const auto& line : members) {
        if (line.rfind(L"class ", 0) == 0) {
            classes.push_back({line.substr(6), {}, {}});
        } else if (const auto open = line.find(L'('); open != std::wstring::npos) {
            const auto close = line.find(L')');
            const auto arrow = line.find(L"-> ");
            classes.back().methods.push_back(
                {line.substr(0, open), ReadElements(line.substr(open + 1, close - open - 1)),
                 arrow == std::wstring::npos ? std::vector<ExpectedElement>()
                                             : ReadElements(line.substr(arrow + 3))});
        } else {
            classes.back().properties.push_back(ReadElement(line));
        }
    }
    return classes;
}

} // namespace

const std::vector<ExpectedClass>& ExpectedClasses() {
    static const std::vector<ExpectedClass> classes = [] {
        std::wstring table = Table;
        for (const auto* owner : SettingOwners) {
            for (const auto& [kind, members] : SettingKinds) {
                table += L"\nclass Zorel_" + std::wstring(owner) + L"Setting" + kind + L"\n" + EverySetting +
                         members;
            }
        }
        return Read(table);
    }();
    return classes;
}

const std::vector<std::wstring>& ProviderState() {
    static const std::vector<std::wstring> names = {
        L"Zorel_NetService.Caption",
        L"Zorel_NetService.Version",
        L"Zorel_NetService.bIsiSCSIOS",
        L"Zorel_NetService.bIsiSCSIPatch",
        L"Zorel_NetService.bIsiSCSIHotFix",
        L"Zorel_PhysicalEthernetAdapter.HbaPath",
        L"Zorel_PhysicalEthernetAdapter.NDISMajorVersion",
        L"Zorel_PhysicalEthernetAdapter.NDISMinorVersion",
        L"Zorel_PhysicalEthernetAdapter.AdapterWarnings",
        L"Zorel_LogicalEthernetAdapter.Name",
        L"Zorel_LogicalEthernetAdapter.Caption",
        L"Zorel_LogicalEthernetAdapter.Status",
        L"Zorel_LogicalEthernetAdapter.Availability",
        L"Zorel_LogicalEthernetAdapter.Speed",
        L"Zorel_LogicalEthernetAdapter.FullDuplex",
        L"Zorel_LogicalEthernetAdapter.PermanentAddress",
        L"Zorel_LogicalEthernetAdapter.NetworkAddresses",
        L"Zorel_TeamOfAdapters.TeamProfile",
        L"Zorel_802dot1QVLANService.Caption",
        L"Zorel_DiagTest.Description",
        L"Zorel_BootAgent.FlashImage",
    };
    return names;
}

} // namespace quillet::simulator::tests
