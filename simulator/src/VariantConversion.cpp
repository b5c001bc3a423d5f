// CIM values and OLE VARIANTs.
#include "VariantConversion.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace quillet::simulator {

namespace {

constexpr VARTYPE TypeMask = 0x0FFF;

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

/// Fills a VARIANT of a given type, without arrays. A missing scalar gives the type's zero.
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

/// Fills a VARIANT with a one-dimensional array.
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

/// The same for bytes, in one piece: a copy of an array that has them on loan. A new array would be filled
/// with zeros first, and flash images are long.
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
    const VARTYPE element = static_cast<VARTYPE>(vt & TypeMask);
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

/// The number in a VARIANT of an integer type that WMI takes. The 64-bit integer types are not among them:
/// there they travel as text.
std::optional<std::int64_t> IntegerOf(const VARIANT& variant) noexcept {
    switch (V_VT(&variant)) {
    case VT_I1:
        return static_cast<signed char>(V_UI1(&variant));
    case VT_UI1:
        return V_UI1(&variant);
    case VT_I2:
        return V_I2(&variant);
    case VT_UI2:
        return V_UI2(&variant);
    case VT_I4:
    case VT_INT:
        return V_I4(&variant);
    case VT_UI4:
    case VT_UINT:
        return V_UI4(&variant);
    default:
        return std::nullopt;
    }
}

bool IsDigits(std::wstring_view text) noexcept {
    return !text.empty() && text.find_first_not_of(L"0123456789") == std::wstring_view::npos;
}

/// The decimal number of a text, up to a limit.
std::optional<std::uint64_t> DecimalUpTo(std::wstring_view text, std::uint64_t limit) noexcept {
    if (!IsDigits(text)) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (const wchar_t digit : text) {
        const auto value = static_cast<std::uint64_t>(digit - L'0');
        if (number > (limit - value) / 10) {
            return std::nullopt;
        }
        number = number * 10 + value;
    }
    return number;
}

std::optional<Scalar> Wide64(const VARIANT& variant, bool isSigned) {
    if (V_VT(&variant) != VT_BSTR) {
        const auto number = IntegerOf(variant);
        if (!number || (!isSigned && *number < 0)) {
            return std::nullopt;
        }
        if (isSigned) {
            return Scalar(*number);
        }
        return Scalar(static_cast<std::uint64_t>(*number));
    }
    auto text = BstrText(V_BSTR(&variant));
    if (!isSigned) {
        const auto number = DecimalUpTo(text, std::numeric_limits<std::uint64_t>::max());
        if (!number) {
            return std::nullopt;
        }
        return Scalar(*number);
    }
    const bool negative = !text.empty() && text.front() == L'-';
    if (negative) {
        text.remove_prefix(1);
    }
    const std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) + (negative ? 1u : 0u);
    const auto magnitude = DecimalUpTo(text, limit);
    if (!magnitude) {
        return std::nullopt;
    }
    return Scalar(static_cast<std::int64_t>(negative ? 0u - *magnitude : *magnitude));
}

/// An integer within bounds. A VARIANT of the carrier type and the same width may also hold the bit pattern
/// of an unsigned number: VT_I4 -1 is the uint32 4294967295.
std::optional<Scalar> Narrow(const VARIANT& variant, std::int64_t low, std::int64_t high, VARTYPE carrier,
                             bool isSigned) {
    auto number = IntegerOf(variant);
    if (!number) {
        return std::nullopt;
    }
    if (!isSigned && *number < 0 && V_VT(&variant) == carrier) {
        number = *number + high + 1;
    }
    if (*number < low || *number > high) {
        return std::nullopt;
    }
    if (isSigned) {
        return Scalar(*number);
    }
    return Scalar(static_cast<std::uint64_t>(*number));
}

std::optional<Scalar> RealFrom(const VARIANT& variant) {
    switch (V_VT(&variant)) {
    case VT_R4:
        return Scalar(static_cast<double>(V_R4(&variant)));
    case VT_R8:
        return Scalar(V_R8(&variant));
    default: {
        const auto number = IntegerOf(variant);
        if (!number) {
            return std::nullopt;
        }
        return Scalar(static_cast<double>(*number));
    }
    }
}

