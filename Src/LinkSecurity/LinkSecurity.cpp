// Link security of an adapter: manual keys, authentication, PAC files, the pairwise master key, saved
// credentials and statistics. A password or key goes through PutSecret or Secret, and nowhere else.
#include <quillet/Quillet.h>

#include "Provider/ProviderMethod.h"
#include "Records/SecretText.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

namespace {

using OnNull = PropertyReader::OnNull;

// Outer EAP methods that decide what is sent.
constexpr LONG LEAST_OUTER_EAP = 1;
constexpr LONG OUTER_EAP_WITHOUT_CREDENTIALS = 1;
constexpr LONG OUTER_EAP_WITH_PAC = 4;
constexpr LONG GREATEST_OUTER_EAP = 4;
constexpr LONG LEAST_INNER_EAP = 1;
constexpr LONG GREATEST_INNER_EAP = 3;

bool IsBetween(LONG value, LONG least, LONG greatest) {
    return value >= least && value <= greatest;
}

/// The out-parameters in their order, each followed by its progress line. A text that the provider has not is
/// noted and becomes empty, so that a record that is used again shows nothing of the last adapter.
class Answer {
  public:
    explicit Answer(const ProviderMethod& method) : m_read(method.Read()) {}

    Answer& Text(const ProviderName& parameter, std::wstring& member, const wchar_t* progress) {
        m_read.When(OnNull::Note).String(parameter, member);
        return Emptied(member).Progress(progress);
    }
    Answer& Secret(const ProviderName& parameter, std::wstring& member, const wchar_t* progress) {
        m_read.When(OnNull::Note).Secret(parameter, member);
        return Emptied(member).Progress(progress);
    }
    Answer& Flag(const ProviderName& parameter, bool& member, const wchar_t* progress = nullptr) {
        m_read.When(OnNull::Keep).Bool(parameter, member);
        return Progress(progress);
    }
    Answer& Int(const ProviderName& parameter, LONG& member, const wchar_t* progress) {
        m_read.When(OnNull::Keep).Int(parameter, member);
        return Progress(progress);
    }
    Answer& Long(const ProviderName& parameter, LONG& member, const wchar_t* progress) {
        m_read.When(OnNull::Keep).Long(parameter, member);
        return Progress(progress);
    }
    template <typename Enumeration>
    Answer& Code(const ProviderName& parameter, Enumeration& member, const wchar_t* progress) {
        m_read.When(OnNull::Keep).IntCode(parameter, member);
        return Progress(progress);
    }

    HRESULT Result() const { return SuccessOr(m_read.Result()); }

  private:
    Answer& Emptied(std::wstring& member) {
        if (!m_read.Failed() && !m_read.Found()) {
            quillet::OverwriteText(member);
        }
        return *this;
    }
    Answer& Progress(const wchar_t* text) {
        if (!m_read.Failed() && text) {
            TraceText(text);
        }
        return *this;
    }

    PropertyReader m_read;
};

/// A number that has a trace line of its own, after everything before it was put.
void NoteNumber(const ProviderMethod& method, const wchar_t* format, int number) {
    if (!method.Failed()) {
        LumTrace().Print(format, number);
    }
}

void PutRandomMacAddress(ProviderMethod& method, bool random) {
    NoteNumber(method, L"m_bRandMACAddress = %d", random ? 1 : 0);
    method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_RANDMACADDRESS, VariantOfBool(random));
}

/// The inner method and the credentials. What is empty or 0 is not sent, so that the provider keeps its own.
void PutCredentials(ProviderMethod& method, const CAdapterAuthTypeInfo& info) {
    // Unlike the outer method, an inner one that is not known goes to the provider all the same, on purpose.
    if (!method.Failed() && !IsBetween(info.m_InnerEAP, LEAST_INNER_EAP, GREATEST_INNER_EAP)) {
        TraceText(L"m_InnerEAP out of range");
    }
    if (info.m_InnerEAP != 0) {
        method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_INNEREAPTYPE, VariantOfLong(info.m_InnerEAP));
    }
    if (!info.m_sUserName.empty()) {
        method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_USERNAME, VariantOfText(info.m_sUserName));
    }
    if (!info.m_sPassword.empty()) {
        method.PutSecret(L_PARAM_ETHERNETADAPTER_LINKSEC_PASSWORD, info.m_sPassword);
    }
    method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_TYPEOFCREDSCHANGED, VariantOfLong(info.m_nTypeOfCredsChanged))
        .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINECRED, VariantOfBool(info.m_bMachineCred));
    if (!method.Failed()) {
        TraceText(L"WindowsCreds Value is:");
    }
    method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_WINDOWSCREDS, VariantOfLong(info.m_bUseWindowsCreds));
}

} // namespace

