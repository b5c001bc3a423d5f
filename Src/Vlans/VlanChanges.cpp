// Adding VLANs to an adapter or a team, changing and removing them.
#include <quillet/Quillet.h>

#include "Provider/ObjectIds.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderMethod.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

using ATL::CComPtr;

namespace {

/// What no VLAN number reaches. The range of a tagged VLAN's is the business of the checks: here 0 is as
/// good, for the untagged VLAN.
constexpr LONG NUMBER_LIMIT = 4096;

} // namespace

HRESULT CQuillet::AddVLANToAdapter(const std::wstring& adapterId, CVLAN& vlan) {
    const OperationTrace trace(L"AddVLANToAdapter");
    return AddVLANToComponent(adapterId, vlan);
}

HRESULT CQuillet::AddVLANToTeam(const std::wstring& teamId, CVLAN& vlan) {
    const OperationTrace trace(L"AddVLANToTeam");
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsTeamID.empty())");
    }
    std::wstring adapterPath;
    if (!LogicalAdapterOfTeam(teamId, adapterPath)) {
        return trace.Fail(RESULT_WBEM_FAILED, L"Auto Parser Failed");
    }
    const HRESULT result = AddVLANToComponent(adapterPath, vlan);
    return FAILED(result) ? trace.Fail(result, L"AddVLANToComponent -> wsTeamID") : result;
}

HRESULT CQuillet::AddVLANToComponent(const std::wstring& componentId, CVLAN& vlan) {
    const OperationTrace trace(L"AddVLANToComponent");
    const ProviderSession session(
        *this, {componentId.empty() || vlan.m_wsVLANName.empty() || vlan.m_lVLANNumber >= NUMBER_LIMIT,
                L"(wsComponentID.empty()) or invalid parameters", RESULT_WBEM_FAILED});
    if (session.Failed()) {
        return session.Result();
    }
    CComPtr<IWbemClassObject> service;
    HRESULT result = GetVLANService(componentId, service);
    if (FAILED(result)) {
        return trace.Fail(result, L"GetVLANService -> wsComponentID, pVLANService");
    }
    std::wstring servicePath;
    result = PropertyReader(service, L"pVLANService")
                 .When(PropertyReader::OnNull::Fail)
                 .String(L_ZOREL_PATH, servicePath)
                 .Result();
    if (FAILED(result)) {
        return result;
    }
    std::wstring path;
    result = ProviderMethod(session, L_CLASS_ZOREL_VLANSERVICE, L_METHOD_VLAN_CREATE)
                 .Put(L_PARAM_VLAN_NUMBER, VariantOfLong(vlan.m_lVLANNumber))
                 .Put(L_PARAM_VLAN_NAME, VariantOfText(vlan.m_wsVLANName))
                 .Exec(servicePath)
                 .NeedAnswer(L"(pIWbemClassObject_OutParams == NULL)")
                 .Read(L"pIWbemClassObject_OutParams")
                 .String(L_PARAM_VLAN_PATH, path)
                 .Result();
    if (FAILED(result)) {
        return result;
    }
    if (path.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"Empty VLAN Path");
    }
    const wchar_t* const notThere = L"((WBEM_S_NO_ERROR != hRes) || (pCompInstance == NULL))";
    const ProviderInstance created(session, path, notThere, notThere);
    if (created.Failed()) {
        return created.Result();
    }
    // The caller's record changes as a whole or not at all.
    CVLAN filled;
    result = GetVLANInfo(CComPtr<IWbemClassObject>(created.Get()), filled);
    if (SUCCEEDED(result)) {
        vlan = filled;
    }
    return result;
}

HRESULT CQuillet::ModifyVLANProperty(const std::wstring& vlanId, const CVLAN& vlan) {
    const OperationTrace trace(L"ModifyVLANProperty");
    const ProviderSession session(*this, NoVLAN(vlanId));
    const ProviderInstance instance(session, vlanId, L"GetObject -> wsVLANID");
    HRESULT result = instance.Put(L_PARAM_VLAN_VLANNAME, VariantOfText(vlan.m_wsVLANName));
    if (FAILED(result)) {
        return result;
    }
    TraceText(L"Put Passed");
    result = instance.Put(L_PARAM_VLAN_NUMBER, VariantOfLong(vlan.m_lVLANNumber));
    if (FAILED(result)) {
        return result;
    }
    return session.Commit(instance.Get(), L"PutInstance -> pVLANInstance",
                          L"pIWbemClassResult->GetCallStatus");
}

HRESULT CQuillet::RemoveVLAN(const std::wstring& vlanId) {
    const OperationTrace trace(L"RemoveVLAN");
    return ProviderSession(*this, NoVLAN(vlanId))
        .Delete(vlanId, L"pIWbemService -> DeleteInstance -> wsVLANID");
}