std::optional<Scalar> ScalarFrom(const VARIANT& variant, CIMTYPE type) {
    switch (type & ~CIM_FLAG_ARRAY) {
    case CIM_SINT8:
        return Narrow(variant, -128, 127, VT_I2, true);
    case CIM_UINT8:
        return Narrow(variant, 0, 255, VT_UI1, false);
    case CIM_SINT16:
        return Narrow(variant, -32768, 32767, VT_I2, true);
    case CIM_UINT16:
    case CIM_CHAR16:
        return Narrow(variant, 0, 65535, VT_I2, false);
    case CIM_SINT32:
        return Narrow(variant, -2147483648LL, 2147483647LL, VT_I4, true);
    case CIM_UINT32:
        return Narrow(variant, 0, 4294967295LL, VT_I4, false);
    case CIM_SINT64:
        return Wide64(variant, true);
    case CIM_UINT64:
        return Wide64(variant, false);
    case CIM_REAL32:
    case CIM_REAL64:
        return RealFrom(variant);
    case CIM_BOOLEAN: {
        if (V_VT(&variant) == VT_BOOL) {
            return Scalar(V_BOOL(&variant) != VARIANT_FALSE);
        }
        const auto number = IntegerOf(variant);
        if (!number || *number < 0 || *number > 1) {
            return std::nullopt;
        }
        return Scalar(*number == 1);
    }
    case CIM_STRING:
    case CIM_REFERENCE:
    case CIM_DATETIME:
        if (V_VT(&variant) != VT_BSTR) {
            return std::nullopt;
        }
        return Scalar(std::wstring(BstrText(V_BSTR(&variant))));
    default:
        return std::nullopt;
    }
}

std::size_t ElementSize(VARTYPE vt) noexcept {
    switch (vt) {
    case VT_I1:
    case VT_UI1:
        return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
        return 4;
    case VT_R8:
        return 8;
    case VT_BSTR:
        return sizeof(BSTR);
    default:
        return 0;
    }
}

/// The elements of a one-dimensional array where they lie.
struct Elements {
    const unsigned char* first = nullptr;
    std::size_t count = 0;
    std::size_t size = 0; ///< of each, in bytes
};

/// Calls `take` with the elements of a one-dimensional array; false when the array is not of that shape or
/// `take` refuses them.
template <class Take>
bool WithElements(const VARIANT& variant, Take take) {
    SAFEARRAY* array = V_ARRAY(&variant);
    const std::size_t size = ElementSize(static_cast<VARTYPE>(V_VT(&variant) & TypeMask));
    LONG lower = 0;
    LONG upper = -1;
    if (array == nullptr || size == 0 || SafeArrayGetDim(array) != 1 || SafeArrayGetElemsize(array) != size ||
        FAILED(SafeArrayGetLBound(array, 1, &lower)) || FAILED(SafeArrayGetUBound(array, 1, &upper))) {
        return false;
    }
    const std::int64_t count = static_cast<std::int64_t>(upper) - lower + 1;
    if (count <= 0) {
        return take(Elements{nullptr, 0, size});
    }
    void* raw = nullptr;
    if (FAILED(SafeArrayAccessData(array, &raw))) {
        return false;
    }
    const bool taken =
        take(Elements{static_cast<const unsigned char*>(raw), static_cast<std::size_t>(count), size});
    SafeArrayUnaccessData(array);
    return taken;
}

/// Calls `take` with a borrowed VARIANT for each element of a one-dimensional array; false when the array is
/// not of that shape or an element is not taken.
template <class Take>
bool ForEachElement(const VARIANT& variant, Take take) {
    const VARTYPE vt = static_cast<VARTYPE>(V_VT(&variant) & TypeMask);
    return WithElements(variant, [&](const Elements& elements) {
        const auto* place = elements.first;
        for (std::size_t index = 0; index < elements.count; ++index, place += elements.size) {
            VARIANT one;
            VariantInit(&one);
            std::memcpy(&V_UI1(&one), place, elements.size);
            V_VT(&one) = vt;
            if (!take(one)) {
                return false;
            }
        }
        return true;
    });
}

/// The bytes of a VT_ARRAY | VT_UI1; nothing when it is not one-dimensional.
std::optional<Value::Bytes> BytesFrom(const VARIANT& variant) {
    Value::Bytes bytes;
    const bool taken = WithElements(variant, [&](const Elements& elements) {
        bytes.assign(elements.first, elements.first + elements.count);
        return true;
    });
    return taken ? std::optional<Value::Bytes>(std::move(bytes)) : std::nullopt;
}

} // namespace

VARTYPE VariantType(CIMTYPE type) noexcept {
    VARTYPE vt = VT_NULL;
    switch (type & ~CIM_FLAG_ARRAY) {
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
        return FillArray(value.Elements(), static_cast<VARTYPE>(vt & TypeMask), 0, variant);
    }
    return FillScalar(*value.AsScalar(), vt, variant);
}

