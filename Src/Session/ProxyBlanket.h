// The security that every service proxy needs before its first call: this client's identity, checked at
// each call, which the provider may impersonate.
#pragma once

#include <windows.h>
#include <wbemidl.h>

#include "Provider/ResultCodes.h"

/// 0x80041001 without a service: a connection that succeeds may have brought none, and not every COM looks.
inline HRESULT SetProxyBlanket(IWbemServices* service) {
    if (!service) {
        return RESULT_WBEM_FAILED;
    }
    return CoSetProxyBlanket(service, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}
