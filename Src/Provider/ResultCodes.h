// WMI's result codes as HRESULTs. The SDK declares them as an unsigned enumeration, which neither compares
// with nor converts to an HRESULT without a warning.
#pragma once

#include <windows.h>
#include <wbemidl.h>

inline constexpr HRESULT RESULT_WBEM_FAILED = static_cast<HRESULT>(WBEM_E_FAILED);               // 0x80041001
inline constexpr HRESULT RESULT_WBEM_NOT_FOUND = static_cast<HRESULT>(WBEM_E_NOT_FOUND);         // 0x80041002
inline constexpr HRESULT RESULT_WBEM_ACCESS_DENIED = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED); // 0x80041003
inline constexpr HRESULT RESULT_WBEM_OUT_OF_MEMORY = static_cast<HRESULT>(WBEM_E_OUT_OF_MEMORY); // 0x80041006

/// 0 for every success: a provider's own kinds of success are nothing to a caller.
inline HRESULT SuccessOr(HRESULT result) {
    return FAILED(result) ? result : S_OK;
}
