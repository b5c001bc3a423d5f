// The ports of an adapter's board, and what one adapter can be asked to do or tell.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "ProviderEnum.h"
#include "ProviderInstance.h"
#include "ProviderMethod.h"
#include "Trace.h"
#include "VariantValue.h"
#include "Wql.h"

#include <memory>
#include <new>

using ATL::CComPtr;

namespace {

/// The bit of "AdapterStatus" that says that the hardware is not there.
constexpr LONG HARDWARE_MISSING = 4;

} // namespace

HRESULT CQuillet::EnumerateOtherPortOfAdapter(const std::wstring& adapterId, CAdapterPorts& ports) {
    const OperationTrace trace(L"EnumerateOtherPortOfAdapter");
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"(wsAdapterID.empty())");
    }
    const ProviderSession session(*this);
    const ProviderInstance adapter(session, adapterId, L"GetObject -> wsAdapterID");
    std::wstring slot;
    HRESULT result = adapter.Read(L"pInstanceHandle", PropertyReader::OnNull::Fail)
                         .String(L_PROP_ETHERNETADAPTER_SLOTID, slot)
                         .Result();
    if (FAILED(result)) {
        return result;
    }
    ProviderEnum siblings;
    result = session.Query(
        Wql::SelectWhere(L_CLASS_ZOREL_ETHERNETADAPTER.name, L_PROP_ETHERNETADAPTER_SLOTID.name, slot),
        siblings, L"ExecQuery -> SELECT * FROM ADAPTER FOR SLOTID -> FAIL");
    CComPtr<IWbemClassObject> sibling;
    while (SUCCEEDED(result) && siblings.Next(sibling)) {
        result = AppendPorts(session, sibling, ports);
    }
    if (FAILED(result)) {
        return result;
    }
    return FAILED(siblings.Result()) ? trace.Fail(siblings.Result(), L"pEnumAdapters -> Next") : S_OK;
}

HRESULT CQuillet::AppendPorts(const ProviderSession& session, IWbemClassObject* adapter,
                              CAdapterPorts& ports) {
    LONG status = 0;
    PropertyReader read(adapter, L"pInstanceHandle");
    if (read.Long(L_PROP_ETHERNETADAPTER_ADAPTERSTATUS, status).Failed()) {
        return read.Result();
    }
    if (status & HARDWARE_MISSING) {
        TraceText(L"Hardware is realy Missing");
        return S_OK;
    }
    TraceText(L"Hardware is present");
    std::wstring path;
    if (read.When(PropertyReader::OnNull::Fail).String(L_ZOREL_PATH, path).Failed()) {
        return read.Result();
    }
    ProviderEnum memberships;
    HRESULT result = session.Query(Wql::References(path, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name), memberships,
                                   L"ExecQuery -> BSTR_QUERY_REFERENCE");
    CComPtr<IWbemClassObject> membership;
    while (SUCCEEDED(result) && memberships.Next(membership)) {
        std::wstring team;
        result = PropertyReader(membership, L"pInstanceHandle", PropertyReader::OnNull::Fail)
                     .String(L_PROP_TEAMEDMEMBERADAPTER_GROUPCOMPONENT, team)
                     .Result();
        if (FAILED(result)) {
            return result;
        }
        std::unique_ptr<CAdapterPort> port(new (std::nothrow) CAdapterPort);
        if (!port) {
            TraceText(L"Mem alloc problem in CAdapterPort *pAdapterPort");
            return E_FAIL;
        }
        port->m_wsAdapterID = path;
        port->m_wsTeamID = team;
        port->m_bTeamed = true;
        AddRecord(ports, std::move(port));
    }
    if (SUCCEEDED(result) && FAILED(memberships.Result())) {
        TraceText(L"pEnumTeamedMemberAdapters -> Next");
        result = memberships.Result();
    }
    return result;
}

HRESULT CQuillet::IdentifyAdapter(const std::wstring& adapterId, LONG seconds) {
    const OperationTrace trace(L"IdentifyAdapter");
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"(wsAdapterID.empty())");
    }
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_IDENTIFY);
    PropertyReader read = method.Put(L_PARAM_ETHERNETADAPTER_IDENTIFY_SECONDS, VariantOfLong(seconds))
                              .Exec(adapterId.c_str(), L"wsAdapterID")
                              .Read(L"pAdapter_OutParams");
    return ReadVerdict(read, L"IdentifyAdapter");
}

HRESULT CQuillet::GetHbaPath(const std::wstring& adapterId, std::wstring& path) {
    const OperationTrace trace(L"GetHbaPath");
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"(wsAdapterID.empty())");
    }
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_GET_HBA_PATH);
    PropertyReader read = method.Exec(adapterId.c_str(), L"wsAdapterID").Read(L"pAdapter_OutParams");
    read.String(L_PARAM_ETHERNETADAPTER_HBA_PATH, path);
    return ReadVerdict(read, L"GetHbaPath");
}

HRESULT CQuillet::GetNDIS_Version(const std::wstring& adapterId, int& major, int& minor) {
    const OperationTrace trace(L"GetNDIS_Version");
    major = -1;
    minor = -1;
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"(wsAdapterID.empty())");
    }
    const ProviderSession session(*this);
    return ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_GETNDISVERSION)
        .Exec(adapterId.c_str(), L"wsAdapterID")
        .Read(L"pAdapter_OutParams")
        .Int(L_PARAM_ETHERNETADAPTER_NDIS_MAJOR, major)
        .Int(L_PARAM_ETHERNETADAPTER_NDIS_MINOR, minor)
        .Result();
}

HRESULT CQuillet::GetAdapterWarnings(const std::wstring& adapterId, ULONGLONG& warnings) {
    const OperationTrace trace(L"GetAdapterWarnings");
    warnings = 0;
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"GetAdapterWarnings() - invalid adapter GUID )");
    }
    const ProviderSession session(*this, L"GetAdapterWarnings() - pIWbemService or pIWbemContext is NULL)");
    return ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER,
                          L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS)
        .Exec(adapterId.c_str(), L"wsAdapterID",
              L"GetAdapterWarnings() - ExecMethod failed -> wsAdapterID, "
              L"L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS")
        .Read(L"pAdapter_OutParams")
        // The line names another operation on purpose: whoever searches trace files knows it so.
        .UInt64(L_PARAM_ETHERNETADAPTER_WARNINGS, warnings,
                L"GetAdapterFanStatus() - GetPropertyAsLong failed -> pAdapter_OutParams, "
                L"L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS")
        .Result();
}
