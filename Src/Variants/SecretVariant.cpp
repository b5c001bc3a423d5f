#include "Variants/SecretVariant.h"

#include "Records/SecretText.h"

namespace {

void OverwriteText(BSTR text) noexcept {
    if (text) {
        SecureZeroMemory(text, SysStringByteLen(text));
    }
}

/// The number of elements of all dimensions together.
ULONGLONG ElementCount(SAFEARRAY* array) noexcept {
    ULONGLONG count = 1;
    for (UINT dimension = 1; dimension <= SafeArrayGetDim(array); ++dimension) {
        LONG lower = 0;
        LONG upper = -1;
        if (FAILED(SafeArrayGetLBound(array, dimension, &lower)) ||
            FAILED(SafeArrayGetUBound(array, dimension, &upper)) || upper < lower) {
            return 0;
        }
        count *= static_cast<ULONGLONG>(static_cast<LONGLONG>(upper) - lower + 1);
    }
    return count;
}

void OverwriteElements(SAFEARRAY* array) noexcept {
    VARTYPE type = VT_EMPTY;
    if (!array || FAILED(SafeArrayGetVartype(array, &type)) || (type != VT_BSTR && type != VT_VARIANT)) {
        return;
    }
    void* elements = nullptr;
    if (FAILED(SafeArrayAccessData(array, &elements))) {
        return;
    }
    const ULONGLONG count = ElementCount(array);
    for (ULONGLONG index = 0; index < count; ++index) {
        if (type == VT_BSTR) {
            OverwriteText(static_cast<BSTR*>(elements)[index]);
        } else {
            OverwriteTexts(static_cast<VARIANT*>(elements)[index]);
        }
    }
    SafeArrayUnaccessData(array);
}

} // namespace

void OverwriteTexts(VARIANT& value) noexcept {
    if (value.vt & VT_BYREF) {
        return; // what it refers to is somebody else's
    }
    if (value.vt == VT_BSTR) {
        OverwriteText(V_BSTR(&value));
    } else if (value.vt & VT_ARRAY) {
        OverwriteElements(V_ARRAY(&value));
    }
}

SecretVariant::SecretVariant(const std::wstring& text) {
    V_BSTR(this) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!V_BSTR(this)) {
        _com_issue_error(E_OUTOFMEMORY);
    }
    vt = VT_BSTR;
}

bool ReadVariant(const SecretVariant& value, std::wstring& result) {
    const bool isText = value.vt == VT_BSTR;
    const BSTR text = isText ? V_BSTR(&value) : nullptr;
    quillet::AssignSecret(result, text ? text : L"", SysStringLen(text));
    return isText;
}
