// The provider's vocabulary: every class, method, parameter and property with the symbol that traces call it
// by. A symbol or name that is misspelt in the provider's protocol is misspelt here, once.
#pragma once

/// A name of the provider's protocol.
struct ProviderName {
    const wchar_t* symbol; ///< how trace lines call it
    const wchar_t* name;   ///< what goes over the wire
};

// System properties and what every method has.
inline constexpr ProviderName L_ZOREL_PATH{L"L_ZOREL_PATH", L"__PATH"};
inline constexpr ProviderName L_METHOD_RETURN{L"L_METHOD_RETURN", L"ReturnValue"};

// Context values.
inline constexpr const wchar_t* CONTEXT_CLIENT_SET_ID = L"ClientSetId";
inline constexpr const wchar_t* CONTEXT_EXTENSIONS = L"GET_EXTENSIONS";
inline constexpr const wchar_t* CONTEXT_CLIENT_REQUEST = L"GET_EXT_CLIENT_REQUEST";
inline constexpr const wchar_t* CONTEXT_KEYS_ONLY = L"GET_EXT_KEYS_ONLY";
inline constexpr const wchar_t* CONTEXT_PARTIAL_DATA = L"Zorel_PartialData";

// The network service. Its symbol is that of the core service it grew out of.
inline constexpr ProviderName L_CLASS_ZOREL_CORESERVICE{L"L_CLASS_ZOREL_CORESERVICE", L"Zorel_NetService"};
inline constexpr ProviderName L_METHOD_NET_APPLY_BEGIN{L"L_METHOD_NET_APPLY_BEGIN", L"BeginApply"};
inline constexpr ProviderName L_METHOD_NET_APPLY_DONE{L"L_METHOD_NET_APPLY_DONE", L"Apply"};
inline constexpr ProviderName L_METHOD_GETALLWARNINGS{L"L_METHOD_GETALLWARNINGS", L"GetKavlorWarnings"};
inline constexpr ProviderName L_PARAM_NET_CLIENTSETHANDLE{L"L_PARAM_NET_CLIENTSETHANDLE", L"ClientSetHandle"};
inline constexpr ProviderName L_PARAM_NET_FOLLOWUPACTION{L"L_PARAM_NET_FOLLOWUPACTION", L"FollowupAction"};
inline constexpr ProviderName L_PARAM_ALLWARNINGS{L"L_PARAM_ALLWARNINGS", L"Warnings"};

