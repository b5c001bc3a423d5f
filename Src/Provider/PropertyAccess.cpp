// Typed property access: the getters and setters through which every operation exchanges values with the
// provider, and the switch of a context to partial retrieval.
#include <quillet/Quillet.h>

#include "Provider/GetProperty.h"
#include "Provider/ProviderSession.h"
#include "Variants/SafeArray.h"
#include "Variants/SecretVariant.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

using ATL::CComBSTR;

namespace {

/// Appends one element that was read; the integer form traces it.
void Append(std::vector<LONG>& values, LONG element) {
    LumTrace().Print(L"%ld", element);
    values.push_back(element);
}

template <typename Text>
void Append(std::vector<Text>& values, Text& element) {
    values.push_back(std::move(element));
}

/// Appends what the texts of an array read as; false for an array that holds anything else.
template <typename Element>
bool AppendInPlace(SAFEARRAY* array, LONGLONG length, std::vector<Element>& values) {
    const TextsInPlace found(array, length);
    values.reserve(values.size() + found.Texts().size());
    for (const BSTR text : found.Texts()) {
        VARIANT borrowed;
        borrowed.vt = VT_BSTR;
        V_BSTR(&borrowed) = text;
        Element element{};
        ReadVariant(borrowed, element);
        Append(values, element);
    }
    return found.Found();
}

/// Whoever asks for these keeps them: they have to be copies of their own.
bool AppendInPlace(SAFEARRAY*, LONGLONG, std::vector<CComBSTR>&) {
    return false;
}

/// Appends the elements of an array property. One that cannot be read is skipped but still counted: the
/// count is the array's length, so a caller can tell that some are missing.
template <typename Element>
HRESULT GetArray(IWbemClassObject* instance, const wchar_t* name, std::vector<Element>& values, int* count) {
    if (!instance) {
        TraceText(L"GetPropertyArray -> pIWbemClassObject == NULL");
        return E_FAIL;
    }
    FilledVariant variant;
    HRESULT result = instance->Get(name, 0, &variant, nullptr, nullptr);
    if (FAILED(result)) {
        TraceText(L"GetPropertyArray -> Get");
        return result;
    }
    if (HoldsNothing(variant)) {
        TraceText(L"GetPropertyArray -> ((vValues.vt == VT_EMPTY) || (vValues.vt == VT_NULL))");
        return E_FAIL;
    }
    SAFEARRAY* array = ArrayOf(variant);
    if (!array) {
        TraceText(L"GetPropertyArray -> pArrayValues == NULL");
        return E_FAIL;
    }
    LONG lower = 0;
    result = SafeArrayGetLBound(array, 1, &lower);
    if (FAILED(result)) {
        TraceText(L"GetPropertyArray -> hRes = SafeArrayGetLBound(pArrayValues , 1, &lLBoundValues);");
        return result;
    }
    LONG upper = 0;
    result = SafeArrayGetUBound(array, 1, &upper);
    if (FAILED(result)) {
        TraceText(L"GetPropertyArray -> hRes = SafeArrayGetUBound(pArrayValues , 1, &lUBoundValues);");
        return result;
    }
    // 64 bits: the bounds may be the ends of the range of LONG.
    const LONGLONG length = static_cast<LONGLONG>(upper) - lower + 1;
    if (!AppendInPlace(array, length, values)) {
        for (LONGLONG index = lower; index <= upper; ++index) {
            Element element{};
            result = ReadElement(array, static_cast<LONG>(index), element);
            if (SUCCEEDED(result)) {
                Append(values, element);
            }
        }
    }
    if (count) {
        *count = static_cast<int>(length);
    }
    return result;
}

void SetContextValue(IWbemContext* context, const wchar_t* name, _variant_t value) {
    // A context that refuses a value only costs the provider's optimisation; the call goes on without it.
    context->SetValue(name, 0, &value);
}

} // namespace

HRESULT CQuillet::GetPropertyAsBool(IWbemClassObject* instance, const wchar_t* name, bool& value,
                                    bool& isNull, bool* isRead) {
    return GetProperty(instance, name, value, isNull, isRead, L"GetPropertyAsBool -> pInstance == NULL");
}

HRESULT CQuillet::GetPropertyAsInt(IWbemClassObject* instance, const wchar_t* name, int& value, bool& isNull,
                                   bool* isRead) {
    LONG number = value;
    const HRESULT result =
        GetProperty(instance, name, number, isNull, isRead, L"GetPropertyAsInt -> pInstance == NULL");
    value = static_cast<int>(number);
    return result;
}

HRESULT CQuillet::GetPropertyAsLong(IWbemClassObject* instance, const wchar_t* name, LONG& value,
                                    bool& isNull, bool* isRead) {
    return GetProperty(instance, name, value, isNull, isRead, L"GetPropertyAsLong -> pInstance == NULL",
                       true);
}

HRESULT CQuillet::GetPropertyAsUINT64(IWbemClassObject* instance, const wchar_t* name, ULONGLONG& value,
                                      bool& isNull, bool* isRead) {
    // The line names the other accessor on purpose: whoever searches trace files knows it so.
    return GetProperty(instance, name, value, isNull, isRead, L"GetPropertyAsInt -> pInstance == NULL");
}

