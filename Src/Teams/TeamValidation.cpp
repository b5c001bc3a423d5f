// Asking the provider about a team before it is made or changed, and for the prefix of its name.
#include <quillet/Quillet.h>

#include "Adapters/AdapterIds.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderMethod.h"
#include "Variants/SafeArray.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

/// The text of a qualifier that is a text or a list whose first element is one. False when it is neither.
bool FirstText(VARIANT& value, std::wstring& text) {
    if (SAFEARRAY* array = ArrayOf(value)) {
        LONG lower = 0;
        CComBSTR element;
        if (FAILED(SafeArrayGetLBound(array, 1, &lower)) || FAILED(ReadElement(array, lower, element))) {
            return false;
        }
        text = TextOf(element);
        return true;
    }
    _bstr_t single;
    if (!ReadVariant(value, single)) {
        return false;
    }
    text.assign(single.length() ? single.GetBSTR() : L"", single.length());
    return true;
}

} // namespace

HRESULT CQuillet::ValidateTeamProperty(const ProviderName& method, const ProviderName& parameter,
                                       const _variant_t& value, const std::wstring& objectPath,
                                       DWORD& validation) {
    const ProviderSession session(*this, {objectPath.empty(), L"(wsObjectPath.empty())", RESULT_WBEM_FAILED});
    ProviderMethod call(session, L_CLASS_ZOREL_TEAMOFADAPTERS, method);
    LONG verdict = 0;
    PropertyReader read = call.Put(parameter, value).Exec(objectPath).Read();
    if (read.Long(L_METHOD_RETURN, verdict).Failed()) {
        return read.Result();
    }
    if (verdict != 0) {
        // The check of a mode says this of the name, too: whoever searches trace files knows it so.
        TraceText(L"ValidateTeamName() -> Validate team name Method failed.");
        return verdict;
    }
    return read.Code(L_PARAM_TEAM_VALRESULT, validation).Result();
}

HRESULT CQuillet::ValidateTeamName(const std::wstring& name, const std::wstring& objectPath,
                                   DWORD& validation) {
    const OperationTrace trace(L"ValidateTeamName");
    validation = 0;
    if (name.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsTeamName.empty())");
    }
    return ValidateTeamProperty(L_METHOD_TEAMOFADAPTERS_VALIDATETEAMNAME, L_PARAM_TEAM_CAPTION,
                                VariantOfText(name), objectPath, validation);
}

HRESULT CQuillet::ValidateTeamMode(CTeam::TeamMode mode, const std::wstring& objectPath, DWORD& validation) {
    const OperationTrace trace(L"ValidateTeamMode");
    validation = 0;
    return ValidateTeamProperty(L_METHOD_TEAMOFADAPTERS_VALIDATETEAMMODE, L_PARAM_TEAM_TEAMINGMODE,
                                VariantOfLong(mode), objectPath, validation);
}

HRESULT CQuillet::ValidateNewTeamMembers(const CAdapters& members, CTeam::TeamMode mode,
                                         ULONGLONG& validation) {
    const OperationTrace trace(L"ValidateNewTeamMembers");
    validation = 0;
    const std::vector<std::wstring> memberIds = AdapterIds(members);
    if (memberIds.empty()) {
        TraceText(L"ValidateNewTeamMembers:No new adapters ;hence returning success");
        return S_OK;
    }
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_TEAMOFADAPTERS,
                          L_METHOD_TEAMOFADAPTERS_VALIDATENEWTEAMMEMBERS);
    LONG verdict = 0;
    const HRESULT result = method.Put(L_PARAM_TEAM_NEWADAPTERS, memberIds)
                               .Put(L_PARAM_TEAM_NEWTEAMMODE, VariantOfLong(mode))
                               .Exec(L_CLASS_ZOREL_TEAMOFADAPTERS.name)
                               .Read()
                               .UInt64(L_PARAM_TEAM_VALRESULTNEWTEAM, validation)
                               .Long(L_METHOD_RETURN, verdict)
                               .Result();
    if (FAILED(result)) {
        return result;
    }
    return verdict != 0 ? trace.Fail(verdict, L"(0 != lValue) -> ValidateNewTeamMembers Method failure")
                        : S_OK;
}

HRESULT CQuillet::ValidateSettingsOnNewTeam(const CAdapters& members, ULONGLONG& validation) {
    const OperationTrace trace(L"ValidateSettingsOnNewTeam");
    validation = 0;
    const std::vector<std::wstring> memberIds = AdapterIds(members);
    if (memberIds.empty()) {
        TraceText(L"ValidateSettingsOnNewTeam:No new adapters ;hence returning success");
        return S_OK;
    }
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER,
                          L_METHOD_ETHERNETADAPTER_VALIDATESETTINGONNEWTEAM);
    return method.Put(L_PARAM_TEAM_ADAPTERS, memberIds)
        .Put(L_PARAM_ETHERNETADAPTER_SETTINGNAME,
             VariantOfText(CAdvancedSettingNames(true).GetSettingName(SettingName::MaxFrameSize)))
        .Exec(L_CLASS_ZOREL_ETHERNETADAPTER.name)
        .Read()
        .UInt64(L_PARAM_TEAM_VALRESULT, validation)
        .Result();
}

HRESULT CQuillet::ValidateAddAdapters(const std::wstring& teamId, const CTeamedAdapters&,
                                      const CAdapters& added, ULONGLONG& validation) {
    const OperationTrace trace(L"ValidateAddAdapters");
    validation = 0;
    const ProviderSession session(*this, NoTeam(teamId));
    ProviderMethod method(session, L_CLASS_ZOREL_TEAMOFADAPTERS, L_METHOD_TEAMOFADAPTERS_VALIDATEADDADAPTERS);
    return method.Put(L_PARAM_TEAM_ADAPTERS, AdapterIds(added))
        .Exec(teamId)
        .Read()
        .UInt64(L_PARAM_TEAM_VALRESULT, validation)
        .Result();
}

HRESULT CQuillet::GetTeamNamePrefix(std::wstring& prefix) {
    const OperationTrace trace(L"GetTeamNamePrefix");
    const ProviderSession session(*this);
    const ProviderInstance teamClass(session, L_CLASS_ZOREL_TEAMOFADAPTERS.name,
                                     L"GetObject -> L_CLASS_ZOREL_TEAMOFADAPTERS");
    if (teamClass.Failed()) {
        return teamClass.Result();
    }
    CComPtr<IWbemQualifierSet> qualifiers;
    HRESULT result =
        teamClass.Get()->GetPropertyQualifierSet(L_PROP_TEAMOFADAPTERS_TEAMPREFIX.name, &qualifiers);
    if (FAILED(result) || !qualifiers) {
        return trace.Fail(FAILED(result) ? result : RESULT_WBEM_FAILED,
                          L"Class_Def GetPropertyQualifierSet() FAILED!!! hRes");
    }
    _variant_t value;
    result = qualifiers->Get(L"Values", 0, &value, nullptr);
    if (FAILED(result)) {
        return trace.Fail(result, L"  pIQualifierSet->Get() FAILED!!! hRes");
    }
    return FirstText(value, prefix) ? S_OK : trace.Fail(RESULT_WBEM_FAILED, L"vPrefix.vt INVALID");
}
