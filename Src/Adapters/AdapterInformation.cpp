// What is known of one adapter: its names, link and state, capabilities, and identity on its bus.
#include <quillet/Quillet.h>

#include "Adapters/CapabilityCodes.h"
#include "Provider/MakeRecord.h"
#include "Provider/ProviderInstance.h"
#include "Variants/SafeArray.h"

using ATL::CComBSTR;

namespace {

constexpr const wchar_t* NO_DYNAMIC_INFO = L"rAdapter.m_pAdapterDynamicInfo == NULL";

/// Capabilities whose presence is worth a line of its own in every trace file.
const wchar_t* CapabilityTrace(LONG code) {
    switch (code) {
    case 50:
        return L"  QUILLET!!!!!!! C_ETHERNET_ADAPTER_CAPABILITY_POWER_MGMT";
    case 64:
        return L"  QUILLET!!!!!!! C_ETHERNET_ADAPTER_CAPABILITY_LINKSEC";
    default:
        return nullptr;
    }
}

/// Sets the flag of a code; a code that is not known sets none.
void SetCapability(CAdapterCapInfo& capabilities, LONG code) {
    for (const CAdapterCapInfo::Flag& flag : CAdapterCapInfo::Flags()) {
        if (flag.m_lCode == code) {
            capabilities.*flag.m_pFlag = true;
            if (const wchar_t* text = CapabilityTrace(code)) {
                TraceText(text);
            }
            return;
        }
    }
}

} // namespace

HRESULT ReadCapabilityCodes(SAFEARRAY* array, std::vector<LONG>& codes) {
    LONG lower = 0;
    HRESULT result = SafeArrayGetLBound(array, 1, &lower);
    if (FAILED(result)) {
        TraceText(L"SafeArrayGetLBound -> vAdapterCapabilities.parray");
        return result;
    }
    LONG upper = 0;
    result = SafeArrayGetUBound(array, 1, &upper);
    if (FAILED(result)) {
        TraceText(L"SafeArrayGetUBound -> vAdapterCapabilities.parray");
        return result;
    }
    for (LONGLONG index = lower; index <= upper; ++index) {
        LONG code = 0;
        // A code that cannot be read is one that the adapter does not have.
        if (SUCCEEDED(ReadElement(array, static_cast<LONG>(index), code))) {
            codes.push_back(code);
        }
    }
    return S_OK;
}

HRESULT CQuillet::GetAdapterBasicInfo(const std::wstring& adapterId, CAdapter& adapter) {
    const OperationTrace trace(L"GetAdapterBasicInfo");
    const ProviderSession session(*this, NoAdapter(adapterId));
    const ProviderInstance instance(session, adapterId, L"GetObject -> wsAdapterID");
    return instance.Read(L"pInstanceHandle")
        .String(L_PROP_ETHERNETADAPTER_NAME, adapter.m_wsName)
        .String(L_PROP_ETHERNETADAPTER_ORIGNAME, adapter.m_wsDisplayName)
        .String(L_PROP_ETHERNETADAPTER_DEVICEID, adapter.m_wsDeviceID)
        .String(L_PROP_ETHERNETADAPTER_SLOTID, adapter.m_wsSlotID)
        .Result();
}

HRESULT CQuillet::GetAdapterDynamicInfo(const std::wstring& adapterId, CAdapter& adapter) {
    const OperationTrace trace(L"GetAdapterDynamicInfo");
    const ProviderSession session(*this,
                                  {adapterId.empty() || adapter.m_pAdapterDynamicInfo,
                                   L"((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterDynamicInfo))"});
    const ProviderInstance instance(session, adapterId, L"GetObject -> wsAdapterID");
    if (instance.Failed()) {
        return instance.Result();
    }
    // The adapter has its record from here on, also when a read fails: what was read is worth showing.
    adapter.m_pAdapterDynamicInfo = MakeRecord<CAdapterDynamicInfo>(NO_DYNAMIC_INFO).release();
    if (!adapter.m_pAdapterDynamicInfo) {
        return E_FAIL;
    }
    CAdapterDynamicInfo& info = *adapter.m_pAdapterDynamicInfo;
    PropertyReader read = instance.Read(L"pInstanceHandle");
    read.Code(L_PROP_ETHERNETADAPTER_SPEED, info.m_eLinkSpeed, GetLinkSpeed)
        .Code(L_PROP_ETHERNETADAPTER_LINKSECSTATUS, info.m_eLinkSecStatus, GetLinkSecStatus);
    bool fullDuplex = false;
    if (read.Bool(L_PROP_ETHERNETADAPTER_FULLDUPLEX, fullDuplex).Found()) {
        info.m_eDuplexMode = GetDuplex(fullDuplex);
    }
    return read.Long(L_PROP_ETHERNETADAPTER_ADAPTERSTATUS, info.m_lAdapterStatus)
        .Long(L_PROP_ETHERNETADAPTER_STATUSINFO, info.m_lStatusInfo)
        .Long(L_PROP_ETHERNETADAPTER_AVAILABILITY, info.m_lAvailability)
        .Long(L_PROP_ETHERNETADAPTER_HARDWARESTATUS, info.m_lHardwareStatus)
        .String(L_PROP_ETHERNETADAPTER_STATUS, info.m_wsStatus)
        .Result();
}

