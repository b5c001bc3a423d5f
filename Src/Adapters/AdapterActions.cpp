// The ports of an adapter's board, and what one adapter can be asked to do or tell.
#include <quillet/Quillet.h>

#include "Provider/MakeRecord.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderMethod.h"
#include "Adapters/TeamMemberships.h"
#include "Variants/VariantValue.h"
#include "Provider/Wql.h"

namespace {

using OnNull = PropertyReader::OnNull;

/// The bit of "AdapterStatus" that says that the hardware is not there.
constexpr LONG HARDWARE_MISSING = 4;

} // namespace

HRESULT CQuillet::EnumerateOtherPortOfAdapter(const std::wstring& adapterId, CAdapterPorts& ports) {
    const OperationTrace trace(L"EnumerateOtherPortOfAdapter");
    const ProviderSession session(*this, NoAdapter(adapterId));
    const ProviderInstance adapter(session, adapterId, L"GetObject -> wsAdapterID");
    std::wstring slot;
    const HRESULT result = adapter.Read(L"pInstanceHandle")
                               .When(OnNull::Fail)
                               .String(L_PROP_ETHERNETADAPTER_SLOTID, slot)
                               .Result();
    if (FAILED(result)) {
        return result;
    }
    return session
        .Query(Wql::SelectWhere(L_CLASS_ZOREL_ETHERNETADAPTER.name, L_PROP_ETHERNETADAPTER_SLOTID.name, slot),
               L"ExecQuery -> SELECT * FROM ADAPTER FOR SLOTID -> FAIL")
        .ForEach(L"pEnumAdapters -> Next",
                 [&](IWbemClassObject* sibling) { return AppendPorts(session, sibling, ports); });
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
    if (read.When(OnNull::Fail).String(L_ZOREL_PATH, path).Failed()) {
        return read.Result();
    }
    return Memberships(session, path).ForEach(MEMBERSHIPS_BROKE_OFF, [&](IWbemClassObject* membership) {
        std::wstring team;
        const HRESULT result = PropertyReader(membership, L"pInstanceHandle")
                                   .When(OnNull::Fail)
                                   .String(L_PROP_TEAMEDMEMBERADAPTER_GROUPCOMPONENT, team)
                                   .Result();
        if (FAILED(result)) {
            return result;
        }
        return AppendRecord<CAdapterPort>(ports, L"Mem alloc problem in CAdapterPort *pAdapterPort",
                                          [&](CAdapterPort& port) {
                                              port.m_wsAdapterID = path;
                                              port.m_wsTeamID = team;
                                              port.m_bTeamed = true;
                                              return S_OK;
                                          });
    });
}

HRESULT CQuillet::IdentifyAdapter(const std::wstring& adapterId, LONG seconds) {
    const OperationTrace trace(L"IdentifyAdapter");
    const ProviderSession session(*this, NoAdapter(adapterId));
    return SuccessOr(ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_IDENTIFY)
                         .Put(L_PARAM_ETHERNETADAPTER_IDENTIFY_SECONDS, VariantOfLong(seconds))
                         .Exec(adapterId, L"wsAdapterID")
                         .Read()
                         .Verdict(L"IdentifyAdapter")
                         .Result());
}

HRESULT CQuillet::GetHbaPath(const std::wstring& adapterId, std::wstring& path) {
    const OperationTrace trace(L"GetHbaPath");
    const ProviderSession session(*this, NoAdapter(adapterId));
    return SuccessOr(
        ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_GET_HBA_PATH)
            .Exec(adapterId, L"wsAdapterID")
            .Read()
            .String(L_PARAM_ETHERNETADAPTER_HBA_PATH, path)
            .Verdict(L"GetHbaPath")
            .Result());
}

HRESULT CQuillet::GetNDIS_Version(const std::wstring& adapterId, int& major, int& minor) {
    const OperationTrace trace(L"GetNDIS_Version");
    major = -1;
    minor = -1;
    const ProviderSession session(*this, NoAdapter(adapterId));
    return ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_GETNDISVERSION)
        .Exec(adapterId, L"wsAdapterID")
        .Read()
        .Int(L_PARAM_ETHERNETADAPTER_NDIS_MAJOR, major)
        .Int(L_PARAM_ETHERNETADAPTER_NDIS_MINOR, minor)
        .Result();
}

HRESULT CQuillet::GetAdapterWarnings(const std::wstring& adapterId, ULONGLONG& warnings) {
    const OperationTrace trace(L"GetAdapterWarnings");
    warnings = 0;
    const ProviderSession session(*this,
                                  {adapterId.empty(), L"GetAdapterWarnings() - invalid adapter GUID )"},
                                  L"GetAdapterWarnings() - pIWbemService or pIWbemContext is NULL)");
    return ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER,
                          L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS)
        .Exec(adapterId, L"wsAdapterID",
              L"GetAdapterWarnings() - ExecMethod failed -> wsAdapterID, "
              L"L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS")
        .Read()
        // The line names another operation on purpose: whoever searches trace files knows it so.
        .UInt64(L_PARAM_ETHERNETADAPTER_WARNINGS, warnings,
                L"GetAdapterFanStatus() - GetPropertyAsLong failed -> pAdapter_OutParams, "
                L"L_METHOD_ETHERNETADAPTER_GET_ADAPTER_WARNINGS")
        .Result();
}