HRESULT CQuillet::GetAdapterLinksecManualAuthOptions(const std::wstring& adapterId,
                                                     CAdapterManualAuthInfo& info) {
    const OperationTrace trace(L"GetAdapterLinksecManualAuthOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETLINKSECMANLCFGKEYS);
    return Answer(method.Exec(adapterId))
        .Secret(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SAKEY, info.m_sTXSAKey, L"After m_sTXSAKey")
        .Int(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM1, info.m_nTXAssocNum1,
             L"After m_nTXAssocNum1")
        .Int(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM2, info.m_nTXAssocNum2,
             L"After m_nTXAssocNum2")
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_INCLUDE_SCI, info.m_bIncludeSCIOnTX,
              L"After m_bIncludeSCIOnTX")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SCI, info.m_sTXSCI, L"After m_sTXSCI")
        .Secret(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SAKEY, info.m_sRXSAKey, L"After m_sRXSAKey")
        .Int(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM1, info.m_nRXAssocNum1,
             L"After m_nRXAssocNum1")
        .Int(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM2, info.m_nRXAssocNum2,
             L"After m_nRXAssocNum2")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SCI, info.m_sRXSCI, L"After m_sRXSCI")
        // The line names the other flag again on purpose: whoever searches trace files knows it so.
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_USE_EMCRYPTION, info.m_bUseEncryption,
              L"After m_bIncludeSCIOnTX")
        .Result();
}

HRESULT CQuillet::SetAdapterLinksecManualAuthOptions(const std::wstring& adapterId,
                                                     const CAdapterManualAuthInfo& info, bool driverReload) {
    // The first line names another operation on purpose: whoever searches trace files knows it so.
    const OperationTrace trace(L"Enter CQuillet::SetAdapterWakeOnLanOptions",
                               L"Exit CQuillet::SetAdapterLinksecManualAuthOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER,
                          L_METHOD_ETHERNETADAPTER_SETLINKSECMANLCFGKEYS);
    return SuccessOr(
        method.PutSecret(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SAKEY, info.m_sTXSAKey)
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM1, VariantOfLong(info.m_nTXAssocNum1))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_ASSOCNUM2, VariantOfLong(info.m_nTXAssocNum2))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_INCLUDE_SCI, VariantOfBool(info.m_bIncludeSCIOnTX))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_TX_SCI, VariantOfText(info.m_sTXSCI))
            .PutSecret(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SAKEY, info.m_sRXSAKey)
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM1, VariantOfLong(info.m_nRXAssocNum1))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_ASSOCNUM2, VariantOfLong(info.m_nRXAssocNum2))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_RX_SCI, VariantOfText(info.m_sRXSCI))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_MANLCFG_USE_EMCRYPTION, VariantOfBool(info.m_bUseEncryption))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_DRIVERRELOAD, VariantOfBool(driverReload))
            .Exec(adapterId)
            .Result());
}