HRESULT CQuillet::GetAdapterStatus(const std::wstring& adapterId, CAdapter& adapter) {
    const OperationTrace trace(L"GetAdapterStatus");
    const ProviderSession session(*this, NoAdapter(adapterId));
    const ProviderInstance instance(session, adapterId, L"GetObject -> wsAdapterID");
    if (instance.Failed()) {
        return instance.Result();
    }
    if (!adapter.m_pAdapterDynamicInfo) {
        adapter.m_pAdapterDynamicInfo = MakeRecord<CAdapterDynamicInfo>(NO_DYNAMIC_INFO).release();
        if (!adapter.m_pAdapterDynamicInfo) {
            return E_FAIL;
        }
    }
    return instance.Read(L"pInstanceHandle")
        .Long(L_PROP_ETHERNETADAPTER_ADAPTERSTATUS, adapter.m_pAdapterDynamicInfo->m_lAdapterStatus)
        .Result();
}

HRESULT CQuillet::GetAdapterCapabilities(const std::wstring& adapterId, CAdapter& adapter) {
    const OperationTrace trace(L"GetAdapterCapabilities");
    const ProviderSession session(*this,
                                  {adapterId.empty() || adapter.m_pAdapterCapabilities,
                                   L"((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterCapabilities))"});
    const ProviderInstance instance(session, adapterId, L"GetObject -> wsAdapterID");
    _variant_t value;
    PropertyReader read = instance.Read(L"pInstanceHandle");
    if (read.Plain(L_PROP_ETHERNETADAPTER_CAPABILITIES, value).Failed()) {
        return read.Result();
    }
    if (!(value.vt & VT_ARRAY)) {
        return trace.Fail(RESULT_WBEM_FAILED, L"vAdapterCapabilities.vt - NA");
    }
    SAFEARRAY* array = ArrayOf(value);
    if (!array) {
        return trace.Fail(RESULT_WBEM_FAILED, L"vAdapterCapabilities.parray - EMPTY");
    }
    std::vector<LONG> codes;
    const HRESULT result = ReadCapabilityCodes(array, codes);
    if (FAILED(result)) {
        return result;
    }
    adapter.m_pAdapterCapabilities =
        MakeRecord<CAdapterCapInfo>(L"rAdapter.m_pAdapterCapabilities == NULL").release();
    if (!adapter.m_pAdapterCapabilities) {
        return E_FAIL;
    }
    for (const LONG code : codes) {
        SetCapability(*adapter.m_pAdapterCapabilities, code);
    }
    return S_OK;
}

HRESULT CQuillet::GetAdapterPCIInfo(const std::wstring& adapterId, CPCIInfo& info) {
    const OperationTrace trace(L"GetAdapterPCIInfo");
    const ProviderSession session(*this, NoAdapter(adapterId));
    const ProviderInstance instance(session, adapterId, L"GetObject -> wsAdapterID");
    std::wstring busType;
    PropertyReader read = instance.Read(L"pInstanceHandle");
    read.String(L_PROP_ETHERNETADAPTER_CONTROLLERID, info.m_wsControllerID)
        .String(L_PROP_ETHERNETADAPTER_MEDIATYPE, info.m_wsMediaType)
        .String(L_PROP_ETHERNETADAPTER_BUSTYPE, busType);
    if (read.Failed()) {
        return read.Result();
    }
    if (busType == L"PCI Express") {
        read.String(L_PROP_ETHERNETADAPTER_NEGLINKWIDTH, info.m_wsNegotiatedLinkWidth);
    } else {
        TraceText(L"BusType is not PCI Express - did not get the NegLinkWidth");
        info.m_wsNegotiatedLinkWidth.clear();
    }
    int phyDevice = 0;
    read.String(L_PROP_ETHERNETADAPTER_PORTNUMBER, info.m_wsPortNumber)
        .Int(L_PROP_ETHERNETADAPTER_PHYDEVICE, phyDevice);
    if (!read.Failed() && phyDevice == 0) {
        TraceText(L"The Value Reurned is empty NVal is Zero");
    }
    std::vector<CComBSTR> addresses;
    std::wstring permanent;
    read.String(L_PROP_ETHERNETADAPTER_PARTNUMBER, info.m_wsPartNumber)
        .Array(L_PROP_ETHERNETADAPTER_NETWORKADDRESSES, addresses)
        .String(L_PROP_ETHERNETADAPTER_PERMANENTADDRESS, permanent);
    if (read.Failed()) {
        return read.Result();
    }
    if (addresses.size() == 1 && addresses.front()) {
        info.m_wsMacAddress = addresses.front();
    } else {
        TraceText(L"ERROR: Invalid program state. Wrong number of MAC addresses.");
        info.m_wsMacAddress = permanent;
    }
    LumTrace().Print(L"current MAC address: %s harware MAC address: %s", info.m_wsMacAddress.c_str(),
                     permanent.c_str());
    return read.String(L_PROP_ETHERNETADAPTER_EEPROMVERSION, info.m_wsEEPROMVersion)
        .String(L_PROP_ETHERNETADAPTER_SANMACADDRESS, info.m_wsSanMacAddress)
        .String(L_PROP_ETHERNETADAPTER_PCIDEVICEID, info.m_wsPCIDeviceID)
        .Result();
}
