// The VLANs of an adapter or a team, what is known of one VLAN, and the services that make them.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "Lum2InstUtility.h"
#include "ObjectIds.h"
#include "ProviderInstance.h"
#include "Trace.h"
#include "VariantValue.h"
#include "Wql.h"

#include <memory>
#include <new>

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

/// What is asked of the provider while the VLANs of a parent are looked up: the rest costs it a trip to the
/// driver of each.
constexpr LONG PARTIAL_DATA = 1;

} // namespace

/// A kind of parent: the kind of its path, and the trace text of an empty one.
struct CQuillet::VLANParent {
    ObjectKind kind;
    const wchar_t* emptyId;
};

HRESULT CQuillet::EnumerateVLANsOfAdapter(const std::wstring& adapterId, CVLANs& vlans) {
    const OperationTrace trace(L"EnumerateVLANsOfAdapter");
    return EnumerateVLANsOfParent({ObjectKind::Ethernet, L"(wsAdapterID.empty())"}, adapterId, vlans);
}

HRESULT CQuillet::EnumerateVLANsOfTeam(const std::wstring& teamId, CVLANs& vlans) {
    const OperationTrace trace(L"EnumerateVLANsOfTeam");
    return EnumerateVLANsOfParent({ObjectKind::Team, L"(wsTeamID.empty())"}, teamId, vlans);
}

HRESULT CQuillet::EnumerateVLANsOfParent(const VLANParent& parent, const std::wstring& id, CVLANs& vlans) {
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (id.empty()) {
        TraceText(parent.emptyId);
        return RESULT_WBEM_FAILED;
    }
    std::wstring objectId;
    if (!ObjectIdFromPath(parent.kind, id, objectId)) {
        TraceText(L"Auto Parser Failed");
        return RESULT_WBEM_FAILED;
    }
    const HRESULT result = EnumerateVLANsOfComponent(objectId.c_str(), vlans);
    if (FAILED(result)) {
        TraceText(L"(WBEM_S_NO_ERROR != hRes)");
    }
    return result;
}

HRESULT CQuillet::EnumerateVLANsOfComponent(const _bstr_t& parentId, CVLANs& vlans) {
    const OperationTrace trace(L"EnumerateVLANsOfComponent");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    const std::wstring parent = parentId.length() ? static_cast<const wchar_t*>(parentId) : L"";
    ProviderEnum instances;
    HRESULT result = S_OK;
    {
        const PartialRetrieval partial(session, PARTIAL_DATA);
        result = session.Query(Wql::SelectWhere(L_CLASS_ZOREL_VLAN.name, L_PARAM_VLAN_PARENTID.name, parent),
                               instances, L"ExecQuery -> L_CLASS_ZOREL_VLAN");
    }
    CComPtr<IWbemClassObject> instance;
    while (SUCCEEDED(result) && instances.Next(instance)) {
        result = AppendVLAN(instance, vlans);
    }
    if (FAILED(result)) {
        return result;
    }
    return FAILED(instances.Result()) ? trace.Fail(instances.Result(), L"pEnumVLANs -> Next") : S_OK;
}

HRESULT CQuillet::AppendVLAN(IWbemClassObject* instance, CVLANs& vlans) {
    std::wstring path;
    std::unique_ptr<CVLAN> vlan;
    HRESULT result = PropertyReader(instance, L"pVLANInstance", PropertyReader::OnNull::Fail)
                         .String(L_ZOREL_PATH, path)
                         .Result();
    if (SUCCEEDED(result)) {
        vlan.reset(new (std::nothrow) CVLAN);
        if (!vlan) {
            TraceText(L"(pVLANInfo == NULL)");
            return E_FAIL;
        }
        result = GetVLANInfo(CComPtr<IWbemClassObject>(instance), *vlan);
    }
    if (FAILED(result)) {
        TraceText(L"(Res != WBEM_S_NO_ERROR)");
        return result;
    }
    AddRecord(vlans, std::move(vlan));
    return S_OK;
}

HRESULT CQuillet::GetVLANInfo(const CComPtr<IWbemClassObject>& instance, CVLAN& vlan) {
    const OperationTrace trace(L"GetVLANInfo");
    int status = vlan.m_eStatus;
    const HRESULT result = PropertyReader(instance, L"pVLANInstance", PropertyReader::OnNull::Fail)
                               .String(L_ZOREL_PATH, vlan.m_wsVLANID)
                               .String(L_PARAM_VLAN_CAPTION, vlan.m_wsCaption)
                               .String(L_PARAM_VLAN_NAME, vlan.m_wsName)
                               .String(L_PARAM_VLAN_PARENTID, vlan.m_wsParentID)
                               .String(L_PARAM_VLAN_VLANNAME, vlan.m_wsVLANName)
                               .Long(L_PARAM_VLAN_NUMBER, vlan.m_lVLANNumber)
                               .Int(L_PARAM_VLAN_STATUS, status)
                               .Result();
    vlan.m_eStatus = static_cast<CVLAN::VlanStatus>(status);
    return result;
}

