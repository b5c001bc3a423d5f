// The security settings of proxies, which every proxy keeps itself.
#include <windows.h>
#include <objbase.h>

namespace {

/// Calls `use` with the proxy's own security interface.
template <class Use>
HRESULT WithSecurity(IUnknown* proxy, Use use) {
    if (!proxy) {
        return E_INVALIDARG;
    }
    IClientSecurity* security = nullptr;
    HRESULT hr = proxy->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security));
    if (FAILED(hr)) {
        return E_NOINTERFACE;
    }
    hr = use(security);
    security->Release();
    return hr;
}

} // namespace

HRESULT WINAPI CoSetProxyBlanket(IUnknown* proxy, DWORD authnSvc, DWORD authzSvc, OLECHAR* serverPrincipal,
                                 DWORD authnLevel, DWORD impLevel, RPC_AUTH_IDENTITY_HANDLE authInfo,
                                 DWORD capabilities) {
    return WithSecurity(proxy, [&](IClientSecurity* security) {
        return security->SetBlanket(proxy, authnSvc, authzSvc, serverPrincipal, authnLevel, impLevel,
                                    authInfo, capabilities);
    });
}

HRESULT WINAPI CoQueryProxyBlanket(IUnknown* proxy, DWORD* authnSvc, DWORD* authzSvc,
                                   OLECHAR** serverPrincipal, DWORD* authnLevel, DWORD* impLevel,
                                   RPC_AUTH_IDENTITY_HANDLE* authInfo, DWORD* capabilities) {
    return WithSecurity(proxy, [&](IClientSecurity* security) {
        return security->QueryBlanket(proxy, authnSvc, authzSvc, serverPrincipal, authnLevel, impLevel,
                                      authInfo, capabilities);
    });
}

HRESULT WINAPI CoCopyProxy(IUnknown* proxy, IUnknown** copy) {
    if (!copy) {
        return E_INVALIDARG;
    }
    return WithSecurity(proxy, [&](IClientSecurity* security) { return security->CopyProxy(proxy, copy); });
}
