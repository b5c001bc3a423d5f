// From a CIM value to a VARIANT.
#include <quillet-wmi/Variant.h>

#include <cstring>

namespace quillet::wmi {

namespace {

std::int64_t SignedOf(const Scalar& scalar) noexcept {
    if (const auto* number = std::get_if<std::int64_t>(&scalar)) {
        return *number;
    }
    if (const auto* number = std::get_if<std::uint64_t>(&scalar)) {
        return static_cast<std::int64_t>(*number);
    }
    if (const auto* flag = std::get_if<bool>(&scalar)) {
        return *flag ? 1 : 0;
    }
    if (const auto* number = std::get_if<double>(&scalar)) {
        return static_cast<std::int64_t>(*number);
    }
    return 0;
}

double RealOf(const Scalar& scalar) noexcept {
    const auto* number = std::get_if<double>(&scalar);
    return number != nullptr ? *number : static_cast<double>(SignedOf(scalar));
}

std::wstring DecimalOf(const Scalar& scalar) {
    if (const auto* number = std::get_if<std::uint64_t>(&scalar)) {
        return std::to_wstring(*number);
    }
    return std::to_wstring(SignedOf(scalar));
}

} // namespace

HRESULT FillScalar(const std::optional<Scalar>& element, VARTYPE vt, VARIANT* variant) {
    VariantInit(variant);
    const Scalar scalar = element.value_or(Scalar(std::int64_t{0}));
    const std::int64_t number = SignedOf(scalar);
    switch (vt) {
    case VT_I2:
        V_I2(variant) = static_cast<SHORT>(number);
        break;
    case VT_I4:
        V_I4(variant) = static_cast<LONG>(number);
        break;
    case VT_UI1:
        V_UI1(variant) = static_cast<BYTE>(number);
        break;
    case VT_BOOL:
        V_BOOL(variant) = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
        break;
    case VT_R4:
        V_R4(variant) = static_cast<FLOAT>(RealOf(scalar));
        break;
    case VT_R8:
        V_R8(variant) = RealOf(scalar);
        break;
    case VT_BSTR: {
        const auto* text = std::get_if<std::wstring>(&scalar);
        V_BSTR(variant) = !element ? MakeBstr({}) : MakeBstr(text != nullptr ? *text : DecimalOf(scalar));
        if (V_BSTR(variant) == nullptr) {
            return HRESULT(WBEM_E_OUT_OF_MEMORY);
        }
        break;
    }
    default:
        V_VT(variant) = VT_NULL;
        return S_OK;
    }
    V_VT(variant) = vt;
    return S_OK;
}

HRESULT FillArray(const Value::Array& elements, VARTYPE vt, LONG lowerBound, VARIANT* variant) {
    VariantInit(variant);
    SAFEARRAY* array = SafeArrayCreateVector(vt, lowerBound, static_cast<ULONG>(elements.size()));
    if (array == nullptr) {
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    void* raw = nullptr;
    HRESULT result = SafeArrayAccessData(array, &raw);
    if (SUCCEEDED(result)) {
        auto* place = static_cast<unsigned char*>(raw);
        const std::size_t size = SafeArrayGetElemsize(array);
        for (const auto& element : elements) {
            // All zero, which VariantInit does not make it everywhere: a type that no property has is left
            // so.
            VARIANT one{};
            result = FillScalar(element, vt, &one);
            if (FAILED(result)) {
                break;
            }
            // The payload of a VARIANT starts at the same place for every type; the array owns a BSTR now.
            std::memcpy(place, &V_UI1(&one), size);
            place += size;
        }
        SafeArrayUnaccessData(array);
    }
    if (FAILED(result)) {
        SafeArrayDestroy(array);
        return result;
    }
    V_VT(variant) = static_cast<VARTYPE>(VT_ARRAY | vt);
    V_ARRAY(variant) = array;
    return S_OK;
}

// A copy of an array that has the bytes on loan: a new array would be filled with zeros first, and flash
// images are long.
HRESULT FillBytes(const Value::Bytes& bytes, LONG lowerBound, VARIANT* variant) {
    VariantInit(variant);
    SAFEARRAY* lender = SafeArrayCreateVector(VT_UI1, lowerBound, 0);
    if (lender == nullptr) {
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    void* const own = lender->pvData;
    lender->pvData = const_cast<std::uint8_t*>(bytes.data());
    lender->rgsabound[0].cElements = static_cast<ULONG>(bytes.size());
    SAFEARRAY* array = nullptr;
    const HRESULT copied = SafeArrayCopy(lender, &array);
    lender->pvData = own;
    lender->rgsabound[0].cElements = 0;
    SafeArrayDestroy(lender);
    if (FAILED(copied)) {
        return HRESULT(WBEM_E_OUT_OF_MEMORY);
    }
    V_VT(variant) = VT_ARRAY | VT_UI1;
    V_ARRAY(variant) = array;
    return S_OK;
}

VARTYPE VariantType(CIMTYPE type) noexcept {
    VARTYPE vt = VT_NULL;
    switch (ElementType(type)) {
    case CIM_SINT8:
    case CIM_SINT16:
    case CIM_CHAR16:
        vt = VT_I2;
        break;
    case CIM_SINT32:
    case CIM_UINT16:
    case CIM_UINT32:
        vt = VT_I4;
        break;
    case CIM_UINT8:
        vt = VT_UI1;
        break;
    case CIM_BOOLEAN:
        vt = VT_BOOL;
        break;
    case CIM_REAL32:
        vt = VT_R4;
        break;
    case CIM_REAL64:
        vt = VT_R8;
        break;
    case CIM_SINT64:
    case CIM_UINT64:
    case CIM_STRING:
    case CIM_REFERENCE:
    case CIM_DATETIME:
        vt = VT_BSTR;
        break;
    default:
        return VT_NULL;
    }
    return (type & CIM_FLAG_ARRAY) != 0 ? static_cast<VARTYPE>(vt | VT_ARRAY) : vt;
}

HRESULT ToVariant(const Value& value, CIMTYPE type, VARIANT* variant) {
    const VARTYPE vt = VariantType(type);
    if (value.IsNull() || vt == VT_NULL) {
        VariantInit(variant);
        V_VT(variant) = VT_NULL;
        return S_OK;
    }
    if (const auto* bytes = value.AsBytes(); bytes != nullptr && vt == (VT_ARRAY | VT_UI1)) {
        return FillBytes(*bytes, 0, variant);
    }
    if (value.IsArray()) {
        return FillArray(value.Elements(), static_cast<VARTYPE>(vt & kVariantTypeMask), 0, variant);
    }
    return FillScalar(*value.AsScalar(), vt, variant);
}

} // namespace quillet::wmi
