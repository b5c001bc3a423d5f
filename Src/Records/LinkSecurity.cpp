// Link-security records: copies, and the overwriting of secrets.
#include <quillet/LinkSecurity.h>

#include "SecretText.h"

using quillet::OverwriteText;

namespace {

/// Copies the secret of one record into another, which may be the same.
void CopySecret(std::wstring& rwsTo, const std::wstring& rwsFrom) {
    if (&rwsTo != &rwsFrom) {
        quillet::AssignSecret(rwsTo, rwsFrom.data(), rwsFrom.size());
    }
}

} // namespace

CAdapterManualAuthInfo::CAdapterManualAuthInfo() = default;
CAdapterManualAuthInfo::CAdapterManualAuthInfo(const CAdapterManualAuthInfo& other) = default;

CAdapterManualAuthInfo& CAdapterManualAuthInfo::operator=(const CAdapterManualAuthInfo& other) {
    CopySecret(m_sTXSAKey, other.m_sTXSAKey);
    m_nTXAssocNum1 = other.m_nTXAssocNum1;
    m_nTXAssocNum2 = other.m_nTXAssocNum2;
    m_bIncludeSCIOnTX = other.m_bIncludeSCIOnTX;
    m_sTXSCI = other.m_sTXSCI;
    CopySecret(m_sRXSAKey, other.m_sRXSAKey);
    m_nRXAssocNum1 = other.m_nRXAssocNum1;
    m_nRXAssocNum2 = other.m_nRXAssocNum2;
    m_sRXSCI = other.m_sRXSCI;
    m_bUseEncryption = other.m_bUseEncryption;
    return *this;
}

CAdapterManualAuthInfo::~CAdapterManualAuthInfo() {
    Clear();
}

void CAdapterManualAuthInfo::Clear() noexcept {
    OverwriteText(m_sTXSAKey);
    OverwriteText(m_sRXSAKey);
}

CAdapterAuthTypeInfo::CAdapterAuthTypeInfo() = default;
CAdapterAuthTypeInfo::CAdapterAuthTypeInfo(const CAdapterAuthTypeInfo& other) = default;

CAdapterAuthTypeInfo& CAdapterAuthTypeInfo::operator=(const CAdapterAuthTypeInfo& other) {
    m_eOuterEAP = other.m_eOuterEAP;
    m_InnerEAP = other.m_InnerEAP;
    m_sUserName = other.m_sUserName;
    CopySecret(m_sPassword, other.m_sPassword);
    m_sMachineDomainName = other.m_sMachineDomainName;
    m_bUseAutoPAC = other.m_bUseAutoPAC;
    m_sPACAuthority = other.m_sPACAuthority;
    m_bMachineCred = other.m_bMachineCred;
    m_nTypeOfCredsChanged = other.m_nTypeOfCredsChanged;
    m_bUseWindowsCreds = other.m_bUseWindowsCreds;
    m_eKeySecType = other.m_eKeySecType;
    m_bRandMACAddress = other.m_bRandMACAddress;
    return *this;
}

CAdapterAuthTypeInfo::~CAdapterAuthTypeInfo() {
    Clear();
}

void CAdapterAuthTypeInfo::Clear() noexcept {
    OverwriteText(m_sPassword);
}

CAdapterPACInfo::CAdapterPACInfo() = default;
CAdapterPACInfo::CAdapterPACInfo(const CAdapterPACInfo& other) = default;

CAdapterPACInfo& CAdapterPACInfo::operator=(const CAdapterPACInfo& other) {
    m_sPACPath = other.m_sPACPath;
    CopySecret(m_sPACFilePassword, other.m_sPACFilePassword);
    m_bPACInfoChanged = other.m_bPACInfoChanged;
    return *this;
}

CAdapterPACInfo::~CAdapterPACInfo() {
    Clear();
}

void CAdapterPACInfo::Clear() noexcept {
    OverwriteText(m_sPACFilePassword);
}

CAdapterManualPMKInfo::CAdapterManualPMKInfo() = default;
CAdapterManualPMKInfo::CAdapterManualPMKInfo(const CAdapterManualPMKInfo& other) = default;

CAdapterManualPMKInfo& CAdapterManualPMKInfo::operator=(const CAdapterManualPMKInfo& other) {
    CopySecret(m_sManualPMKKey, other.m_sManualPMKKey);
    m_bRandMACAddress = other.m_bRandMACAddress;
    return *this;
}

CAdapterManualPMKInfo::~CAdapterManualPMKInfo() {
    Clear();
}

void CAdapterManualPMKInfo::Clear() noexcept {
    OverwriteText(m_sManualPMKKey);
}

CAdapterLinksecSavedCredInfo::CAdapterLinksecSavedCredInfo() = default;
CAdapterLinksecSavedCredInfo::CAdapterLinksecSavedCredInfo(const CAdapterLinksecSavedCredInfo& other) =
    default;

CAdapterLinksecSavedCredInfo&
CAdapterLinksecSavedCredInfo::operator=(const CAdapterLinksecSavedCredInfo& other) {
    m_sUserName = other.m_sUserName;
    CopySecret(m_sPassword, other.m_sPassword);
    m_bMachineCred = other.m_bMachineCred;
    m_sMachineDomainName = other.m_sMachineDomainName;
    return *this;
}

CAdapterLinksecSavedCredInfo::~CAdapterLinksecSavedCredInfo() {
    Clear();
}

void CAdapterLinksecSavedCredInfo::Clear() noexcept {
    OverwriteText(m_sPassword);
}
