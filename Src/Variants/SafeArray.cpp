#include "Variants/SafeArray.h"

#include "Variants/VariantValue.h"

#include <cstring>
#include <limits>

namespace {

/// Fetches one element as a VARIANT of the array's element type.
HRESULT FetchElement(SAFEARRAY* array, LONG index, _variant_t& element) {
    if (SafeArrayGetDim(array) != 1) {
        return DISP_E_BADINDEX;
    }
    VARTYPE type = VT_EMPTY;
    HRESULT result = SafeArrayGetVartype(array, &type);
    if (FAILED(result)) {
        return result;
    }
    switch (type) {
    case VT_VARIANT:
        result = SafeArrayGetElement(array, &index, static_cast<VARIANT*>(&element));
        break;
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_R8:
    case VT_BSTR:
        result = SafeArrayGetElement(array, &index, &V_UI8(&element));
        if (SUCCEEDED(result)) {
            element.vt = type;
        }
        break;
    default:
        // Objects and records have no place in a list of numbers or texts.
        return DISP_E_TYPEMISMATCH;
    }
    if (result == E_OUTOFMEMORY) {
        // No element without a value: to leave it out, or empty, would make another list of it.
        _com_issue_error(result);
    }
    return result;
}

} // namespace

SAFEARRAY* ArrayOf(const VARIANT& value) {
    return (value.vt & VT_ARRAY) && !(value.vt & VT_BYREF) ? V_ARRAY(&value) : nullptr;
}

HRESULT ReadElement(SAFEARRAY* array, LONG index, LONG& element) {
    _variant_t fetched;
    const HRESULT result = FetchElement(array, index, fetched);
    if (FAILED(result)) {
        return result;
    }
    return ReadVariant(fetched, element) ? result : DISP_E_TYPEMISMATCH;
}

HRESULT ReadElement(SAFEARRAY* array, LONG index, ATL::CComBSTR& element) {
    _variant_t fetched;
    const HRESULT result = FetchElement(array, index, fetched);
    if (FAILED(result)) {
        return result;
    }
    if (fetched.vt != VT_BSTR) {
        return DISP_E_TYPEMISMATCH;
    }
    element.Attach(V_BSTR(&fetched));
    fetched.vt = VT_EMPTY;
    return result;
}

HRESULT ReadElement(SAFEARRAY* array, LONG index, std::wstring& element) {
    ATL::CComBSTR text;
    const HRESULT result = ReadElement(array, index, text);
    if (SUCCEEDED(result)) {
        element = TextOf(text);
    }
    return result;
}

TextsInPlace::TextsInPlace(SAFEARRAY* array, LONGLONG length) : m_array(array) {
    VARTYPE type = VT_EMPTY;
    // What the VARIANT says of its array is not enough: the elements would be taken for pointers.
    if (length < 0 || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        type != VT_BSTR || SafeArrayGetElemsize(array) != sizeof(BSTR)) {
        return;
    }
    void* data = nullptr;
    if (FAILED(SafeArrayAccessData(array, &data))) {
        return;
    }
    m_locked = length == 0 || data != nullptr;
    if (m_locked) {
        m_texts = {static_cast<const BSTR*>(data), static_cast<std::size_t>(length)};
    } else {
        SafeArrayUnaccessData(array);
    }
}

TextsInPlace::~TextsInPlace() {
    if (m_locked) {
        SafeArrayUnaccessData(m_array);
    }
}

bool MakeTextArray(const std::vector<std::wstring>& texts, _variant_t& result, EmptyText empty) {
    result.Clear();
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size()));
    if (!array) {
        return false;
    }
    // Owned from here on: what follows may raise.
    V_ARRAY(&result) = array;
    result.vt = VT_ARRAY | VT_BSTR;
    for (LONG index = 0; index < static_cast<LONG>(texts.size()); ++index) {
        const std::wstring& text = texts[static_cast<std::size_t>(index)];
        if (text.empty() && empty == EmptyText::Null) {
            continue; // what a new array holds
        }
        ATL::CComBSTR element(static_cast<int>(text.size()), text.c_str());
        if (FAILED(SafeArrayPutElement(array, &index, element.m_str))) {
            _com_issue_error(E_OUTOFMEMORY);
        }
    }
    return true;
}

HRESULT ArrayLength(SAFEARRAY* array, LONG& length, const wchar_t*& step) {
    LONG lower = 0;
    step = L"SafeArrayGetLBound";
    HRESULT result = SafeArrayGetLBound(array, 1, &lower);
    if (FAILED(result)) {
        return result;
    }
    LONG upper = 0;
    step = L"SafeArrayGetUBound";
    result = SafeArrayGetUBound(array, 1, &upper);
    if (FAILED(result)) {
        return result;
    }
    step = L"SafeArrayGetDim";
    // 64 bits: the bounds may be the ends of the range of LONG.
    const LONGLONG count = static_cast<LONGLONG>(upper) - lower + 1;
    if (SafeArrayGetDim(array) != 1 || count < 0 || count > std::numeric_limits<LONG>::max()) {
        return E_FAIL;
    }
    length = static_cast<LONG>(count);
    return S_OK;
}

HRESULT CopyBytes(SAFEARRAY* array, unsigned char* bytes, LONG length) {
    void* data = nullptr;
    const HRESULT result = SafeArrayAccessData(array, &data);
    if (FAILED(result)) {
        return result;
    }
    const bool present = length == 0 || (data && SafeArrayGetElemsize(array) > 0);
    if (present && length > 0) {
        std::memcpy(bytes, data, static_cast<std::size_t>(length));
    }
    SafeArrayUnaccessData(array);
    return present ? S_OK : E_FAIL;
}