// Physical adapters.
inline constexpr ProviderName L_CLASS_ZOREL_ETHERNETADAPTER{L"L_CLASS_ZOREL_ETHERNETADAPTER",
                                                            L"Zorel_PhysicalEthernetAdapter"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_NAME{L"L_PROP_ETHERNETADAPTER_NAME", L"Name"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_CAPTION{L"L_PROP_ETHERNETADAPTER_CAPTION", L"Caption"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_ORIGNAME{L"L_PROP_ETHERNETADAPTER_ORIGNAME",
                                                              L"OriginalDisplayName"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_DEVICEID{L"L_PROP_ETHERNETADAPTER_DEVICEID",
                                                              L"DeviceID"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_SLOTID{L"L_PROP_ETHERNETADAPTER_SLOTID", L"SlotID"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_SPEED{L"L_PROP_ETHERNETADAPTER_SPEED", L"Speed"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_LINKSECSTATUS{L"L_PROP_ETHERNETADAPTER_LINKSECSTATUS",
                                                                   L"LinkSecStatus"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_FULLDUPLEX{L"L_PROP_ETHERNETADAPTER_FULLDUPLEX",
                                                                L"FullDuplex"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_ADAPTERSTATUS{L"L_PROP_ETHERNETADAPTER_ADAPTERSTATUS",
                                                                   L"AdapterStatus"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_STATUSINFO{L"L_PROP_ETHERNETADAPTER_STATUSINFO",
                                                                L"StatusInfo"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_AVAILABILITY{L"L_PROP_ETHERNETADAPTER_AVAILABILITY",
                                                                  L"Availability"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_HARDWARESTATUS{L"L_PROP_ETHERNETADAPTER_HARDWARESTATUS",
                                                                    L"HardwareStatus"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_STATUS{L"L_PROP_ETHERNETADAPTER_STATUS", L"Status"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_CAPABILITIES{L"L_PROP_ETHERNETADAPTER_CAPABILITIES",
                                                                  L"Capabilities"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_CONTROLLERID{L"L_PROP_ETHERNETADAPTER_CONTROLLERID",
                                                                  L"ControllerID"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_MEDIATYPE{L"L_PROP_ETHERNETADAPTER_MEDIATYPE",
                                                               L"MediaType"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_BUSTYPE{L"L_PROP_ETHERNETADAPTER_BUSTYPE", L"BusType"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_NEGLINKWIDTH{L"L_PROP_ETHERNETADAPTER_NEGLINKWIDTH",
                                                                  L"NegotiatedLinkWidth"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_PORTNUMBER{L"L_PROP_ETHERNETADAPTER_PORTNUMBER",
                                                                L"PortNumber"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_PHYDEVICE{L"L_PROP_ETHERNETADAPTER_PHYDEVICE",
                                                               L"PHYDevice"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_PARTNUMBER{L"L_PROP_ETHERNETADAPTER_PARTNUMBER",
                                                                L"PartNumber"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_NETWORKADDRESSES{
    L"L_PROP_ETHERNETADAPTER_NETWORKADDRESSES", L"NetworkAddresses"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_PERMANENTADDRESS{
    L"L_PROP_ETHERNETADAPTER_PERMANENTADDRESS", L"PermanentAddress"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_EEPROMVERSION{L"L_PROP_ETHERNETADAPTER_EEPROMVERSION",
                                                                   L"EEPROMVersion"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_SANMACADDRESS{L"L_PROP_ETHERNETADAPTER_SANMACADDRESS",
                                                                   L"SanMacAddress"};
inline constexpr ProviderName L_PROP_ETHERNETADAPTER_PCIDEVICEID{L"L_PROP_ETHERNETADAPTER_PCIDEVICEID",
                                                                 L"PCIDeviceID"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_IDENTIFY{L"L_METHOD_ETHERNETADAPTER_IDENTIFY",
                                                                L"IdentifyAdapter"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_IDENTIFY_SECONDS{
    L"L_PARAM_ETHERNETADAPTER_IDENTIFY_SECONDS", L"nSeconds"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GET_HBA_PATH{L"L_METHOD_ETHERNETADAPTER_GET_HBA_PATH",
                                                                    L"GetHbaPath"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_HBA_PATH{L"L_PARAM_ETHERNETADAPTER_HBA_PATH",
                                                               L"HbaPath"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETNDISVERSION{
    L"L_METHOD_ETHERNETADAPTER_GETNDISVERSION", L"GetNDISVersion"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_NDIS_MAJOR{L"L_PARAM_ETHERNETADAPTER_NDIS_MAJOR",
                                                                 L"dwMajorVersion"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_NDIS_MINOR{L"L_PARAM_ETHERNETADAPTER_NDIS_MINOR",
                                                                 L"dwMinorVersion"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS{
    L"L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS", L"GetAdapterWarnings"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_WARNINGS{L"L_PARAM_ETHERNETADAPTER_WARNINGS",
                                                               L"dwAdapterWarnings"};

// Link security of a physical adapter.
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETLINKSECMANLCFGKEYS{
    L"L_METHOD_ETHERNETADAPTER_GETLINKSECMANLCFGKEYS", L"GetLinksecManualCfgKeys"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_SETLINKSECMANLCFGKEYS{
    L"L_METHOD_ETHERNETADAPTER_SETLINKSECMANLCFGKEYS", L"SetLinksecManualCfgKeys"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SAKEY{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SAKEY", L"strTXSAKey"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM1{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM1", L"nTXAssocNum1"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM2{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM2", L"nTXAssocNum2"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_INCLUDE_SCI{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_INCLUDE_SCI", L"bIncludeSCIOnTX"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SCI{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SCI", L"strTXSCI"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SAKEY{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SAKEY", L"strRXSAKey"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM1{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM1", L"nRXAssocNum1"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM2{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM2", L"nRXAssocNum2"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SCI{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SCI", L"strRXSCI"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_USE_EMCRYPTION{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_USE_EMCRYPTION", L"bUseEncryption"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_DRIVERRELOAD{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_DRIVERRELOAD", L"bDriverReload"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETLINKSECPARAMS{
    L"L_METHOD_ETHERNETADAPTER_GETLINKSECPARAMS", L"GetLinksecParams"};
// The methods alone are read with the same provider method, but its steps are traced under a symbol of their
// own.
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETLINKSECEAPTYPE{
    L"L_METHOD_ETHERNETADAPTER_GETLINKSECEAPTYPE", L"GetLinksecParams"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_SETLINKSECPARAMS{
    L"L_METHOD_ETHERNETADAPTER_SETLINKSECPARAMS", L"SetLinksecParams"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_OUTEREAPTYPE{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_OUTEREAPTYPE", L"OuterEAPType"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_INNEREAPTYPE{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_INNEREAPTYPE", L"InnerEAPType"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_USERNAME{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_USERNAME", L"LinksecCredUsername"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PASSWORD{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PASSWORD", L"LinksecCredPassword"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINEDOMAINNAME{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINEDOMAINNAME", L"MachineNameDomainName"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_TYPEOFCREDSCHANGED{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_TYPEOFCREDSCHANGED", L"TypeOfCredsChanged"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINECRED{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINECRED", L"bMachineCred"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_WINDOWSCREDS{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_WINDOWSCREDS", L"WindowsCreds"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_AUTOPAC{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_AUTOPAC", L"bAutoPAC"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACPATH{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACPATH", L"PACPath"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_CREDCHANGED{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_CREDCHANGED", L"bCredChanged"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_KEYSECTYPE{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_KEYSECTYPE", L"KeySecType"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_RANDMACADDRESS{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_RANDMACADDRESS", L"bRandMACAddress"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_IMPORTMANUALPAC{
    L"L_METHOD_ETHERNETADAPTER_IMPORTMANUALPAC", L"ImportManualPAC"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEPASSWORD{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEPASSWORD", L"PACFilePassword"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACINFOCHANGED{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACINFOCHANGED", L"bPACInfoChanged"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_RELOAD{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_RELOAD", L"bReload"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_DELETEPACFILE{
    L"L_METHOD_ETHERNETADAPTER_DELETEPACFILE", L"DeletePacFile"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEDELETE{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEDELETE", L"strPACFileDelete"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETPACFILECONTENTS{
    L"L_METHOD_ETHERNETADAPTER_GETPACFILECONTENTS", L"GetPACFileContents"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILE{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILE", L"strPACFile"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILETYPE{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILETYPE", L"PACFileType"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEINFO{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEINFO", L"strPACFileInfo"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEAID{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEAID", L"strPACFileAid"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEAIDINFO{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEAIDINFO", L"strPACFileAidInfo"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEIID{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEIID", L"strPACFileIid"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEEXPIRYTIME{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEEXPIRYTIME", L"PACFileExpiryTime"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_SETLINKSECMANUALPMK{
    L"L_METHOD_ETHERNETADAPTER_SETLINKSECMANUALPMK", L"SetLinksecManualPMKeys"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETLINKSECMANUALPMK{
    L"L_METHOD_ETHERNETADAPTER_GETLINKSECMANUALPMK", L"GetLinksecManualPMKeys"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_MANUALPMKEY{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_MANUALPMKEY", L"strManualPMKey"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETLINKSECSAVEDCREDS{
    L"L_METHOD_ETHERNETADAPTER_GETLINKSECSAVEDCREDS", L"GetLinksecSavedCreds"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_USERNAME{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_USERNAME", L"strUsername"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_PASSWORD{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_PASSWORD", L"strPassword"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_MACHINEDOMAINNAME{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_MACHINEDOMAINNAME", L"strMachineDomainName"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETLINKSECSECSTATSLOG{
    L"L_METHOD_ETHERNETADAPTER_GETLINKSECSECSTATSLOG", L"GetLinksecSecurityStatsLog"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_LINKSEC_SECSTATS{
    L"L_PARAM_ETHERNETADAPTER_LINKSEC_SECSTATS", L"strSecStats"};

// Membership in a team.
inline constexpr ProviderName L_CLASS_ZOREL_TEAMEDMEMBERADAPTER{L"L_CLASS_ZOREL_TEAMEDMEMBERADAPTER",
                                                                L"Zorel_TeamedMemberAdapter"};
inline constexpr ProviderName L_PROP_TEAMEDMEMBERADAPTER_GROUPCOMPONENT{
    L"L_PROP_TEAMEDMEMBERADAPTER_GROUPCOMPONENT", L"GroupComponent"};
inline constexpr ProviderName L_PROP_TEAMEDMEMBERADAPTER_PARTCOMPONENT{
    L"L_PROP_TEAMEDMEMBERADAPTER_PARTCOMPONENT", L"PartComponent"};
inline constexpr ProviderName L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION{
    L"L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION", L"AdapterFunction"};
inline constexpr ProviderName L_PROP_TEAMEDMEMBERADAPTER_ADAPTERSTATUS{
    L"L_PROP_TEAMEDMEMBERADAPTER_ADAPTERSTATUS", L"AdapterStatus"};

// Teams.
inline constexpr ProviderName L_CLASS_ZOREL_TEAMOFADAPTERS{L"L_CLASS_ZOREL_TEAMOFADAPTERS",
                                                           L"Zorel_TeamOfAdapters"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_NAME{L"L_PROP_TEAMOFADAPTERS_NAME", L"Name"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_CAPTION{L"L_PROP_TEAMOFADAPTERS_CAPTION", L"Caption"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_TEAMINGMODE{L"L_PROP_TEAMOFADAPTERS_TEAMINGMODE",
                                                                L"TeamingMode"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_MFOENABLED{L"L_PROP_TEAMOFADAPTERS_MFOENABLED",
                                                               L"MFOEnabled"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_LINKSECENABLED{L"L_PROP_TEAMOFADAPTERS_LINKSECENABLED",
                                                                   L"LinksecEnabled"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_TEAMMACADDRESS{L"L_PROP_TEAMOFADAPTERS_TEAMMACADDRESS",
                                                                   L"TeamMacAddress"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_BOUNDTOHYPERV{L"L_PROP_TEAMOFADAPTERS_BOUNDTOHYPERV",
                                                                  L"BoundToHyperV"};
inline constexpr ProviderName L_PROP_TEAMOFADAPTERS_TEAMPREFIX{L"L_PROP_TEAMOFADAPTERS_TEAMPREFIX",
                                                               L"TeamPrefix"};
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_CREATETEAM{L"L_METHOD_TEAMOFADAPTERS_CREATETEAM",
                                                                 L"CreateTeam"};
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_VALIDATETEAMNAME{
    L"L_METHOD_TEAMOFADAPTERS_VALIDATETEAMNAME", L"ValidateTeamName"};
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_VALIDATETEAMMODE{
    L"L_METHOD_TEAMOFADAPTERS_VALIDATETEAMMODE", L"ValidateTeamMode"};
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_VALIDATENEWTEAMMEMBERS{
    L"L_METHOD_TEAMOFADAPTERS_VALIDATENEWTEAMMEMBERS", L"ValidateNewTeamMembers"};
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_VALIDATEADDADAPTERS{
    L"L_METHOD_TEAMOFADAPTERS_VALIDATEADDADAPTERS", L"ValidateAddAdapters"};
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_GETBESTTEAMMODE{
    L"L_METHOD_TEAMOFADAPTERS_GETBESTTEAMMODE", L"GetBestTeamMode"};
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_TESTSWITCHCONFIGURATION{
    L"L_METHOD_TEAMOFADAPTERS_TESTSWITCHCONFIGURATION", L"TestSwitchConfiguration"};
inline constexpr ProviderName L_PARAM_TEAM_ADAPTERS{L"L_PARAM_TEAM_ADAPTERS", L"Adapters"};
inline constexpr ProviderName L_PARAM_TEAM_NEWADAPTERS{L"L_PARAM_TEAM_NEWADAPTERS", L"NewAdapters"};
inline constexpr ProviderName L_PARAM_TEAM_TEAMINGMODE{L"L_PARAM_TEAM_TEAMINGMODE", L"TeamingMode"};
inline constexpr ProviderName L_PARAM_TEAM_NEWTEAMMODE{L"L_PARAM_TEAM_NEWTEAMMODE", L"NewTeamMode"};
inline constexpr ProviderName L_PARAM_TEAM_TEAMNAME{L"L_PARAM_TEAM_TEAMNAME", L"TeamName"};
inline constexpr ProviderName L_PARAM_TEAM_CAPTION{L"L_PARAM_TEAM_CAPTION", L"Caption"};
inline constexpr ProviderName L_PARAM_TEAM_MFOENABLE{L"L_PARAM_TEAM_MFOENABLE", L"MFOEnable"};
inline constexpr ProviderName L_PARAM_TEAM_LINKSECENABLED{L"L_PARAM_TEAM_LINKSECENABLED", L"LinksecEnabled"};
inline constexpr ProviderName L_PARAM_TEAM_TEAMPROFILE{L"L_PARAM_TEAM_TEAMPROFILE", L"TeamProfile"};
inline constexpr ProviderName L_PARAM_TEAM_TEAMPATH{L"L_PARAM_TEAM_TEAMPATH", L"TeamPath"};
inline constexpr ProviderName L_PARAM_TEAM_VALRESULT{L"L_PARAM_TEAM_VALRESULT", L"ValResult"};
inline constexpr ProviderName L_PARAM_TEAM_VALRESULTNEWTEAM{L"L_PARAM_TEAM_VALRESULTNEWTEAM",
                                                            L"ValResultNewTeam"};
inline constexpr ProviderName L_PARAM_TEAM_STATUS{L"L_PARAM_TEAM_STATUS", L"Status"};
inline constexpr ProviderName L_PARAM_TEAM_PERCENTOFCOVERAGE{L"L_PARAM_TEAM_PERCENTOFCOVERAGE",
                                                             L"PercentOfCoverage"};
inline constexpr ProviderName L_PARAM_TEAM_ERRORMESSAGEID{L"L_PARAM_TEAM_ERRORMESSAGEID", L"ErrorMessageId"};
inline constexpr ProviderName L_PARAM_TEAM_CMD{L"L_PARAM_TEAM_CMD", L"Cmd"};
inline constexpr ProviderName L_PARAM_TEAM_CAUSE{L"L_PARAM_TEAM_CAUSE", L"strCause"};
inline constexpr ProviderName L_PARAM_TEAM_SOLUTION{L"L_PARAM_TEAM_SOLUTION", L"strSolution"};
inline constexpr ProviderName L_PARAM_TEAM_CAUSEMESSAGEID{L"L_PARAM_TEAM_CAUSEMESSAGEID", L"CauseMessageId"};
inline constexpr ProviderName L_PARAM_TEAM_SOLUTIONMESSAGEID{L"L_PARAM_TEAM_SOLUTIONMESSAGEID",
                                                             L"SolutionMessageId"};

// The method of adapters that takes part in making a team; its name has a singular where the operation has a
// plural.
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_VALIDATESETTINGONNEWTEAM{
    L"L_METHOD_ETHERNETADAPTER_VALIDATESETTINGONNEWTEAM", L"ValidateSettingOnNewTeam"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_SETTINGNAME{L"L_PARAM_ETHERNETADAPTER_SETTINGNAME",
                                                                  L"SettingName"};

// The virtual adapter of a team.
inline constexpr ProviderName L_PROP_LOGICALETHERNETADAPTER_STATUSINFO{
    L"L_PROP_LOGICALETHERNETADAPTER_STATUSINFO", L"StatusInfo"};
inline constexpr ProviderName L_CLASS_ZOREL_NETWORKVIRTUALADAPTER{L"L_CLASS_ZOREL_NETWORKVIRTUALADAPTER",
                                                                  L"Zorel_NetworkVirtualAdapter"};
inline constexpr ProviderName L_PROP_NETWORKVIRTUALADAPTER_SAMEELEMENT{
    L"L_PROP_NETWORKVIRTUALADAPTER_SAMEELEMENT", L"SameElement"};

// VLANs and the services that make them. Their properties are called parameters, as they are when a VLAN is
// made.
inline constexpr ProviderName L_CLASS_ZOREL_VLAN{L"L_CLASS_ZOREL_VLAN", L"Zorel_VLAN"};
inline constexpr ProviderName L_CLASS_ZOREL_VLANSERVICE{L"L_CLASS_ZOREL_VLANSERVICE",
                                                        L"Zorel_802dot1QVLANService"};
inline constexpr ProviderName L_PARAM_VLAN_CAPTION{L"L_PARAM_VLAN_CAPTION", L"Caption"};
inline constexpr ProviderName L_PARAM_VLAN_NAME{L"L_PARAM_VLAN_NAME", L"Name"};
inline constexpr ProviderName L_PARAM_VLAN_PARENTID{L"L_PARAM_VLAN_PARENTID", L"ParentID"};
inline constexpr ProviderName L_PARAM_VLAN_VLANNAME{L"L_PARAM_VLAN_VLANNAME", L"VLANName"};
inline constexpr ProviderName L_PARAM_VLAN_NUMBER{L"L_PARAM_VLAN_NUMBER", L"VLANNumber"};
inline constexpr ProviderName L_PARAM_VLAN_STATUS{L"L_PARAM_VLAN_STATUS", L"StatusInfo"};
inline constexpr ProviderName L_METHOD_VLAN_CREATE{L"L_METHOD_VLAN_CREATE", L"CreateVLAN"};
inline constexpr ProviderName L_PARAM_VLAN_PATH{L"L_PARAM_VLAN_PATH", L"VLANPath"};

// Advanced settings, by owner.
inline constexpr ProviderName L_CLASS_ZOREL_ADAPTER_SETTING{L"L_CLASS_ZOREL_ADAPTER_SETTING",
                                                            L"Zorel_AdapterSetting"};
inline constexpr ProviderName L_CLASS_ZOREL_ADAPTER_SETTING_ENUM{L"L_CLASS_ZOREL_ADAPTER_SETTING_ENUM",
                                                                 L"Zorel_AdapterSettingEnum"};
inline constexpr ProviderName L_CLASS_ZOREL_TEAM_SETTING{L"L_CLASS_ZOREL_TEAM_SETTING", L"Zorel_TeamSetting"};
inline constexpr ProviderName L_CLASS_ZOREL_VLAN_SETTING{L"L_CLASS_ZOREL_VLAN_SETTING", L"Zorel_VLANSetting"};
inline constexpr ProviderName L_CLASS_ZOREL_BOOTAGENT_SETTING{L"L_CLASS_ZOREL_BOOTAGENT_SETTING",
                                                              L"Zorel_BootAgentSetting"};
inline constexpr ProviderName L_ZOREL_CLASS{L"L_ZOREL_CLASS", L"__CLASS"};
inline constexpr ProviderName L_PROP_SETTING_CAPTION{L"L_PROP_SETTING_CAPTION", L"Caption"};
inline constexpr ProviderName L_PROP_SETTING_DESCRIPTION{L"L_PROP_SETTING_DESCRIPTION", L"Description"};
inline constexpr ProviderName L_PROP_SETTING_MINIHELP{L"L_PROP_SETTING_MINIHELP", L"MiniHelp"};
inline constexpr ProviderName L_PROP_SETTING_EXPOSE_LEVEL{L"L_PROP_SETTING_EXPOSE_LEVEL", L"ExposeLevel"};
inline constexpr ProviderName L_PROP_SETTING_WRITABLE{L"L_PROP_SETTING_WRITABLE", L"Writable"};
inline constexpr ProviderName L_PROP_SETTING_GROUPED{L"L_PROP_SETTING_GROUPED", L"Grouped"};
inline constexpr ProviderName L_PROP_SETTING_GROUP_ID{L"L_PROP_SETTING_GROUP_ID", L"GroupId"};
inline constexpr ProviderName L_PROP_SETTING_PARENT_ID{L"L_PROP_SETTING_PARENT_ID", L"ParentId"};
inline constexpr ProviderName L_PROP_SETTING_CURRENT_VALUE{L"L_PROP_SETTING_CURRENT_VALUE", L"CurrentValue"};
inline constexpr ProviderName L_PROP_SETTING_CURRENT_VALUES{L"L_PROP_SETTING_CURRENT_VALUES",
                                                            L"CurrentValues"};
inline constexpr ProviderName L_PROP_SETTING_DEFAULT_VALUE{L"L_PROP_SETTING_DEFAULT_VALUE", L"DefaultValue"};
inline constexpr ProviderName L_PROP_SETTING_MAX{L"L_PROP_SETTING_MAX", L"Max"};
inline constexpr ProviderName L_PROP_SETTING_MIN{L"L_PROP_SETTING_MIN", L"Min"};
inline constexpr ProviderName L_PROP_SETTING_STEP{L"L_PROP_SETTING_STEP", L"Step"};
inline constexpr ProviderName L_PROP_SETTING_BASE{L"L_PROP_SETTING_BASE", L"Base"};
inline constexpr ProviderName L_PROP_SETTING_SCALE{L"L_PROP_SETTING_SCALE", L"Scale"};
inline constexpr ProviderName L_PROP_SETTING_MAX_LENGTH{L"L_PROP_SETTING_MAX_LENGTH", L"MaxLength"};
inline constexpr ProviderName L_PROP_SETTING_DESCRIPTION_MAP{L"L_PROP_SETTING_DESCRIPTION_MAP",
                                                             L"DescriptionMap"};
inline constexpr ProviderName L_PROP_SETTING_POSSIBLE_VALUES{L"L_PROP_SETTING_POSSIBLE_VALUES",
                                                             L"PossibleValues"};
inline constexpr ProviderName L_PROP_SETTING_FIRST_LABEL{L"L_PROP_SETTING_FIRST_LABEL", L"FirstLabel"};
inline constexpr ProviderName L_PROP_SETTING_LAST_LABEL{L"L_PROP_SETTING_LAST_LABEL", L"LastLabel"};

// Checks of settings by the team or VLAN.
inline constexpr ProviderName L_METHOD_TEAMOFADAPTERS_VALIDATESETTING{
    L"L_METHOD_TEAMOFADAPTERS_VALIDATESETTING", L"ValidateSetting"};
inline constexpr ProviderName L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_ADAPTERID{
    L"L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_ADAPTERID", L"Adapter"};
inline constexpr ProviderName L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGNAME{
    L"L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGNAME", L"SettingName"};
inline constexpr ProviderName L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGVALUE{
    L"L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGVALUE", L"Value"};
inline constexpr ProviderName L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_RESULT{
    L"L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_RESULT", L"ValResult"};
inline constexpr ProviderName L_METHOD_VLAN_VALIDATESETTING{L"L_METHOD_VLAN_VALIDATESETTING",
                                                            L"ValidateSetting"};
inline constexpr ProviderName L_PARAM_VLAN_VALIDATESETTING_SETTINGNAME{
    L"L_PARAM_VLAN_VALIDATESETTING_SETTINGNAME", L"SettingName"};
inline constexpr ProviderName L_PARAM_VLAN_VALIDATESETTING_SETTINGVALUE{
    L"L_PARAM_VLAN_VALIDATESETTING_SETTINGVALUE", L"Value"};
inline constexpr ProviderName L_PARAM_VLAN_VALIDATESETTING_RESULT{L"L_PARAM_VLAN_VALIDATESETTING_RESULT",
                                                                  L"ValResult"};

// Power-saving and wake-on-LAN options. The symbol of the bus option is misspelt, and known so.
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETPWRUSAGE{L"L_METHOD_ETHERNETADAPTER_GETPWRUSAGE",
                                                                   L"GetPowerUsageOptions"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_SETPWRUSAGE{L"L_METHOD_ETHERNETADAPTER_SETPWRUSAGE",
                                                                   L"SetPowerUsageOptions"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_PWR_SAVEPWRENB{
    L"L_PARAM_ETHERNETADAPTER_PWR_SAVEPWRENB", L"SavePowerNowEnabled"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_PWR_AUTOPWRSAVEENB{
    L"L_PARAM_ETHERNETADAPTER_PWR_AUTOPWRSAVEENB", L"AutoPowerSaveModeEnabled"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_PWR_REDUCESPEED{
    L"L_PARAM_ETHERNETADAPTER_PWR_REDUCESPEED", L"ReduceSpeedOnPowerDown"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_PWR_SMARTPWRDOWN{
    L"L_PARAM_ETHERNETADAPTER_PWR_SMARTPWRDOWN", L"SmartPowerDown"};
inline constexpr ProviderName L_PARAM_ETHERMETADAPTER_PWR_ASPMPWRSVR{
    L"L_PARAM_ETHERMETADAPTER_PWR_ASPMPWRSVR", L"EnhancedASPMPowerSaver"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_PWR_ACBSMODE{L"L_PARAM_ETHERNETADAPTER_PWR_ACBSMODE",
                                                                   L"ACBSMode"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_PWR_LNKSPDBATSVR{
    L"L_PARAM_ETHERNETADAPTER_PWR_LNKSPDBATSVR", L"LinkSpeedBatterySaver"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_PWR_SYSIDLEPWRSVR{
    L"L_PARAM_ETHERNETADAPTER_PWR_SYSIDLEPWRSVR", L"SystemIdlePowerSaver"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_GETWAKEONLANUSAGE{
    L"L_METHOD_ETHERNETADAPTER_GETWAKEONLANUSAGE", L"GetWakeOnLanPowerOptions"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_SETWAKEONLANUSAGE{
    L"L_METHOD_ETHERNETADAPTER_SETWAKEONLANUSAGE", L"SetWakeOnLanPowerOptions"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_WOL_FROMPWROFF{
    L"L_PARAM_ETHERNETADAPTER_WOL_FROMPWROFF", L"WakeFromPowerOff"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_WOL_LINK{L"L_PARAM_ETHERNETADAPTER_WOL_LINK",
                                                               L"WakeOnLink"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_WOL_MAGICPKT{L"L_PARAM_ETHERNETADAPTER_WOL_MAGICPKT",
                                                                   L"WakeOnMagicPacket"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_WOL_DIRECTEDPKT{
    L"L_PARAM_ETHERNETADAPTER_WOL_DIRECTEDPKT", L"WakeOnDirectedPacket"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_WOL_PATTERN{L"L_PARAM_ETHERNETADAPTER_WOL_PATTERN",
                                                                  L"WakeOnPattern"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_SETPOWERMGMTCAP{
    L"L_METHOD_ETHERNETADAPTER_SETPOWERMGMTCAP", L"SetPowerMgmtCapabilities"};

// Diagnostic tests and their results.
inline constexpr ProviderName L_CLASS_ZOREL_DIAGTEST{L"L_CLASS_ZOREL_DIAGTEST", L"Zorel_DiagTest"};
inline constexpr ProviderName L_CLASS_ZOREL_DIAGRESULT{L"L_CLASS_ZOREL_DIAGRESULT", L"Zorel_DiagResult"};
inline constexpr ProviderName L_PROP_DIAG_NAME{L"L_PROP_DIAG_NAME", L"Name"};
inline constexpr ProviderName L_PROP_DIAG_ID{L"L_PROP_DIAG_ID", L"TestId"};
inline constexpr ProviderName L_PROP_DIAG_GROUPED{L"L_PROP_DIAG_GROUPED", L"Grouped"};
inline constexpr ProviderName L_PROP_DIAG_GROUP_ID{L"L_PROP_DIAG_GROUP_ID", L"GroupId"};
inline constexpr ProviderName L_METHOD_DIAG_RUNTEST{L"L_METHOD_DIAG_RUNTEST", L"RunTest"};
inline constexpr ProviderName L_METHOD_DIAG_DISCONTINUETEST{L"L_METHOD_DIAG_DISCONTINUETEST",
                                                            L"DiscontinueTest"};
inline constexpr ProviderName L_PARAM_DIAG_SYSTEMELEMENT{L"L_PARAM_DIAG_SYSTEMELEMENT", L"SystemElement"};
inline constexpr ProviderName L_PARAM_DIAG_RESULT{L"L_PARAM_DIAG_RESULT", L"Result"};
inline constexpr ProviderName L_PARAM_DIAG_TESTINGSTOPPED{L"L_PARAM_DIAG_TESTINGSTOPPED", L"TestingStopped"};
inline constexpr ProviderName L_PROP_DIAGRESULT_DIAGNOSTICNAME{L"L_PROP_DIAGRESULT_DIAGNOSTICNAME",
                                                               L"DiagnosticName"};
inline constexpr ProviderName L_PROP_DIAGRESULT_PACKAGENAME{L"L_PROP_DIAGRESULT_PACKAGENAME", L"PackageName"};
inline constexpr ProviderName L_PROP_DIAGRESULT_TITLE{L"L_PROP_DIAGRESULT_TITLE", L"Title"};
inline constexpr ProviderName L_PROP_DIAGRESULT_RESULT{L"L_PROP_DIAGRESULT_RESULT", L"Result"};
inline constexpr ProviderName L_PROP_DIAGRESULT_RESULTCODE{L"L_PROP_DIAGRESULT_RESULTCODE", L"ResultCode"};
inline constexpr ProviderName L_PROP_DIAGRESULT_DESCRIPTION{L"L_PROP_DIAGRESULT_DESCRIPTION", L"Description"};
inline constexpr ProviderName L_PROP_DIAGRESULT_ISPACKAGE{L"L_PROP_DIAGRESULT_ISPACKAGE", L"IsPackage"};
inline constexpr ProviderName L_PROP_DIAGRESULT_TESTSTATE{L"L_PROP_DIAGRESULT_TESTSTATE", L"TestState"};
inline constexpr ProviderName L_PROP_DIAGRESULT_TESTRESULTIDS{L"L_PROP_DIAGRESULT_TESTRESULTIDS",
                                                              L"TestResultIds"};
inline constexpr ProviderName L_PROP_DIAGRESULT_TESTRESULTSATTR{L"L_PROP_DIAGRESULT_TESTRESULTSATTR",
                                                                L"TestResultsAttr"};

// Boot agents. The methods that came after "ProgramFlash" took its place in the code and kept its symbols in
// the lines about signatures and parameters; only a failed execution names the method itself.
inline constexpr ProviderName L_CLASS_ZOREL_BOOTAGENT{L"L_CLASS_ZOREL_BOOTAGENT", L"Zorel_BootAgent"};
inline constexpr ProviderName L_PROP_BOOTAGENT_VERSION{L"L_PROP_BOOTAGENT_VERSION", L"Version"};
inline constexpr ProviderName L_PROP_BOOTAGENT_VERSIONNUMBER{L"L_PROP_BOOTAGENT_VERSIONNUMBER",
                                                             L"VersionNumber"};
inline constexpr ProviderName L_PROP_BOOTAGENT_UPDATEAVAILABLE{L"L_PROP_BOOTAGENT_UPDATEAVAILABLE",
                                                               L"UpdateAvailable"};
inline constexpr ProviderName L_PROP_BOOTAGENT_FLASHIMAGETYPE{L"L_PROP_BOOTAGENT_FLASHIMAGETYPE",
                                                              L"FlashImageType"};
inline constexpr ProviderName L_PROP_BOOTAGENT_ISCSI_STATUS{L"L_PROP_BOOTAGENT_ISCSI_STATUS",
                                                            L"iSCSI_Status"};
inline constexpr ProviderName L_PROP_BOOTAGENT_INSTALLEDFLASHIMAGETYPES{
    L"L_PROP_BOOTAGENT_INSTALLEDFLASHIMAGETYPES", L"InstalledFlashImageTypes"};
inline constexpr ProviderName L_METHOD_BOOTAGENT_READFLASH{L"L_METHOD_BOOTAGENT_READFLASH", L"ReadFlash"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_READFLASH_FLASHDATA{L"L_PARAM_BOOTAGENT_READFLASH_FLASHDATA",
                                                                    L"FlashData"};
inline constexpr ProviderName L_METHOD_BOOTAGENT_PROGRAMFLASHEX{L"L_METHOD_BOOTAGENT_PROGRAMFLASH",
                                                                L"ProgramFlashEx"};
inline constexpr ProviderName L_METHOD_BOOTAGENT_READIMAGEFILE{L"L_METHOD_BOOTAGENT_PROGRAMFLASH",
                                                               L"ReadImageFile"};
inline constexpr ProviderName L_METHOD_BOOTAGENT_VERIFYIMAGETYPE{L"L_METHOD_BOOTAGENT_PROGRAMFLASH",
                                                                 L"VerifyImageType"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_PROGRAMFLASHEX_FLASHDATA{
    L"L_PARAM_BOOTAGENT_PROGRAMFLASH_FLASHDATA", L"NewFlashData"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_PROGRAMFLASHEX_IMAGETYPE{
    L"L_PARAM_BOOTAGENT_PROGRAMFLASH_ACTION", L"ImageType"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_IMAGEFILE_FLASHDATA{
    L"L_PARAM_BOOTAGENT_PROGRAMFLASH_FLASHDATA", L"FlashData"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_IMAGEFILE_IMAGETYPE{
    L"L_PARAM_BOOTAGENT_PROGRAMFLASH_FLASHDATA", L"ImageType"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_FLASHRETCODE{L"L_PARAM_BOOTAGENT_PROGRAMFLASH_RETURN",
                                                             L"FlashRetCode"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_IMAGETYPE{L"L_PARAM_BOOTAGENT_IMAGETYPE", L"ImageType"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_IMAGEVERSIONNUMBER{L"L_PARAM_BOOTAGENT_IMAGEVERSIONNUMBER",
                                                                   L"ImageVersionNumber"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_IMAGEGROUPNUMBER{L"L_PARAM_BOOTAGENT_IMAGEGROUPNUMBER",
                                                                 L"ImageGroupNumber"};
inline constexpr ProviderName L_PARAM_BOOTAGENT_IMAGEEXPOSELEVEL{L"L_PARAM_BOOTAGENT_IMAGEEXPOSELEVEL",
                                                                 L"ImageExposeLevel"};

// Boot from iSCSI.
inline constexpr ProviderName L_CLASS_ZOREL_ISCSI_ADAPTERS{L"L_CLASS_ZOREL_ISCSI_ADAPTERS",
                                                           L"Zorel_BootAgent_iSCSI_Adapters"};
inline constexpr ProviderName L_PROP_ISCSI_ADAPTERS_STATUS{L"L_PROP_ISCSI_ADAPTERS_STATUS", L"iSCSI_Status"};
inline constexpr ProviderName L_PROP_ISCSI_ADAPTERS_ADAPTERNAME{L"L_PROP_ISCSI_ADAPTERS_ADAPTERNAME",
                                                                L"AdapterName"};
inline constexpr ProviderName L_METHOD_BOOTAGENT_SET_ISCSI_STATUS{L"L_METHOD_BOOTAGENT_SET_ISCSI_STATUS",
                                                                  L"SetiSCSI_Status"};
inline constexpr ProviderName L_PARAM_SET_ISCSI_STATE{L"L_PARAM_SET_ISCSI_STATE", L"iSCSI_State"};
inline constexpr ProviderName L_PARAM_SET_ISCSI_PRIORITY_RETURN{L"L_PARAM_SET_ISCSI_PRIORITY_RETURN",
                                                                L"RetCode"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_ISISCSIENABLED{
    L"L_METHOD_ETHERNETADAPTER_ISISCSIENABLED", L"IsiSCSIEnabled"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_ISCSISTATUS{L"L_PARAM_ETHERNETADAPTER_ISCSISTATUS",
                                                                  L"iSCSIStatus"};
inline constexpr ProviderName L_METHOD_ETHERNETADAPTER_ISISCSISUPPORTED{
    L"L_METHOD_ETHERNETADAPTER_ISISCSISUPPORTED", L"IsiSCSISupported"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_ISISCSIOS{L"L_PARAM_ETHERNETADAPTER_ISISCSIOS",
                                                                L"bIsiSCSIOS"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_ISISCSIPATCH{L"L_PARAM_ETHERNETADAPTER_ISISCSIPATCH",
                                                                   L"bIsiSCSIPatch"};
inline constexpr ProviderName L_PARAM_ETHERNETADAPTER_ISISCSIHOTFIX{L"L_PARAM_ETHERNETADAPTER_ISISCSIHOTFIX",
                                                                    L"bIsiSCSIHotFix"};
