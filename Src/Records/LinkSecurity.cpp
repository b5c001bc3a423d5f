// Link-security records: copies, and the overwriting of secrets.
#include <quillet/LinkSecurity.h>

#include "Records/SecretText.h"
#include "Records/SwapMembers.h"

using quillet::OverwriteText;

namespace {

auto Members(CAdapterManualAuthInfo& r) {
    return std::tie(r.m_sTXSAKey, r.m_nTXAssocNum1, r.m_nTXAssocNum2, r.m_bIncludeSCIOnTX, r.m_sTXSCI,
                    r.m_sRXSAKey, r.m_nRXAssocNum1, r.m_nRXAssocNum2, r.m_sRXSCI, r.m_bUseEncryption);
}

auto Members(CAdapterAuthTypeInfo& r) {
    return std::tie(r.m_eOuterEAP, r.m_InnerEAP, r.m_sUserName, r.m_sPassword, r.m_sMachineDomainName,
                    r.m_bUseAutoPAC, r.m_sPACAuthority, r.m_bMachineCred, r.m_nTypeOfCredsChanged,
                    r.m_bUseWindowsCreds, r.m_eKeySecType, r.m_bRandMACAddress);
}

auto Members(CAdapterPACInfo& r) {
    return std::tie(r.m_sPACPath, r.m_sPACFilePassword, r.m_bPACInfoChanged);
}

auto Members(CAdapterManualPMKInfo& r) {
    return std::tie(r.m_sManualPMKKey, r.m_bRandMACAddress);
}

auto Members(CAdapterLinksecSavedCredInfo& r) {
    return std::tie(r.m_sUserName, r.m_sPassword, r.m_bMachineCred, r.m_sMachineDomainName);
}

// Only the copy can fail, and the record is as it was then. Its secrets go before they are exchanged: a short
// text is exchanged by way of the stack, where nobody would overwrite it.
template <class TRecord>
TRecord& Assign(TRecord& rTo, const TRecord& rFrom) {
    TRecord copy(rFrom);
    rTo.Clear();
    quillet::SwapMembers(Members(rTo), Members(copy));
    return rTo;
}

} // namespace

CAdapterManualAuthInfo::CAdapterManualAuthInfo() = default;
CAdapterManualAuthInfo::CAdapterManualAuthInfo(const CAdapterManualAuthInfo& other) = default;

CAdapterManualAuthInfo& CAdapterManualAuthInfo::operator=(const CAdapterManualAuthInfo& other) {
    return Assign(*this, other);
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
    return Assign(*this, other);
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
    return Assign(*this, other);
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
    return Assign(*this, other);
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
    return Assign(*this, other);
}

CAdapterLinksecSavedCredInfo::~CAdapterLinksecSavedCredInfo() {
    Clear();
}

void CAdapterLinksecSavedCredInfo::Clear() noexcept {
    OverwriteText(m_sPassword);
}