HRESULT CQuillet::GetPropertyAsString(IWbemClassObject* instance, const wchar_t* name, _bstr_t& value,
                                      bool& isNull, bool* isRead) {
    return GetProperty(instance, name, value, isNull, isRead, L"GetPropertyAsString -> pInstance == NULL");
}

HRESULT CQuillet::GetPropertyAsSecret(IWbemClassObject* instance, const wchar_t* name, std::wstring& value,
                                      bool& isNull, bool* isRead) {
    return GetProperty<SecretVariant>(instance, name, value, isNull, isRead,
                                      L"GetPropertyAsString -> pInstance == NULL");
}

HRESULT GetPropertyTexts(IWbemClassObject* instance, const wchar_t* name, std::vector<std::wstring>& values,
                         int* count) {
    return GetArray(instance, name, values, count);
}

HRESULT CQuillet::GetPropertyArray(IWbemClassObject* instance, const wchar_t* name, std::vector<LONG>& values,
                                   int* count) {
    return GetArray(instance, name, values, count);
}

HRESULT CQuillet::GetPropertyArray(IWbemClassObject* instance, const wchar_t* name,
                                   std::vector<CComBSTR>& values, int* count) {
    return GetArray(instance, name, values, count);
}

HRESULT CQuillet::WriteProperty(IWbemClassObject* instance, const wchar_t* name, VARIANT& value,
                                const wchar_t* disconnected) {
    const ProviderSession session(*this, disconnected);
    if (session.Failed()) {
        return session.Result();
    }
    // These two lines name the text form for every type.
    if (!instance) {
        TraceText(L"SetPropertyAsString -> pInstance == NULL");
        return E_FAIL;
    }
    const HRESULT result = instance->Put(name, 0, &value, 0);
    if (FAILED(result)) {
        TraceText(L"SetPropertyAsString -> pInstance->Put, rbstrName");
        return result;
    }
    return session.Commit(instance, nullptr, nullptr);
}

HRESULT CQuillet::SetPropertyAsLong(IWbemClassObject* instance, const wchar_t* name, const LONG& value) {
    _variant_t variant = VariantOfLong(value);
    return WriteProperty(instance, name, variant,
                         L"SetPropertyAsLong -> ((pIWbemService == NULL) || (pIWbemContext == NULL))");
}

HRESULT CQuillet::SetPropertyAsInt(IWbemClassObject* instance, const wchar_t* name, const int& value) {
    return SetPropertyAsLong(instance, name, value);
}

HRESULT CQuillet::SetPropertyAsBool(IWbemClassObject* instance, const wchar_t* name, const bool& value) {
    // The provider's flags are numbers; VT_BOOL is not what it expects here.
    return SetPropertyAsLong(instance, name, value ? 1 : 0);
}

HRESULT CQuillet::SetPropertyAsString(IWbemClassObject* instance, const wchar_t* name, const _bstr_t& value) {
    _variant_t variant(value);
    return WriteProperty(instance, name, variant,
                         L"SetPropertyAsString -> ((pIWbemService == NULL) || (pIWbemContext == NULL))");
}

HRESULT CQuillet::SetPropertyAsMultiString(IWbemClassObject* instance, const wchar_t* name,
                                           const std::vector<std::wstring>& values) {
    _variant_t variant;
    if (!MakeTextArray(values, variant)) {
        TraceText(L"(NULL == pSafeArray) -> Create fail");
        return E_FAIL;
    }
    return WriteProperty(instance, name, variant,
                         L"SetPropertyAsString -> ((pIWbemService == NULL) || (pIWbemContext == NULL))");
}

HRESULT CQuillet::ChangeContext(IWbemContext* context, LONG mode) {
    TraceText(L"CQuillet::ChangeContext");
    if (!context) {
        return S_OK;
    }
    if (mode == -1) {
        TraceText(L" Unset Partial Retrieval!!");
        SetContextValue(context, CONTEXT_CLIENT_REQUEST, VariantOfBool(false));
        SetContextValue(context, CONTEXT_EXTENSIONS, VariantOfBool(false));
        SetContextValue(context, CONTEXT_KEYS_ONLY, VariantOfBool(false));
        SetContextValue(context, CONTEXT_PARTIAL_DATA, VariantOfLong(-1));
        return S_OK;
    }
    TraceText(L"Setting for partial data!!");
    SetContextValue(context, CONTEXT_CLIENT_REQUEST, VariantOfBool(true));
    SetContextValue(context, CONTEXT_EXTENSIONS, VariantOfBool(true));
    // Only the low byte tells, on purpose: -256 asks for partial data, not for keys.
    if (mode & 0x80) {
        TraceText(L"Keys only!!");
        SetContextValue(context, CONTEXT_KEYS_ONLY, VariantOfBool(true));
    } else {
        TraceText(L"Else Partial Retrieval!!");
        SetContextValue(context, CONTEXT_PARTIAL_DATA, VariantOfLong(mode));
    }
    return S_OK;
}
