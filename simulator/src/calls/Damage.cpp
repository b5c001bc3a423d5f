// Answers as a provider that breaks its own schema would give them.
#include "calls/Damage.h"

#include <quillet-wmi/Variant.h>

namespace quillet::simulator {

namespace {

/// An array of VARIANTs that hold the elements, all but one of which can be converted.
HRESULT FillUnreadable(const Value::Array& elements, VARTYPE vt, LONG unreadable, VARIANT* variant) {
    VariantInit(variant);
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size()));
    if (array == nullptr) {
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    for (LONG index = 0; static_cast<std::size_t>(index) < elements.size(); ++index) {
        VARIANT one;
        VariantInit(&one);
        HRESULT result = S_OK;
        if (index == unreadable) {
            V_VT(&one) = VT_UNKNOWN;
            V_UNKNOWN(&one) = nullptr;
        } else {
            result = FillScalar(elements[static_cast<std::size_t>(index)], vt, &one);
        }
        if (SUCCEEDED(result) && FAILED(SafeArrayPutElement(array, &index, &one))) {
            result = HRESULT(WBEM_E_OUT_OF_MEMORY);
        }
        VariantClear(&one);
        if (FAILED(result)) {
            SafeArrayDestroy(array);
            return result;
        }
    }
    V_VT(variant) = VT_ARRAY | VT_VARIANT;
    V_ARRAY(variant) = array;
    return S_OK;
}

/// A VARIANT of any type, as a provider that breaks its own schema would answer.
HRESULT FillWrongType(VARTYPE vt, VARIANT* variant) {
    VariantInit(variant);
    const VARTYPE element = static_cast<VARTYPE>(vt & kVariantTypeMask);
    if ((vt & VT_ARRAY) != 0) {
        if (element == VT_VARIANT) {
            return FillUnreadable({std::nullopt}, VT_I4, 0, variant);
        }
        return FillArray({std::nullopt}, element, 0, variant);
    }
    if (element == VT_BSTR) {
        V_BSTR(variant) = MakeBstr(L"wrong type");
        if (V_BSTR(variant) == nullptr) {
            return HRESULT(WBEM_E_OUT_OF_MEMORY);
        }
    } else {
        // All zero: a null pointer, the number 0, a date of 1899.
        V_R8(variant) = 0;
    }
    V_VT(variant) = vt;
    return S_OK;
}

Value::Array ElementsOf(const Value& value) {
    if (const auto* scalar = value.AsScalar()) {
        return {*scalar};
    }
    return value.Elements();
}

} // namespace

HRESULT ToDamagedVariant(const Value& value, CIMTYPE type, const FaultRule& rule, VARIANT* variant) {
    const VARTYPE element = static_cast<VARTYPE>(VariantType(type) & kVariantTypeMask);
    switch (rule.effect) {
    case Effect::NullValue:
        VariantInit(variant);
        V_VT(variant) = VT_NULL;
        return S_OK;
    case Effect::WrongType:
        return FillWrongType(rule.vt, variant);
    case Effect::ShiftedArray:
        if (const auto* bytes = value.AsBytes(); bytes != nullptr && element == VT_UI1) {
            return FillBytes(*bytes, 5, variant);
        }
        return FillArray(ElementsOf(value), element, 5, variant);
    case Effect::EmptyArray:
        return FillArray({}, element, 0, variant);
    case Effect::NullArray:
        VariantInit(variant);
        V_VT(variant) = static_cast<VARTYPE>(VT_ARRAY | element);
        V_ARRAY(variant) = nullptr;
        return S_OK;
    case Effect::UnreadableElement:
        return FillUnreadable(ElementsOf(value), element, rule.element, variant);
    case Effect::HugeString:
        return FillScalar(Scalar(std::wstring(rule.size, L'x')), VT_BSTR, variant);
    default:
        return ToVariant(value, type, variant);
    }
}

} // namespace quillet::simulator
