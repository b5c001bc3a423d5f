// From a VARIANT to a CIM value.
#include <quillet-wmi/Variant.h>

#include <cstring>
#include <limits>

namespace quillet::wmi {

namespace {

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
    switch (ElementType(type)) {
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
    const std::size_t size = ElementSize(static_cast<VARTYPE>(V_VT(&variant) & kVariantTypeMask));
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
    const VARTYPE vt = static_cast<VARTYPE>(V_VT(&variant) & kVariantTypeMask);
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
        if ((V_VT(&variant) & ~kVariantTypeMask) != VT_ARRAY) {
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
    if ((V_VT(&variant) & ~kVariantTypeMask) == VT_ARRAY) {
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

} // namespace quillet::wmi
