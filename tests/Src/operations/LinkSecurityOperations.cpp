// Link security. Every secret holds the word CANARY, and its own name: the test that looks for secrets where
// none may be runs these operations, too.
#include "Operations.h"

namespace {

constexpr const char* kLinkSecurityMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
    instance of Zorel_LinkSecConfiguration {
        DeviceID = "{A}"; OuterEAPType = 2; InnerEAPType = 1; bMachineCred = TRUE; LinksecCredUsername = "user";
        MachineNameDomainName = "host.domain"; LinksecCredPassword = "CANARY of the password that is kept CANARY";
        WindowsCreds = 1; bAutoPAC = TRUE; PACPath = "authority"; KeySecType = 3; bRandMACAddress = TRUE;
        strTXSAKey = "CANARY of the outgoing key that is kept CANARY"; nTXAssocNum1 = 1; nTXAssocNum2 = 2;
        bIncludeSCIOnTX = TRUE; strTXSCI = "tx"; strRXSAKey = "CANARY of the incoming key that is kept CANARY";
        nRXAssocNum1 = 3; nRXAssocNum2 = 4; strRXSCI = "rx"; bUseEncryption = TRUE;
        strManualPMKey = "CANARY of the master key that is kept CANARY"; strUsername = "saved user";
        strPassword = "CANARY of the saved password CANARY"; strMachineDomainName = "saved.domain";
        strSecStats = "InPktsOK 7"; };
    instance of Zorel_PACFile {
        DeviceID = "{A}"; FileName = "old.pac"; PACFilePassword = "CANARY of the old file CANARY"; PACFileType = 1;
        strPACFileInfo = "info"; strPACFileAid = "aid"; strPACFileAidInfo = "aid info"; strPACFileIid = "iid";
        PACFileExpiryTime = 9; };
    instance of Zorel_PACFile {
        DeviceID = ""; FileName = "new.pac"; PACFilePassword = "CANARY of the new file CANARY"; PACFileType = 2; };)";

constexpr const wchar_t* kLinkSecurityAdapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";

CAdapterAuthTypeInfo Authentication(LONG outer) {
    CAdapterAuthTypeInfo info;
    info.m_eOuterEAP = CAdapterAuthTypeInfo::OuterEAP(outer);
    info.m_InnerEAP = CAdapterAuthTypeInfo::InnerEAP(2);
    info.m_sUserName = L"new user";
    info.m_sPassword = L"CANARY of the password to set CANARY";
    info.m_sPACAuthority = L"new authority";
    info.m_nTypeOfCredsChanged = 1;
    info.m_bUseWindowsCreds = 1;
    info.m_eKeySecType = CAdapterAuthTypeInfo::KeySecType(5);
    return info;
}

/// The outputs tell how long a secret is, and no more.
OperationCase SetAuthentication(const char* name, LONG outer) {
    return {name, [outer](CQuillet& q, Outputs&) {
                return q.SetAdapterLinksecStrictPreferredOptions(kLinkSecurityAdapter, Authentication(outer),
                                                                 true);
            }};
}

} // namespace