HRESULT ToDamagedVariant(const Value& value, CIMTYPE type, const FaultRule& rule, VARIANT* variant) {
    const VARTYPE element = static_cast<VARTYPE>(VariantType(type) & TypeMask);
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

HRESULT FromVariant(const VARIANT& variant, CIMTYPE type, Value& value) {
    if (V_VT(&variant) == VT_NULL) {
        value = Value();
        return S_OK;
    }
    Value read;
    if ((type & CIM_FLAG_ARRAY) == 0) {
        auto scalar = ScalarFrom(variant, type);
        if (!scalar) {
            return HRESULT(WBEM_E_TYPE_MISMATCH);
        }
        read = Value(*std::move(scalar));
    } else {
        if ((V_VT(&variant) & ~TypeMask) != VT_ARRAY) {
            return HRESULT(WBEM_E_TYPE_MISMATCH);
        }
        if (type == (CIM_UINT8 | CIM_FLAG_ARRAY) && V_VT(&variant) == (VT_ARRAY | VT_UI1)) {
            auto bytes = BytesFrom(variant);
            if (!bytes) {
                return HRESULT(WBEM_E_TYPE_MISMATCH);
            }
            value = Value(*std::move(bytes));
            return S_OK;
        }
        Value::Array elements;
        if (!ForEachElement(variant, [&](const VARIANT& one) {
                auto scalar = ScalarFrom(one, type);
                if (!scalar) {
                    return false;
                }
                elements.emplace_back(*std::move(scalar));
                return true;
            })) {
            return HRESULT(WBEM_E_TYPE_MISMATCH);
        }
        read = Value(std::move(elements));
    }
    if (!Fits(read, type)) {
        return HRESULT(WBEM_E_TYPE_MISMATCH);
    }
    value = Normalised(std::move(read), type);
    return S_OK;
}

Value AnyFromVariant(const VARIANT& variant) {
    const auto scalar = [](const VARIANT& one) -> std::optional<Scalar> {
        switch (V_VT(&one)) {
        case VT_BOOL:
            return ScalarFrom(one, CIM_BOOLEAN);
        case VT_BSTR:
            return ScalarFrom(one, CIM_STRING);
        case VT_R4:
        case VT_R8:
            return RealFrom(one);
        default: {
            const auto number = IntegerOf(one);
            if (!number) {
                return std::nullopt;
            }
            return Scalar(*number);
        }
        }
    };
    if ((V_VT(&variant) & ~TypeMask) == VT_ARRAY) {
        Value::Array elements;
        const bool whole = ForEachElement(variant, [&](const VARIANT& one) {
            elements.push_back(scalar(one));
            return true;
        });
        return whole ? Value(std::move(elements)) : Value();
    }
    auto one = scalar(variant);
    return one ? Value(*std::move(one)) : Value();
}

std::wstring CimTypeText(CIMTYPE type, std::wstring_view referenceClass) {
    // WMI has words of its own for two types; the others are called as MOF calls them.
    switch (type & ~CIM_FLAG_ARRAY) {
    case CIM_REFERENCE:
        return referenceClass.empty() ? L"ref" : L"ref:" + std::wstring(referenceClass);
    case CIM_OBJECT:
        return L"object";
    default: {
        const wchar_t* name = CimTypeName(type);
        return name != nullptr ? name : L"string";
    }
    }
}

Value Integer(CIMTYPE type, std::int64_t number) {
    switch (type & ~CIM_FLAG_ARRAY) {
    case CIM_UINT8:
    case CIM_UINT16:
    case CIM_UINT32:
    case CIM_UINT64:
    case CIM_CHAR16:
        return Value::Unsigned(static_cast<std::uint64_t>(number));
    case CIM_BOOLEAN:
        return Value::Bool(number != 0);
    default:
        return Value::Signed(number);
    }
}

BSTR MakeBstr(std::wstring_view text) noexcept {
    return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

std::wstring_view BstrText(const OLECHAR* text) noexcept {
    return text != nullptr ? std::wstring_view(text, SysStringLen(const_cast<BSTR>(text)))
                           : std::wstring_view();
}

SAFEARRAY* MakeNameArray(const std::vector<std::wstring>& names) noexcept {
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(names.size()));
    if (array == nullptr) {
        return nullptr;
    }
    void* raw = nullptr;
    bool whole = SUCCEEDED(SafeArrayAccessData(array, &raw));
    if (whole) {
        auto* place = static_cast<BSTR*>(raw);
        for (const auto& name : names) {
            *place = MakeBstr(name);
            if (*place++ == nullptr) {
                whole = false;
                break;
            }
        }
        SafeArrayUnaccessData(array);
    }
    if (!whole) {
        SafeArrayDestroy(array);
        return nullptr;
    }
    return array;
}

} // namespace quillet::simulator
