// What the records of link security hold.
#include "commands/linksec/LinksecFields.h"

#include "texts/Text.h"

namespace quilletctl {

namespace {

/// All that is ever told of a secret: whether there is one.
Field Masked(const char* key, const char* label, const std::wstring& secret) {
    return {key, label, secret.empty() ? Json() : Json("***"), true};
}

} // namespace

CAdapterManualAuthInfo ReadKeys(CQuillet& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &CQuillet::GetAdapterLinksecManualAuthOptions, adapter, "the keys");
}

CAdapterAuthTypeInfo ReadAuthentication(CQuillet& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &CQuillet::GetAdapterLinksecStrictPreferredOptions, adapter,
                      "the authentication");
}

CAdapterLinksecSavedCredInfo ReadSaved(CQuillet& session, const ListedAdapter& adapter) {
    return ReadRecord(session, &CQuillet::GetAdapterSavedCredOptions, adapter, "the saved credentials");
}

CAdapterManualPMKInfo ReadMasterKey(CQuillet& session, const ListedAdapter& adapter) {
    CAdapterManualPMKInfo info;
    bool randomMac = false;
    ThrowIfRefused(session.GetAdapterManualPMKOptions(ToWide(adapter.path), info, randomMac),
                   "read the pairwise master key of " + adapter.Called());
    info.m_bRandMACAddress = randomMac;
    return info;
}

std::vector<Field> FieldsOf(const CAdapterManualAuthInfo& keys) {
    return {Masked("outgoing.key", "Outgoing key", keys.m_sTXSAKey),
            {"outgoing.associationNumbers",
             "Outgoing association numbers",
             {keys.m_nTXAssocNum1, keys.m_nTXAssocNum2}},
            {"outgoing.channelIdentifier", "Outgoing channel identifier", ToUtf8(keys.m_sTXSCI)},
            {"outgoing.identifierInFrames", "Identifier in outgoing frames", keys.m_bIncludeSCIOnTX},
            Masked("incoming.key", "Incoming key", keys.m_sRXSAKey),
            {"incoming.associationNumbers",
             "Incoming association numbers",
             {keys.m_nRXAssocNum1, keys.m_nRXAssocNum2}},
            {"incoming.channelIdentifier", "Incoming channel identifier", ToUtf8(keys.m_sRXSCI)},
            {"encryption", "Encryption", keys.m_bUseEncryption}};
}

std::vector<Field> FieldsOf(const CAdapterAuthTypeInfo& authentication) {
    return {{"outerEap", "Outer EAP method", static_cast<LONG>(authentication.m_eOuterEAP)},
            {"innerEap", "Inner EAP method", static_cast<LONG>(authentication.m_InnerEAP)},
            {"userName", "User name", ToUtf8(authentication.m_sUserName)},
            Masked("password", "Password", authentication.m_sPassword),
            {"machineDomainName", "Machine and domain", ToUtf8(authentication.m_sMachineDomainName)},
            {"machineCredentials", "Machine's credentials", authentication.m_bMachineCred},
            {"windowsCredentials", "Windows credentials", authentication.m_bUseWindowsCreds},
            {"autoPac", "Automatic PAC", authentication.m_bUseAutoPAC},
            {"pacAuthority", "PAC authority", ToUtf8(authentication.m_sPACAuthority)},
            {"keyType", "Kind of keys", static_cast<LONG>(authentication.m_eKeySecType)},
            {"randomMac", "Random MAC address", authentication.m_bRandMACAddress}};
}

std::vector<Field> FieldsOf(const CAdapterLinksecSavedCredInfo& saved) {
    return {{"userName", "Saved user name", ToUtf8(saved.m_sUserName)},
            Masked("password", "Saved password", saved.m_sPassword),
            {"machineDomainName", "Saved machine and domain", ToUtf8(saved.m_sMachineDomainName)},
            {"machineCredentials", "Saved machine's credentials", saved.m_bMachineCred}};
}

std::vector<Field> FieldsOf(const CAdapterManualPMKInfo& key) {
    return {Masked("key", "Pairwise master key", key.m_sManualPMKKey),
            {"randomMac", "Random MAC address", key.m_bRandMACAddress}};
}

void AddTo(Sheet& sheet, const std::vector<Field>& fields) {
    for (const Field& field : fields) {
        const Json& value = field.value;
        sheet.Add(field.label, value.is_null()      ? std::string()
                               : value.is_boolean() ? YesOrNo(value.get<bool>())
                               : value.is_string()  ? value.get<std::string>()
                                                    : TextOf(value));
    }
}

} // namespace quilletctl
