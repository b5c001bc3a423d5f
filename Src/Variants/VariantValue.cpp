#include "Variants/VariantValue.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <limits>

namespace {

/// The value of an integer VARIANT of at most 32 bits. These are what WMI sends for CIM numbers; reading
/// them straight keeps the bit pattern of an unsigned number, which an OLE conversion would refuse.
bool ReadSmallInteger(const VARIANT& value, LONG& result) {
    switch (value.vt) {
    case VT_I4:
        result = V_I4(&value);
        return true;
    case VT_INT:
        result = V_INT(&value);
        return true;
    case VT_UI4:
        result = static_cast<LONG>(V_UI4(&value));
        return true;
    case VT_UINT:
        result = static_cast<LONG>(V_UINT(&value));
        return true;
    case VT_I2:
        result = V_I2(&value);
        return true;
    case VT_UI2:
        result = V_UI2(&value);
        return true;
    case VT_I1:
        result = static_cast<std::int8_t>(V_I1(&value));
        return true;
    case VT_UI1:
        result = V_UI1(&value);
        return true;
    case VT_BOOL:
        result = V_BOOL(&value);
        return true;
    default:
        return false;
    }
}

/// Converts with OLE's rules, for the scalar types only: converting an object would call into it.
bool Convert(const VARIANT& value, VARTYPE type, _variant_t& converted) {
    switch (value.vt) {
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_DECIMAL:
    case VT_BSTR:
        return SUCCEEDED(VariantChangeType(&converted, const_cast<VARIANT*>(&value), 0, type));
    default:
        return false;
    }
}

/// The text of a BSTR; a null BSTR is an empty text.
const wchar_t* TextOf(const VARIANT& value) {
    return V_BSTR(&value) ? V_BSTR(&value) : L"";
}

/// Decimal text to a 32-bit number, saturating where it does not fit, as _wtol does.
LONG LongFromText(const wchar_t* text) {
    const long long wide = std::wcstoll(text, nullptr, 10);
    return static_cast<LONG>(
        std::clamp<long long>(wide, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

} // namespace

bool ReadVariant(const VARIANT& value, bool& result) {
    LONG number = 0;
    if (ReadSmallInteger(value, number)) {
        result = number != 0;
        return true;
    }
    _variant_t converted;
    if (!Convert(value, VT_BOOL, converted)) {
        return false;
    }
    result = V_BOOL(&converted) != VARIANT_FALSE;
    return true;
}

bool ReadVariant(const VARIANT& value, LONG& result) {
    if (value.vt == VT_I4) {
        result = V_I4(&value);
        return true;
    }
    if (value.vt == VT_BSTR) {
        result = LongFromText(TextOf(value));
        return true;
    }
    if (ReadSmallInteger(value, result)) {
        return true;
    }
    _variant_t converted;
    if (!Convert(value, VT_I4, converted)) {
        return false;
    }
    result = V_I4(&converted);
    return true;
}

bool ReadVariant(const VARIANT& value, ULONGLONG& result) {
    if (value.vt == VT_BSTR) {
        result = std::wcstoull(TextOf(value), nullptr, 10);
        return true;
    }
    LONG number = 0;
    if (ReadSmallInteger(value, number)) {
        // A 32-bit mask arrives as VT_I4 even when its top bit is set; it must not spread upwards.
        result = static_cast<ULONG>(number);
        return true;
    }
    if (value.vt == VT_I8) {
        result = static_cast<ULONGLONG>(V_I8(&value));
        return true;
    }
    _variant_t converted;
    if (!Convert(value, VT_UI8, converted)) {
        return false;
    }
    result = V_UI8(&converted);
    return true;
}

bool ReadVariant(VARIANT& value, _bstr_t& result) {
    if (value.vt != VT_BSTR) {
        result = L"";
        return false;
    }
    BSTR text = V_BSTR(&value);
    value.vt = VT_EMPTY;
    result.Attach(text);
    return true;
}

bool ReadVariant(VARIANT& value, ATL::CComBSTR& result) {
    result.Empty();
    if (value.vt != VT_BSTR) {
        return false;
    }
    result.Attach(V_BSTR(&value));
    value.vt = VT_EMPTY;
    return true;
}

bool ReadVariant(const VARIANT& value, std::wstring& result) {
    if (value.vt != VT_BSTR) {
        result.clear();
        return false;
    }
    const BSTR text = V_BSTR(&value);
    result.assign(text ? text : L"", ::SysStringLen(text));
    return true;
}

std::wstring TextOf(const ATL::CComBSTR& text) {
    return text ? std::wstring(text.m_str, text.Length()) : std::wstring();
}

_variant_t VariantOfLong(LONG value) {
    _variant_t variant;
    variant.vt = VT_I4;
    V_I4(&variant) = value;
    return variant;
}

_variant_t VariantOfBool(bool value) {
    _variant_t variant;
    variant.vt = VT_BOOL;
    V_BOOL(&variant) = value ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
}

_variant_t VariantOfText(const std::wstring& text) {
    return _variant_t(text.c_str());
}
