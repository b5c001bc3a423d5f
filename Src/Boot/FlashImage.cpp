#include "Boot/FlashImage.h"

#include "Variants/SafeArray.h"
#include "Provider/Trace.h"

#include <cstring>

namespace FlashImage {

Refusal NoImage(const std::wstring& bootAgentId, LONG size, const unsigned char* data) {
    const bool refused = bootAgentId.empty() || !data || size <= 0;
    if (!refused) {
        TraceText(L"Checks done");
    }
    return {refused, L"((wsBootAgtID.empty()) || (pFlashData == NULL) || (rlFlashSize <= 0))"};
}

HRESULT MakeBytes(LONG size, const unsigned char* data, _variant_t& bytes) {
    bytes.Clear();
    SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
    if (!array) {
        TraceText(L"(pSafeArray == NULL)");
        return E_OUTOFMEMORY;
    }
    V_ARRAY(&bytes) = array;
    bytes.vt = VT_ARRAY | VT_UI1;
    TraceText(L"Before SafeArrayAccessData");
    void* place = nullptr;
    const HRESULT result = SafeArrayAccessData(array, &place);
    if (FAILED(result)) {
        TraceText(L"SafeArrayAccessData -> pSafeArray");
        return result;
    }
    std::memcpy(place, data, static_cast<std::size_t>(size));
    SafeArrayUnaccessData(array);
    TraceText(L"Fill up data into VARIANT");
    return S_OK;
}

HRESULT MakeTypes(const CSettings& imageTypes, _variant_t& types) {
    std::vector<std::wstring> captions;
    captions.reserve(imageTypes.m_vecItems.size());
    for (const CSetting* type : imageTypes.m_vecItems) {
        captions.push_back(type ? type->m_wsCaption : std::wstring());
    }
    if (!MakeTextArray(captions, types, EmptyText::Null)) {
        TraceText(L"(NULL == pSafeArray) -> Create fail");
        return E_FAIL;
    }
    return S_OK;
}

Method::Method(const ProviderSession& session, const ProviderName& method)
    : m_method(session, L_CLASS_ZOREL_BOOTAGENT, method, ProviderMethod::ClassFetch::WithContext,
               L"Get input params for the method called ProgramFlash()") {}

Method& Method::Put(const ProviderName& parameter, const _variant_t& value) {
    m_method.Put(parameter, value, L"pIWbemClassObject_InParams -> Put, ");
    return *this;
}

PropertyReader Method::Exec(const std::wstring& bootAgentId, const wchar_t* failure) {
    return m_method.Exec(bootAgentId, L"wsBootAgtID", failure)
        .NeedAnswer(L"(pIWbemClassObject_OutParams -> NULL)")
        .Read(L"pIWbemClassObject_OutParams");
}

HRESULT ReadReturnCode(PropertyReader& read, int& returnCode, bool* unreadable) {
    // The bit of the code that says so; the others are the provider's own.
    constexpr LONG UNREADABLE = 1;
    _variant_t value;
    read.Plain(L_PARAM_BOOTAGENT_FLASHRETCODE, value, L"pIWbemClassObject_OutParams -> Get, ");
    const bool told = !read.Failed() && value.vt == VT_I4;
    if (told) {
        returnCode = static_cast<int>(V_I4(&value));
    }
    if (unreadable) {
        *unreadable = told && (V_I4(&value) & UNREADABLE) != 0;
    }
    return read.Result();
}

} // namespace FlashImage
