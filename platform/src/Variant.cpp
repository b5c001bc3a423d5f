// VARIANT: initialisation, clearing, copying.
#include "SafeArray.h"

#include <cstring>

namespace {

/// Whether a variant may be of this type at all.
bool IsVariantType(VARTYPE type) noexcept {
    if (type & (VT_VECTOR | VT_RESERVED)) {
        return false;
    }
    const auto base = static_cast<VARTYPE>(type & VT_TYPEMASK);
    if (base == VT_EMPTY || base == VT_NULL) {
        return (type & (VT_BYREF | VT_ARRAY)) == 0;
    }
    return quillet::platform::ElementSize(base) != 0;
}

} // namespace

void WINAPI VariantInit(VARIANTARG* variant) {
    std::memset(variant, 0, sizeof *variant);
}

HRESULT WINAPI VariantClear(VARIANTARG* variant) {
    if (!IsVariantType(V_VT(variant))) {
        return DISP_E_BADVARTYPE;
    }
    if (!V_ISBYREF(variant)) {
        if (V_ISARRAY(variant)) {
            const HRESULT hr = SafeArrayDestroy(V_ARRAY(variant));
            if (FAILED(hr)) {
                return hr;
            }
        } else if (V_VT(variant) == VT_BSTR) {
            SysFreeString(V_BSTR(variant));
        } else if ((V_VT(variant) == VT_UNKNOWN || V_VT(variant) == VT_DISPATCH) && V_UNKNOWN(variant)) {
            V_UNKNOWN(variant)->Release();
        }
    }
    VariantInit(variant);
    return S_OK;
}

HRESULT WINAPI VariantCopy(VARIANTARG* destination, const VARIANTARG* source) {
    if (!IsVariantType(V_VT(source))) {
        return DISP_E_BADVARTYPE;
    }
    if (destination == source) {
        return S_OK;
    }
    HRESULT hr = VariantClear(destination);
    if (FAILED(hr)) {
        return hr;
    }
    VARIANT copy = *source;
    if (!V_ISBYREF(source)) {
        if (V_ISARRAY(source)) {
            hr = SafeArrayCopy(V_ARRAY(source), &V_ARRAY(&copy));
        } else if (V_VT(source) == VT_BSTR && V_BSTR(source)) {
            V_BSTR(&copy) = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(V_BSTR(source)),
                                                  SysStringByteLen(V_BSTR(source)));
            hr = V_BSTR(&copy) ? S_OK : E_OUTOFMEMORY;
        } else if ((V_VT(source) == VT_UNKNOWN || V_VT(source) == VT_DISPATCH) && V_UNKNOWN(source)) {
            V_UNKNOWN(source)->AddRef();
        }
    }
    if (SUCCEEDED(hr)) {
        *destination = copy;
    }
    return hr;
}

HRESULT WINAPI VariantCopyInd(VARIANT* destination, const VARIANTARG* source) {
    if (!V_ISBYREF(source)) {
        return VariantCopy(destination, source);
    }
    if (!IsVariantType(V_VT(source)) || !V_BYREF(source)) {
        return V_BYREF(source) ? DISP_E_BADVARTYPE : E_INVALIDARG;
    }
    const auto type = static_cast<VARTYPE>(V_VT(source) & ~VT_BYREF);
    if (type == VT_VARIANT) {
        // A reference to a variant that is a reference itself ends here: only its own target is followed.
        const VARIANT* const target = V_VARIANTREF(source);
        if (V_VT(target) == (VT_VARIANT | VT_BYREF)) {
            return E_INVALIDARG;
        }
        VARIANT copy;
        VariantInit(&copy);
        const HRESULT hr = VariantCopyInd(&copy, target);
        if (FAILED(hr)) {
            return hr;
        }
        const HRESULT cleared = VariantClear(destination);
        if (FAILED(cleared)) {
            VariantClear(&copy);
            return cleared;
        }
        *destination = copy;
        return S_OK;
    }
    VARIANT view;
    VariantInit(&view);
    V_VT(&view) = type;
    if (type & VT_ARRAY) {
        V_ARRAY(&view) = *V_ARRAYREF(source);
    } else if (type == VT_DECIMAL) {
        V_DECIMAL(&view) = *V_DECIMALREF(source);
        V_VT(&view) = VT_DECIMAL;
    } else {
        std::memcpy(&V_I8(&view), V_BYREF(source), quillet::platform::ElementSize(type));
    }
    VARIANT copy;
    VariantInit(&copy);
    const HRESULT hr = VariantCopy(&copy, &view);
    if (FAILED(hr)) {
        return hr;
    }
    // `source` may point into `destination`, so that goes last.
    const HRESULT cleared = VariantClear(destination);
    if (FAILED(cleared)) {
        VariantClear(&copy);
        return cleared;
    }
    *destination = copy;
    return S_OK;
}