HRESULT CQuillet::GetAdapterLinksecStrictPreferredOptions(const std::wstring& adapterId,
                                                          CAdapterAuthTypeInfo& info) {
    const OperationTrace trace(L"GetAdapterLinksecStrictPreferredOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETLINKSECPARAMS);
    return Answer(method.Exec(adapterId))
        .Code(L_PARAM_ETHERNETADAPTER_LINKSEC_OUTEREAPTYPE, info.m_eOuterEAP, L"After m_eOuterEAP")
        .Code(L_PARAM_ETHERNETADAPTER_LINKSEC_INNEREAPTYPE, info.m_InnerEAP, L"After m_InnerEAP")
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINECRED, info.m_bMachineCred, L"After m_bMachineCred")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_USERNAME, info.m_sUserName, L"After m_sUserName")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINEDOMAINNAME, info.m_sMachineDomainName,
              L"After m_sMachineDomainName")
        .Secret(L_PARAM_ETHERNETADAPTER_LINKSEC_PASSWORD, info.m_sPassword, L"After m_sPassword")
        .Int(L_PARAM_ETHERNETADAPTER_LINKSEC_WINDOWSCREDS, info.m_bUseWindowsCreds,
             L"After m_bUseWindowsCreds")
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_AUTOPAC, info.m_bUseAutoPAC, L"After m_bUseAutoPAC")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_PACPATH, info.m_sPACAuthority, L"After m_sPACAuthority")
        .Code(L_PARAM_ETHERNETADAPTER_LINKSEC_KEYSECTYPE, info.m_eKeySecType, L"After m_eKeySecType")
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_RANDMACADDRESS, info.m_bRandMACAddress,
              L"After m_bRandMACAddress")
        .Result();
}

HRESULT CQuillet::SetAdapterLinksecStrictPreferredOptions(const std::wstring& adapterId,
                                                          const CAdapterAuthTypeInfo& info,
                                                          bool driverReload) {
    const OperationTrace trace(L"SetAdapterLinksecStrictPreferredOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_SETLINKSECPARAMS);
    if (method.Failed()) {
        return method.Result();
    }
    if (!IsBetween(info.m_eOuterEAP, LEAST_OUTER_EAP, GREATEST_OUTER_EAP)) {
        return trace.Fail(E_FAIL, L"m_eOuterEAP out of range");
    }
    method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_OUTEREAPTYPE, VariantOfLong(info.m_eOuterEAP));
    if (info.m_eOuterEAP != OUTER_EAP_WITHOUT_CREDENTIALS) {
        PutCredentials(method, info);
    }
    if (info.m_eOuterEAP == OUTER_EAP_WITH_PAC) {
        method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_AUTOPAC, VariantOfBool(info.m_bUseAutoPAC))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_PACPATH, VariantOfText(info.m_sPACAuthority));
    }
    method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_CREDCHANGED, VariantOfBool(true))
        .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_DRIVERRELOAD, VariantOfBool(driverReload));
    NoteNumber(method, L"m_eKeySecType = %d", static_cast<int>(info.m_eKeySecType));
    method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_KEYSECTYPE, VariantOfLong(info.m_eKeySecType));
    PutRandomMacAddress(method, info.m_bRandMACAddress);
    return SuccessOr(method.Exec(adapterId).Result());
}

HRESULT CQuillet::GetAdapterLinksecEapType(const std::wstring& adapterId, CAdapterEAPInfo& info) {
    const OperationTrace trace(L"GetAdapterLinksecEapType");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETLINKSECEAPTYPE);
    return Answer(method.Exec(adapterId))
        .Code(L_PARAM_ETHERNETADAPTER_LINKSEC_OUTEREAPTYPE, info.m_eOuterEAP, L"After m_eOuterEAP")
        .Code(L_PARAM_ETHERNETADAPTER_LINKSEC_INNEREAPTYPE, info.m_InnerEAP, L"After m_InnerEAP")
        .Code(L_PARAM_ETHERNETADAPTER_LINKSEC_KEYSECTYPE, info.m_eKeySecType, L"After m_eKeySecType")
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_RANDMACADDRESS, info.m_bRandMACAddress,
              L"After m_bRandMACAddress")
        .Result();
}

HRESULT CQuillet::AdapterImportManualPAC(const std::wstring& adapterId, const CAdapterPACInfo& info,
                                         bool reload) {
    const OperationTrace trace(L"AdapterImportManualPAC");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_IMPORTMANUALPAC);
    return SuccessOr(
        method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_PACPATH, VariantOfText(info.m_sPACPath))
            .PutSecret(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEPASSWORD, info.m_sPACFilePassword)
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_PACINFOCHANGED, VariantOfBool(info.m_bPACInfoChanged))
            .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_RELOAD, VariantOfBool(reload))
            .Exec(adapterId)
            .Result());
}

