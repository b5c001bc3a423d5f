// Boot agents: what is known of one, reading its flash memory and writing it.
#include <quillet/Quillet.h>

#include "Boot/FlashImage.h"
#include "Lum2InstUtility.h"
#include "Provider/ObjectIds.h"
#include "Provider/ProviderInstance.h"
#include "Variants/SafeArray.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

#include <new>

using ATL::CComBSTR;

namespace {

/// The path that resolves on whatever the connection is open to.
constexpr int RELATIVE_PATH = 1;

/// Copies the bytes of an array into a buffer of the caller's. Nothing is allocated for a length that makes
/// no sense.
HRESULT TakeBytes(SAFEARRAY* array, LONG& size, unsigned char** data) {
    LONG length = 0;
    const wchar_t* step = nullptr;
    HRESULT result = ArrayLength(array, length, step);
    if (FAILED(result)) {
        TraceText(step, L" -> vFlashData.parray");
        return result;
    }
    size = length;
    void* buffer = ::operator new(static_cast<std::size_t>(length), std::nothrow);
    if (!buffer) {
        TraceText(L"(!pbyBuffer)");
        return E_OUTOFMEMORY;
    }
    result = CopyBytes(array, static_cast<unsigned char*>(buffer), length);
    if (FAILED(result)) {
        ::operator delete(buffer);
        TraceText(L"SafeArrayAccessData -> vFlashData.parray");
        return result;
    }
    *data = static_cast<unsigned char*>(buffer);
    return S_OK;
}

} // namespace

HRESULT CQuillet::GetAdapterBootAgentInfo(const std::wstring& adapterId, CBootAgent& bootAgent) {
    const OperationTrace trace(L"GetAdapterBootAgentInfo");
    const ProviderSession session(*this, NoAdapter(adapterId));
    if (session.Failed()) {
        return session.Result();
    }
    std::wstring objectId;
    if (!ObjectIdFromPath(ObjectKind::Adapter, adapterId, objectId)) {
        return trace.Fail(E_FAIL, L"GetObjectIdFromPath -> wsAdapterID");
    }
    CComBSTR path;
    CZorel_EthernetAdapterMgrHelper::MakePathFromBootAgentId(RELATIVE_PATH, objectId.c_str(), path);
    const std::wstring bootAgentPath = TextOf(path);
    TraceText(L"Boot Agent WMI Object ID is ", bootAgentPath.c_str());

    const wchar_t* instance = L"pIAdapterBootAgtInstance";
    const ProviderInstance agent(session, bootAgentPath, L"pIAdapterBootAgtInstance -> FAIL");
    PropertyReader read = agent.Read(instance);
    LONG imageType = 0;
    read.String(L_ZOREL_PATH, bootAgent.m_wsBootAgentID)
        .String(L_PROP_BOOTAGENT_VERSION, bootAgent.m_wsVersion)
        .Long(L_PROP_BOOTAGENT_VERSIONNUMBER, bootAgent.m_lVersionNumber)
        .Bool(L_PROP_BOOTAGENT_UPDATEAVAILABLE, bootAgent.m_bUpdateAvailable)
        .Long(L_PROP_BOOTAGENT_FLASHIMAGETYPE, imageType);
    if (read.Found()) {
        bootAgent.m_lFlashImageType = imageType;
        std::wstring text;
        const HRESULT result =
            GetDataFromValueMap(L_CLASS_ZOREL_BOOTAGENT, L_PROP_BOOTAGENT_FLASHIMAGETYPE, imageType, text);
        if (FAILED(result)) {
            return trace.Fail(result, L"GetDataFromValueMap -> L_PROP_BOOTAGENT_FLASHIMAGETYPE");
        }
        bootAgent.m_wsFlashImageType = text;
    }
    read.Long(L_PROP_BOOTAGENT_ISCSI_STATUS, bootAgent.m_lISCSIStatus)
        .Long(L_PROP_BOOTAGENT_INSTALLEDFLASHIMAGETYPES, bootAgent.m_lInstalledFlashImageTypes);
    return SuccessOr(read.Result());
}

HRESULT CQuillet::ReadBootAgentFlash(const std::wstring& bootAgentId, LONG& size, unsigned char** data) {
    const OperationTrace trace(L"ReadBootAgentFlash");
    if (data) {
        *data = nullptr;
    }
    const ProviderSession session(
        *this, {bootAgentId.empty() || !data, L"((wsBootAgtID.empty()) || (ppbyFlashData == NULL))"});
    _variant_t flash;
    const HRESULT result = ProviderMethod(session, L_CLASS_ZOREL_BOOTAGENT, L_METHOD_BOOTAGENT_READFLASH)
                               .Exec(bootAgentId, L"wsBootAgtID")
                               .NeedAnswer(L"ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_READFLASH, "
                                           L"pWbemClassObject_OutParams -> NULL")
                               .Read(L"pWbemClassObject_OutParams")
                               .Plain(L_PARAM_BOOTAGENT_READFLASH_FLASHDATA, flash)
                               .Result();
    if (FAILED(result)) {
        return result;
    }
    SAFEARRAY* array = ArrayOf(flash);
    if (!array) {
        return trace.Fail(E_FAIL, L"((vFlashData.vt == VT_EMPTY) || (vFlashData.vt == VT_NULL) || "
                                  L"(!vFlashData.parray))");
    }
    return TakeBytes(array, size, data);
}

HRESULT CQuillet::WriteBootAgentFlash(const std::wstring& bootAgentId, const LONG& size, unsigned char* data,
                                      CSettings& imageTypes, int& returnCode) {
    const OperationTrace trace(L"WriteBootAgentFlash");
    const ProviderSession session(*this, FlashImage::NoImage(bootAgentId, size, data));
    _variant_t bytes;
    _variant_t types;
    HRESULT result = session.Failed() ? session.Result() : FlashImage::MakeBytes(size, data, bytes);
    if (SUCCEEDED(result)) {
        result = FlashImage::MakeTypes(imageTypes, types);
    }
    if (FAILED(result)) {
        return result;
    }
    FlashImage::Method method(session, L_METHOD_BOOTAGENT_PROGRAMFLASHEX);
    method.Put(L_PARAM_BOOTAGENT_PROGRAMFLASHEX_FLASHDATA, bytes);
    if (!method.Failed()) {
        TraceText(L"Fill up input parameter, Action");
    }
    PropertyReader read =
        method.Put(L_PARAM_BOOTAGENT_PROGRAMFLASHEX_IMAGETYPE, types)
            .Exec(bootAgentId, L"ExecMethod -> wsBootAgtID, L_METHOD_BOOTAGENT_PROGRAMFLASHEX");
    return SuccessOr(FlashImage::ReadReturnCode(read, returnCode));
}
