// Link security. The library's records overwrite their secrets; the layer's do so, too.
#include "Operations.h"

namespace quillet {

namespace {

/// Puts a secret into a text of the library's records. The text is empty, so no copy of it is left behind by
/// growing; the record overwrites it.
void Put(const Secret& secret, std::wstring& text) {
    text.assign(secret.Reveal());
}

bool Reloads(Reload reload) {
    return reload == Reload::Driver;
}

AuthenticationMethods MethodsOf(const CAdapterAuthTypeInfo& record) {
    return {record.m_eOuterEAP, record.m_InnerEAP, record.m_eKeySecType, record.m_bRandMACAddress};
}

} // namespace

ManualKeys Session::ReadManualKeys(const AdapterId& adapter) {
    CAdapterManualAuthInfo record;
    Do("GetAdapterLinksecManualAuthOptions", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterLinksecManualAuthOptions(adapter.Path(), record); });
    return {{Secret(record.m_sTXSAKey), record.m_nTXAssocNum1, record.m_nTXAssocNum2, record.m_sTXSCI},
            {Secret(record.m_sRXSAKey), record.m_nRXAssocNum1, record.m_nRXAssocNum2, record.m_sRXSCI},
            record.m_bIncludeSCIOnTX,
            record.m_bUseEncryption};
}

void Session::SetManualKeys(const AdapterId& adapter, const ManualKeys& keys, Reload reload) {
    CAdapterManualAuthInfo record;
    Put(keys.outgoing.key, record.m_sTXSAKey);
    record.m_nTXAssocNum1 = keys.outgoing.firstNumber;
    record.m_nTXAssocNum2 = keys.outgoing.secondNumber;
    record.m_sTXSCI = keys.outgoing.channelId;
    Put(keys.incoming.key, record.m_sRXSAKey);
    record.m_nRXAssocNum1 = keys.incoming.firstNumber;
    record.m_nRXAssocNum2 = keys.incoming.secondNumber;
    record.m_sRXSCI = keys.incoming.channelId;
    record.m_bIncludeSCIOnTX = keys.includeChannelId;
    record.m_bUseEncryption = keys.encryption;
    Do("SetAdapterLinksecManualAuthOptions", adapter.Path(), [&] {
        return m_state->quillet.SetAdapterLinksecManualAuthOptions(adapter.Path(), record, Reloads(reload));
    });
}

Authentication Session::ReadAuthentication(const AdapterId& adapter) {
    CAdapterAuthTypeInfo record;
    Do("GetAdapterLinksecStrictPreferredOptions", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterLinksecStrictPreferredOptions(adapter.Path(), record); });
    return {MethodsOf(record),           record.m_sUserName,           Secret(record.m_sPassword),
            record.m_sMachineDomainName, record.m_bUseAutoPAC,         record.m_sPACAuthority,
            record.m_bMachineCred,       record.m_nTypeOfCredsChanged, record.m_bUseWindowsCreds};
}

void Session::SetAuthentication(const AdapterId& adapter, const Authentication& authentication,
                                Reload reload) {
    CAdapterAuthTypeInfo record;
    record.m_eOuterEAP = static_cast<CAdapterAuthTypeInfo::OuterEAP>(authentication.methods.outer);
    record.m_InnerEAP = static_cast<CAdapterAuthTypeInfo::InnerEAP>(authentication.methods.inner);
    record.m_eKeySecType = static_cast<CAdapterAuthTypeInfo::KeySecType>(authentication.methods.keySecurity);
    record.m_bRandMACAddress = authentication.methods.randomMac;
    record.m_sUserName = authentication.userName;
    Put(authentication.password, record.m_sPassword);
    record.m_sMachineDomainName = authentication.machineDomainName;
    record.m_bUseAutoPAC = authentication.autoPac;
    record.m_sPACAuthority = authentication.pac;
    record.m_bMachineCred = authentication.machineCredentials;
    record.m_nTypeOfCredsChanged = authentication.changedCredentials;
    record.m_bUseWindowsCreds = authentication.windowsCredentials;
    Do("SetAdapterLinksecStrictPreferredOptions", adapter.Path(), [&] {
        return m_state->quillet.SetAdapterLinksecStrictPreferredOptions(adapter.Path(), record,
                                                                        Reloads(reload));
    });
}

AuthenticationMethods Session::ReadAuthenticationMethods(const AdapterId& adapter) {
    CAdapterEAPInfo record;
    Do("GetAdapterLinksecEapType", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterLinksecEapType(adapter.Path(), record); });
    return {record.m_eOuterEAP, record.m_InnerEAP, record.m_eKeySecType, record.m_bRandMACAddress};
}

void Session::ImportPac(const AdapterId& adapter, const PacFile& file, Reload reload) {
    CAdapterPACInfo record;
    record.m_sPACPath = file.path;
    Put(file.password, record.m_sPACFilePassword);
    record.m_bPACInfoChanged = file.changed;
    Do("AdapterImportManualPAC", adapter.Path(),
       [&] { return m_state->quillet.AdapterImportManualPAC(adapter.Path(), record, Reloads(reload)); });
}

void Session::DeletePac(const AdapterId& adapter, const std::wstring& name) {
    Do("DeletePacFile", adapter.Path(), [&] { return m_state->quillet.DeletePacFile(adapter.Path(), name); });
}

PacContents Session::ReadPac(const AdapterId& adapter, const std::wstring& name) {
    CAdapterPacFileInfo record;
    record.m_sPACFileName = name;
    const auto contents = [&record] {
        return PacContents{record.m_lPacType, record.m_sinfo, record.m_saId,
                           record.m_saIdInfo, record.m_sIId,  record.m_lExpiryTime};
    };
    DoInParts(
        "GetAdapterPacFileContents", adapter.Path(),
        [&] { return m_state->quillet.GetAdapterPacFileContents(adapter.Path(), record); }, contents);
    return contents();
}

MasterKey Session::ReadMasterKey(const AdapterId& adapter) {
    CAdapterManualPMKInfo record;
    MasterKey key;
    Do("GetAdapterManualPMKOptions", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterManualPMKOptions(adapter.Path(), record, key.randomMac); });
    key.key = Secret(record.m_sManualPMKKey);
    return key;
}

void Session::SetMasterKey(const AdapterId& adapter, const MasterKey& key, Reload reload) {
    CAdapterManualPMKInfo record;
    Put(key.key, record.m_sManualPMKKey);
    record.m_bRandMACAddress = key.randomMac;
    constexpr bool kReserved = false;
    Do("SetAdapterManualPMKOptions", adapter.Path(), [&] {
        return m_state->quillet.SetAdapterManualPMKOptions(adapter.Path(), record, Reloads(reload),
                                                           kReserved);
    });
}

SavedCredentials Session::ReadSavedCredentials(const AdapterId& adapter) {
    CAdapterLinksecSavedCredInfo record;
    Do("GetAdapterSavedCredOptions", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterSavedCredOptions(adapter.Path(), record); });
    return {record.m_sUserName, Secret(record.m_sPassword), record.m_bMachineCred,
            record.m_sMachineDomainName};
}

std::wstring Session::ReadSecurityLog(const AdapterId& adapter) {
    std::wstring log;
    Do("GetAdapterLinksecSecurityStats", adapter.Path(),
       [&] { return m_state->quillet.GetAdapterLinksecSecurityStats(adapter.Path(), log); });
    return log;
}

} // namespace quillet
