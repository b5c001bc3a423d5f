// Listing the adapters, and the two forms of an adapter's identity.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "Lum2InstUtility.h"
#include "ObjectIds.h"
#include "PropertyReader.h"
#include "ProviderEnum.h"
#include "ProviderSession.h"
#include "Trace.h"
#include "VariantValue.h"

#include <memory>
#include <new>

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

/// Asks for the few properties that identify an adapter: the rest costs the provider a trip to the driver.
constexpr LONG IDENTITY_ONLY = 1;

} // namespace

HRESULT CQuillet::EnumerateAdapters(CAdapters& adapters) {
    const OperationTrace trace(L"EnumerateAdapters");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    // Not a PartialRetrieval, on purpose: a refused enumeration leaves the context in this mode, which harms
    // nobody, since the context is this call's own and goes with it.
    session.Retrieve(IDENTITY_ONLY);
    ProviderEnum instances;
    const HRESULT result = session.Enumerate(L_CLASS_ZOREL_ETHERNETADAPTER, instances,
                                             L"CreateInstanceEnum -> L_CLASS_ZOREL_ETHERNETADAPTER");
    if (FAILED(result)) {
        return result;
    }
    session.Retrieve(ProviderSession::Everything);

    CComPtr<IWbemClassObject> instance;
    while (instances.Next(instance)) {
        std::unique_ptr<CAdapter> adapter(new (std::nothrow) CAdapter);
        if (!adapter) {
            return trace.Fail(E_FAIL, L"pAdapter == NULL");
        }
        PropertyReader read(instance, L"pIAdapter_Instance", PropertyReader::OnNull::Fail);
        read.String(L_ZOREL_PATH, adapter->m_wsAdapterID)
            .String(L_PROP_ETHERNETADAPTER_NAME, adapter->m_wsName)
            .String(L_PROP_ETHERNETADAPTER_ORIGNAME, adapter->m_wsDisplayName)
            .String(L_PROP_ETHERNETADAPTER_DEVICEID, adapter->m_wsDeviceID);
        if (read.Failed()) {
            return E_FAIL;
        }
        AddRecord(adapters, std::move(adapter));
    }
    // An enumeration that broke off is not a shorter list of adapters.
    return FAILED(instances.Result()) ? trace.Fail(instances.Result(), L"pEnumAdapters -> Next") : S_OK;
}

HRESULT CQuillet::GetGUI(const std::wstring& adapterId, std::wstring& objectId) {
    const OperationTrace trace(L"GetGUI");
    return ObjectIdFromPath(ObjectKind::Ethernet, adapterId, objectId) ? S_OK : RESULT_WBEM_FAILED;
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