OperationArea LinkSecurityOperations() {
    return {
        kLinkSecurityMachine,
        true,
        {
            {"GetAdapterLinksecManualAuthOptions",
             [](CQuillet& q, Outputs& out) {
                 CAdapterManualAuthInfo info;
                 const HRESULT result = q.GetAdapterLinksecManualAuthOptions(kLinkSecurityAdapter, info);
                 out("txKey", info.m_sTXSAKey.size())("tx1", info.m_nTXAssocNum1)("tx2", info.m_nTXAssocNum2)(
                     "sci", info.m_bIncludeSCIOnTX)("txSci", info.m_sTXSCI)("rxKey", info.m_sRXSAKey.size())(
                     "rx1", info.m_nRXAssocNum1)("rx2", info.m_nRXAssocNum2)("rxSci", info.m_sRXSCI)(
                     "encryption", info.m_bUseEncryption);
                 return result;
             }},
            {"SetAdapterLinksecManualAuthOptions",
             [](CQuillet& q, Outputs&) {
                 CAdapterManualAuthInfo info;
                 info.m_sTXSAKey = L"CANARY of the outgoing key to set CANARY";
                 info.m_sRXSAKey = L"CANARY of the incoming key to set CANARY";
                 return q.SetAdapterLinksecManualAuthOptions(kLinkSecurityAdapter, info, true);
             }},
            {"GetAdapterLinksecStrictPreferredOptions",
             [](CQuillet& q, Outputs& out) {
                 CAdapterAuthTypeInfo info;
                 const HRESULT result = q.GetAdapterLinksecStrictPreferredOptions(kLinkSecurityAdapter, info);
                 out("outer", info.m_eOuterEAP)("inner", info.m_InnerEAP)("machine", info.m_bMachineCred)(
                     "user", info.m_sUserName)("domain", info.m_sMachineDomainName)(
                     "password", info.m_sPassword.size())("windows", info.m_bUseWindowsCreds)(
                     "autoPac", info.m_bUseAutoPAC)("pac", info.m_sPACAuthority)("keys", info.m_eKeySecType)(
                     "randomMac", info.m_bRandMACAddress);
                 return result;
             }},
            SetAuthentication("SetAdapterLinksecStrictPreferredOptions", 4),
            SetAuthentication("SetAdapterLinksecStrictPreferredOptions_Outer1", 1),
            {"GetAdapterLinksecEapType",
             [](CQuillet& q, Outputs& out) {
                 CAdapterEAPInfo info;
                 const HRESULT result = q.GetAdapterLinksecEapType(kLinkSecurityAdapter, info);
                 out("outer", info.m_eOuterEAP)("inner", info.m_InnerEAP)("keys", info.m_eKeySecType)(
                     "randomMac", info.m_bRandMACAddress);
                 return result;
             }},
            {"AdapterImportManualPAC",
             [](CQuillet& q, Outputs&) {
                 CAdapterPACInfo info;
                 info.m_sPACPath = LR"(C:\pac\new.pac)";
                 info.m_sPACFilePassword = L"CANARY of the new file CANARY";
                 info.m_bPACInfoChanged = true;
                 return q.AdapterImportManualPAC(kLinkSecurityAdapter, info, true);
             }},
            {"DeletePacFile",
             [](CQuillet& q, Outputs&) { return q.DeletePacFile(kLinkSecurityAdapter, L"old.pac"); }},
            {"GetAdapterPacFileContents",
             [](CQuillet& q, Outputs& out) {
                 CAdapterPacFileInfo info;
                 info.m_sPACFileName = L"old.pac";
                 const HRESULT result = q.GetAdapterPacFileContents(kLinkSecurityAdapter, info);
                 out("type", info.m_lPacType)("info", info.m_sinfo)("aid", info.m_saId)(
                     "aidInfo", info.m_saIdInfo)("iid", info.m_sIId)("expiry", info.m_lExpiryTime);
                 return result;
             }},
            {"SetAdapterManualPMKOptions",
             [](CQuillet& q, Outputs&) {
                 CAdapterManualPMKInfo info;
                 info.m_sManualPMKKey = L"CANARY of the master key to set CANARY";
                 info.m_bRandMACAddress = true;
                 return q.SetAdapterManualPMKOptions(kLinkSecurityAdapter, info, false, true);
             }},
            {"GetAdapterManualPMKOptions",
             [](CQuillet& q, Outputs& out) {
                 CAdapterManualPMKInfo info;
                 bool randomMac = false;
                 const HRESULT result = q.GetAdapterManualPMKOptions(kLinkSecurityAdapter, info, randomMac);
                 out("key", info.m_sManualPMKKey.size())("randomMac", randomMac);
                 return result;
             }},
            {"GetAdapterSavedCredOptions",
             [](CQuillet& q, Outputs& out) {
                 CAdapterLinksecSavedCredInfo info;
                 const HRESULT result = q.GetAdapterSavedCredOptions(kLinkSecurityAdapter, info);
                 out("machine", info.m_bMachineCred)("user", info.m_sUserName)(
                     "password", info.m_sPassword.size())("domain", info.m_sMachineDomainName);
                 return result;
             }},
            {"GetAdapterLinksecSecurityStats",
             [](CQuillet& q, Outputs& out) {
                 std::wstring log;
                 const HRESULT result = q.GetAdapterLinksecSecurityStats(kLinkSecurityAdapter, log);
                 out("log", log);
                 return result;
             }},
        },
    };
}
