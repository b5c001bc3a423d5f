// The VLANs of an adapter or a team, what is known of one VLAN, and the services that make them.
#include <quillet/Quillet.h>

#include "Lum2InstUtility.h"
#include "Provider/MakeRecord.h"
#include "Provider/ObjectIds.h"
#include "Provider/ProviderInstance.h"
#include "Adapters/TeamMemberships.h"
#include "Variants/VariantValue.h"

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

using OnNull = PropertyReader::OnNull;

/// What is asked of the provider while the VLANs of a parent are looked up: the rest costs it a trip to the
/// driver of each.
constexpr LONG PARTIAL_DATA = 1;
/// What trace lines call an instance of a VLAN.
constexpr const wchar_t* VLAN_VARIABLE = L"pVLANInstance";

Refusal NoComponent(const std::wstring& id, HRESULT code) {
    return Refusal{id.empty(), L"(wsComponentID.empty())", code}.OnceConnected();
}

} // namespace

/// A kind of parent: the kind of its path, and the trace text of an empty one.
struct CQuillet::VLANParent {
    ObjectKind kind;
    const wchar_t* emptyId;
};

HRESULT CQuillet::EnumerateVLANsOfAdapter(const std::wstring& adapterId, CVLANs& vlans) {
    const OperationTrace trace(L"EnumerateVLANsOfAdapter");
    return EnumerateVLANsOfParent({ObjectKind::Adapter, L"(wsAdapterID.empty())"}, adapterId, vlans);
}

HRESULT CQuillet::EnumerateVLANsOfTeam(const std::wstring& teamId, CVLANs& vlans) {
    const OperationTrace trace(L"EnumerateVLANsOfTeam");
    return EnumerateVLANsOfParent({ObjectKind::Team, L"(wsTeamID.empty())"}, teamId, vlans);
}

HRESULT CQuillet::EnumerateVLANsOfParent(const VLANParent& parent, const std::wstring& id, CVLANs& vlans) {
    const ProviderSession session(*this,
                                  Refusal{id.empty(), parent.emptyId, RESULT_WBEM_FAILED}.OnceConnected());
    if (session.Failed()) {
        return session.Result();
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
    if (session.Failed()) {
        return session.Result();
    }
    const std::wstring parent = parentId.length() ? static_cast<const wchar_t*>(parentId) : L"";
    const auto ask = [&] {
        const PartialRetrieval partial(session, PARTIAL_DATA);
        return session.Query(Wql::SelectWhere(L_CLASS_ZOREL_VLAN.name, L_PARAM_VLAN_PARENTID.name, parent),
                             L"ExecQuery -> L_CLASS_ZOREL_VLAN");
    };
    return ask().ForEach(L"pEnumVLANs -> Next",
                         [&](IWbemClassObject* instance) { return AppendVLAN(instance, vlans); });
}

HRESULT CQuillet::AppendVLAN(IWbemClassObject* instance, CVLANs& vlans) {
    const auto failed = [](HRESULT result) {
        TraceText(L"(Res != WBEM_S_NO_ERROR)");
        return result;
    };
    std::wstring path;
    PropertyReader read(instance, VLAN_VARIABLE);
    if (read.When(OnNull::Fail).String(L_ZOREL_PATH, path).Failed()) {
        return failed(read.Result());
    }
    return AppendRecord<CVLAN>(vlans, L"(pVLANInfo == NULL)", [&](CVLAN& vlan) {
        const HRESULT result = GetVLANInfo(CComPtr<IWbemClassObject>(instance), vlan);
        return FAILED(result) ? failed(result) : S_OK;
    });
}

HRESULT CQuillet::GetVLANInfo(const CComPtr<IWbemClassObject>& instance, CVLAN& vlan) {
    const OperationTrace trace(L"GetVLANInfo");
    return PropertyReader(instance, VLAN_VARIABLE)
        .When(OnNull::Fail)
        .String(L_ZOREL_PATH, vlan.m_wsVLANID)
        .String(L_PARAM_VLAN_CAPTION, vlan.m_wsCaption)
        .String(L_PARAM_VLAN_NAME, vlan.m_wsName)
        .String(L_PARAM_VLAN_PARENTID, vlan.m_wsParentID)
        .String(L_PARAM_VLAN_VLANNAME, vlan.m_wsVLANName)
        .Long(L_PARAM_VLAN_NUMBER, vlan.m_lVLANNumber)
        .IntCode(L_PARAM_VLAN_STATUS, vlan.m_eStatus)
        .Result();
}

HRESULT CQuillet::GetVLANInfo(const std::wstring& vlanId, CVLAN& vlan) {
    const OperationTrace trace(L"GetVLANInfo");
    const ProviderSession session(*this, NoVLAN(vlanId).OnceConnected());
    const ProviderInstance instance(session, vlanId, L"GetObject -> wsVLANID");
    return instance.Failed() ? instance.Result()
                             : GetVLANInfo(CComPtr<IWbemClassObject>(instance.Get()), vlan);
}

HRESULT CQuillet::GetVlanStatus(const std::wstring& vlanId, CVLAN::VlanStatus& status) {
    const OperationTrace trace(L"GetVlanStatus");
    const ProviderSession session(
        *this, Refusal{vlanId.empty(), L"(wsVlanID.empty())", RESULT_WBEM_FAILED}.OnceConnected());
    const ProviderInstance instance(session, vlanId, L"GetObject -> wsVlanID");
    return instance.Read(VLAN_VARIABLE).When(OnNull::Fail).IntCode(L_PARAM_VLAN_STATUS, status).Result();
}

HRESULT CQuillet::GetVLANID(const std::wstring& objectId, std::wstring& vlanId) {
    const OperationTrace trace(L"GetVLANID");
    const ProviderSession session(
        *this, Refusal{objectId.empty(), L"(wsGUID.empty())", RESULT_WBEM_FAILED}.OnceConnected());
    if (session.Failed()) {
        return session.Result();
    }
    CComBSTR path;
    CZorel_EthernetAdapterMgrHelper::MakePathFromVlanObjectId(1, objectId.c_str(), path);
    TraceText(L"VLAN WMI Object ID is");
    AddNameSpace(TextOf(path), vlanId);
    return S_OK;
}

HRESULT CQuillet::GetVLANService(const std::wstring& componentId, CComPtr<IWbemClassObject>& service) {
    const OperationTrace trace(L"GetVLANService");
    const ProviderSession session(*this, NoComponent(componentId, RESULT_WBEM_FAILED));
    if (session.Failed()) {
        return session.Result();
    }
    std::wstring objectId;
    if (!ObjectIdFromPath(ObjectKind::Adapter, componentId, objectId)) {
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
    const ProviderSession session(*this, NoComponent(componentId, E_FAIL));
    if (session.Failed()) {
        return session.Result();
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
    ProviderEnum memberships = Memberships(session, componentId);
    if (memberships.Failed()) {
        return RESULT_WBEM_FAILED;
    }
    CComPtr<IWbemClassObject> membership;
    if (memberships.Next(membership)) {
        return trace.Fail(CVLAN::ParentIsTeamMember, L"Adapter is part of the Team, ParentSupportVLAN");
    }
    return FAILED(memberships.End(MEMBERSHIPS_BROKE_OFF)) ? RESULT_WBEM_FAILED : S_OK;
}