HRESULT CQuillet::GetVLANInfo(const std::wstring& vlanId, CVLAN& vlan) {
    const OperationTrace trace(L"GetVLANInfo");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (vlanId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsVLANID.empty())");
    }
    const ProviderInstance instance(session, vlanId, L"GetObject -> wsVLANID");
    return instance.Failed() ? instance.Result()
                             : GetVLANInfo(CComPtr<IWbemClassObject>(instance.Get()), vlan);
}

HRESULT CQuillet::GetVlanStatus(const std::wstring& vlanId, CVLAN::VlanStatus& status) {
    const OperationTrace trace(L"GetVlanStatus");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (vlanId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsVlanID.empty())");
    }
    const ProviderInstance instance(session, vlanId, L"GetObject -> wsVlanID");
    int number = status;
    const HRESULT result = instance.Read(L"pVLANInstance", PropertyReader::OnNull::Fail)
                               .Int(L_PARAM_VLAN_STATUS, number)
                               .Result();
    status = static_cast<CVLAN::VlanStatus>(number);
    return result;
}

HRESULT CQuillet::GetVLANID(const std::wstring& objectId, std::wstring& vlanId) {
    const OperationTrace trace(L"GetVLANID");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (objectId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsGUID.empty())");
    }
    CComBSTR path;
    CZorel_EthernetAdapterMgrHelper::MakePathFromVlanObjectId(1, objectId.c_str(), path);
    TraceText(L"VLAN WMI Object ID is");
    AddNameSpace(TextOf(path), vlanId);
    return S_OK;
}

HRESULT CQuillet::GetVLANService(const std::wstring& componentId, CComPtr<IWbemClassObject>& service) {
    const OperationTrace trace(L"GetVLANService");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (componentId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsComponentID.empty())");
    }
    std::wstring objectId;
    if (!ObjectIdFromPath(ObjectKind::Ethernet, componentId, objectId)) {
        return trace.Fail(RESULT_WBEM_FAILED, L"Auto Parser Failed");
    }
    CComBSTR path;
    CZorel_EthernetAdapterMgrHelper::MakeVlanServicePathFromParentObjectId(1, objectId.c_str(), path);
    TraceText(L"VLAN Servie WMI ObjectID");
    const ProviderInstance instance(session, TextOf(path), L"GetObject -> bstrVLANServicePath");
    if (instance.Failed()) {
        return trace.Fail(instance.Result(), L"(pVLANService == NULL)");
    }
    service = instance.Get();
    return S_OK;
}

HRESULT CQuillet::ParentSupportingVLAN(const std::wstring& componentId) {
    const OperationTrace trace(L"ParentSupportingVLAN");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (componentId.empty()) {
        return trace.Fail(E_FAIL, L"(wsComponentID.empty())");
    }
    CComPtr<IWbemClassObject> service;
    // Wherever the name stands in the identifier, on purpose: the path decides only afterwards.
    if (componentId.find(L_CLASS_ZOREL_TEAMOFADAPTERS.name) != std::wstring::npos) {
        TraceText(L"May be a team - ParentSupportingVLAN");
        std::wstring adapterPath;
        if (!LogicalAdapterOfTeam(componentId, adapterPath)) {
            return trace.Fail(E_FAIL, L"Auto Parser Failed");
        }
        return GetVLANService(adapterPath, service);
    }
    const HRESULT result = GetVLANService(componentId, service);
    if (FAILED(result)) {
        return result;
    }
    ProviderEnum memberships;
    if (FAILED(session.Query(Wql::References(componentId, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name),
                             memberships, L"ExecQuery -> BSTR_QUERY_REFERENCE"))) {
        return RESULT_WBEM_FAILED;
    }
    CComPtr<IWbemClassObject> membership;
    if (memberships.Next(membership)) {
        return trace.Fail(CVLAN::ParentIsTeamMember, L"Adapter is part of the Team, ParentSupportVLAN");
    }
    return FAILED(memberships.Result()) ? trace.Fail(RESULT_WBEM_FAILED, L"pEnumTeamedMemberAdapters -> Next")
                                        : S_OK;
}
