// Listing the adapters, and the two forms of an adapter's identity.
#include <quillet/Quillet.h>

#include "Lum2InstUtility.h"
#include "Provider/MakeRecord.h"
#include "Provider/ObjectIds.h"
#include "Provider/PropertyReader.h"
#include "Provider/ProviderSession.h"
#include "Variants/VariantValue.h"

using ATL::CComBSTR;

namespace {

/// Asks for the few properties that identify an adapter: the rest costs the provider a trip to the driver.
constexpr LONG IDENTITY_ONLY = 1;

} // namespace

HRESULT CQuillet::EnumerateAdapters(CAdapters& adapters) {
    const OperationTrace trace(L"EnumerateAdapters");
    const ProviderSession session(*this);
    if (session.Failed()) {
        return session.Result();
    }
    // Not a PartialRetrieval, on purpose: a refused enumeration leaves the context in this mode, which harms
    // nobody, since the context is this call's own and goes with it.
    session.Retrieve(IDENTITY_ONLY);
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER,
                                               L"CreateInstanceEnum -> L_CLASS_ZOREL_ETHERNETADAPTER");
    if (instances.Failed()) {
        return instances.Result();
    }
    session.Retrieve(ProviderSession::Everything);
    return instances.ForEach(L"pEnumAdapters -> Next", [&](IWbemClassObject* instance) {
        return AppendRecord<CAdapter>(adapters, L"pAdapter == NULL", [&](CAdapter& adapter) {
            PropertyReader read(instance, L"pIAdapter_Instance");
            read.When(PropertyReader::OnNull::Fail)
                .String(L_ZOREL_PATH, adapter.m_wsAdapterID)
                .String(L_PROP_ETHERNETADAPTER_NAME, adapter.m_wsName)
                .String(L_PROP_ETHERNETADAPTER_ORIGNAME, adapter.m_wsDisplayName)
                .String(L_PROP_ETHERNETADAPTER_DEVICEID, adapter.m_wsDeviceID);
            // One code for whatever could not be read; the trace has the step.
            return read.Failed() ? E_FAIL : S_OK;
        });
    });
}

HRESULT CQuillet::GetGUI(const std::wstring& adapterId, std::wstring& objectId) {
    const OperationTrace trace(L"GetGUI");
    return ObjectIdFromPath(ObjectKind::Adapter, adapterId, objectId) ? S_OK : RESULT_WBEM_FAILED;
}

HRESULT CQuillet::GetAdapterID(const std::wstring& objectId, std::wstring& adapterId) {
    // This operation has no exit line.
    const OperationTrace trace(L"Entering CQuillet::GetAdapterID", nullptr);
    CComBSTR path;
    CZorel_EthernetAdapterMgrHelper::MakePathFromObjectId(0, objectId.c_str(), path,
                                                          CZorel_EthernetAdapterMgrHelper::PhysicalAdapter);
    adapterId = TextOf(path);
    LumTrace().Print(L"Adapter Path from WMI Is %s", adapterId.c_str());
    return S_OK;
}