// The interface takes the name by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
HRESULT CQuillet::DeletePacFile(const std::wstring& adapterId, std::wstring pacFile) {
    const OperationTrace trace(L"DeletePacFile");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_DELETEPACFILE);
    return SuccessOr(method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEDELETE, VariantOfText(pacFile))
                         .Exec(adapterId)
                         .Result());
}

HRESULT CQuillet::GetAdapterPacFileContents(const std::wstring& adapterId, CAdapterPacFileInfo& info) {
    const OperationTrace trace(L"GetAdapterPacFileContents");
    // The line names another operation's record on purpose: whoever searches trace files knows it so.
    const ProviderSession session(
        *this, {adapterId.empty(), L"((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterCapabilities))"});
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER,
                          L_METHOD_ETHERNETADAPTER_GETPACFILECONTENTS);
    method.Put(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILE, VariantOfText(info.m_sPACFileName)).Exec(adapterId);
    Answer answer(method);
    // The kind alone does not outlast a provider that does not tell it.
    LONG pacType = 0;
    answer.Long(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILETYPE, pacType, L"After m_lPacType");
    if (SUCCEEDED(answer.Result())) {
        info.m_lPacType = pacType;
    }
    return answer.Text(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEINFO, info.m_sinfo, L"After m_sinfo")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEAID, info.m_saId, L"After m_saId")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEAIDINFO, info.m_saIdInfo, L"After m_saIdInfo")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEIID, info.m_sIId, L"After m_sIId")
        .Long(L_PARAM_ETHERNETADAPTER_LINKSEC_PACFILEEXPIRYTIME, info.m_lExpiryTime, L"After m_lExpiryTime")
        .Result();
}

HRESULT CQuillet::SetAdapterManualPMKOptions(const std::wstring& adapterId, const CAdapterManualPMKInfo& info,
                                             bool driverReload, bool) {
    const OperationTrace trace(L"SetAdapterManualPMKOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER,
                          L_METHOD_ETHERNETADAPTER_SETLINKSECMANUALPMK);
    method.PutSecret(L_PARAM_ETHERNETADAPTER_LINKSEC_MANUALPMKEY, info.m_sManualPMKKey)
        .Put(L_PARAM_ETHERNETADAPTER_LINKSEC_DRIVERRELOAD, VariantOfBool(driverReload));
    PutRandomMacAddress(method, info.m_bRandMACAddress);
    return SuccessOr(method.Exec(adapterId).Result());
}

HRESULT CQuillet::GetAdapterManualPMKOptions(const std::wstring& adapterId, CAdapterManualPMKInfo& info,
                                             bool& randomMacAddress) {
    const OperationTrace trace(L"GetAdapterManualPMKOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETLINKSECMANUALPMK);
    return Answer(method.Exec(adapterId))
        .Secret(L_PARAM_ETHERNETADAPTER_LINKSEC_MANUALPMKEY, info.m_sManualPMKKey, L"After m_sManualPMKKey")
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_RANDMACADDRESS, randomMacAddress)
        .Result();
}

HRESULT CQuillet::GetAdapterSavedCredOptions(const std::wstring& adapterId,
                                             CAdapterLinksecSavedCredInfo& info) {
    const OperationTrace trace(L"GetAdapterSavedCredOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETLINKSECSAVEDCREDS);
    return Answer(method.Exec(adapterId))
        .Flag(L_PARAM_ETHERNETADAPTER_LINKSEC_MACHINECRED, info.m_bMachineCred, L"After m_bMachineCred")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_USERNAME, info.m_sUserName, L"After m_sUserName")
        .Secret(L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_PASSWORD, info.m_sPassword, L"After m_sPassword")
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_SAVED_MACHINEDOMAINNAME, info.m_sMachineDomainName,
              L"After m_sMachineDomainName")
        .Result();
}

HRESULT CQuillet::GetAdapterLinksecSecurityStats(const std::wstring& adapterId, std::wstring& log) {
    const OperationTrace trace(L"GetAdapterLinksecSecurityStats");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETLINKSECSECSTATSLOG);
    return Answer(method.Exec(adapterId))
        .Text(L_PARAM_ETHERNETADAPTER_LINKSEC_SECSTATS, log, L"After wsSecLog")
        .Result();
}
