// Booting from an iSCSI target: the adapters that can, and the part that each of them plays.
#include <quillet/Quillet.h>

#include "Provider/MakeRecord.h"
#include "Provider/ObjectIds.h"
#include "Provider/ProviderMethod.h"
#include "Variants/VariantValue.h"

namespace {

/// Reads an adapter of the list.
HRESULT ReadAdapter(IWbemClassObject* instance, CISCSIAdapter& adapter) {
    PropertyReader read(instance, L"pIAdapter_Instance");
    read.String(L_ZOREL_PATH, adapter.m_wsPath, L"CQuillet::EnumerateISCSIAdapters failed to get GUID")
        .Code(L_PROP_ISCSI_ADAPTERS_STATUS, adapter.m_eStatus)
        .String(L_PROP_ISCSI_ADAPTERS_ADAPTERNAME, adapter.m_wsAdapterName);
    if (!read.Failed()) {
        ObjectIdFromPath(ObjectKind::BootAgent, adapter.m_wsPath, adapter.m_wsBootAgentID);
    }
    return read.Result();
}

} // namespace

HRESULT CQuillet::EnumerateISCSIAdapters(CISCSIAdapters& adapters) {
    const OperationTrace trace(L"EnumerateISCSIAdapters");
    adapters.RemoveAll();
    const ProviderSession session(*this);
    return session
        .Enumerate(L_CLASS_ZOREL_ISCSI_ADAPTERS, L"CreateInstanceEnum -> L_CLASS_ZOREL_ISCSI_ADAPTERS")
        .ForEach(L"pEnumAdapters -> Next", [&](IWbemClassObject* instance) {
            return AppendRecord<CISCSIAdapter>(adapters, L"pAdapter == NULL", [&](CISCSIAdapter& adapter) {
                return ReadAdapter(instance, adapter);
            });
        });
}

// The interface takes the ID by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
HRESULT CQuillet::SetiSCSIStatus(std::wstring bootAgentId, CISCSIAdapter::iSCSIStatus status,
                                 unsigned int& returnCode) {
    const OperationTrace trace(L"SetiSCSIStatus");
    const ProviderSession session(*this);
    LONG verdict = 0;
    ProviderMethod method(session, L_CLASS_ZOREL_ISCSI_ADAPTERS, L_METHOD_BOOTAGENT_SET_ISCSI_STATUS);
    PropertyReader read = method.Put(L_PARAM_SET_ISCSI_STATE, VariantOfLong(status))
                              .Exec(bootAgentId, L"wsBootAgtID")
                              .NeedAnswer(L"ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_SET_ISCSI_STATUS, "
                                          L"pWbemClassObject_OutParams -> NULL")
                              .Read(L"pIWbemClassObject_OutParams");
    // The line speaks of a text, and of a priority, on purpose: it is known so.
    read.Long(L_PARAM_SET_ISCSI_PRIORITY_RETURN, verdict,
              L"GetPropertyAsString -> pIWbemClassObject_OutParams -> L_PARAM_SET_ISCSI_PRIORITY_RETURN");
    if (read.Found()) {
        returnCode = static_cast<unsigned int>(verdict);
    }
    return SuccessOr(read.Result());
}

HRESULT CQuillet::GetiSCSI_Info(const std::wstring& adapterId, CiSCSI& info) {
    const OperationTrace trace(L"GetiSCSI_Info");
    const ProviderSession session(*this, NoAdapter(adapterId));
    HRESULT result =
        ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_ISISCSIENABLED)
            .Exec(adapterId, L"wsAdapterID")
            .NeedAnswer(L"ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_ISISCSIENABLED, "
                        L"pAdapter_OutParams -> NULL")
            .Read()
            .Long(L_PARAM_ETHERNETADAPTER_ISCSISTATUS, info.m_lStatus)
            .Result();
    if (FAILED(result)) {
        return result;
    }
    result = ProviderMethod(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_ISISCSISUPPORTED)
                 .Exec(adapterId, L"wsAdapterID")
                 .NeedAnswer(L"ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_ISISCSISUPPORTED, "
                             L"pAdapter_OutParams -> NULL")
                 .Read()
                 .Bool(L_PARAM_ETHERNETADAPTER_ISISCSIOS, info.m_bOSSupported)
                 .Bool(L_PARAM_ETHERNETADAPTER_ISISCSIPATCH, info.m_bPatchPresent)
                 .Bool(L_PARAM_ETHERNETADAPTER_ISISCSIHOTFIX, info.m_bHotFixPresent)
                 .Result();
    return SuccessOr(result);
}
