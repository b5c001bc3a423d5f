// Connecting to a namespace and walking through the instances of a class.
#include "recording/ProviderNamespace.h"

#include "ending/Failure.h"

#include <quillet-wmi/Variant.h>

namespace quilletctl {

namespace {

/// How long a provider may take for one object, in milliseconds. One that hangs is one that fails.
constexpr LONG kNextPatience = 60000;

/// A text as WMI takes it.
class WmiText {
  public:
    explicit WmiText(const std::wstring& text) : m_text(quillet::wmi::MakeBstr(text)) {}
    ~WmiText() { SysFreeString(m_text); }
    WmiText(const WmiText&) = delete;
    WmiText& operator=(const WmiText&) = delete;
    operator BSTR() const noexcept { return m_text; }

  private:
    BSTR m_text;
};

/// Calls go out in this user's name, as the library's own do. Success without an object is none.
HRESULT WithBlanket(HRESULT result, IUnknown* proxy) {
    if (FAILED(result) || proxy == nullptr) {
        return FAILED(result) ? result : HRESULT(WBEM_E_FAILED);
    }
    return CoSetProxyBlanket(proxy, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

} // namespace

ProviderNamespace::ProviderNamespace(const std::wstring& resource) {
    ATL::CComPtr<IWbemLocator> locator;
    HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                      reinterpret_cast<void**>(&locator));
    if (SUCCEEDED(result)) {
        result = locator->ConnectServer(WmiText(resource), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                        &m_services);
        result = WithBlanket(result, m_services);
    }
    if (FAILED(result)) {
        throw Refusal("connect to the provider", result, RemoteReason(result));
    }
}

HRESULT ProviderNamespace::ForEachInstance(const std::wstring& className, LONG flags,
                                           const std::function<void(IWbemClassObject&)>& take) {
    ATL::CComPtr<IEnumWbemClassObject> instances;
    HRESULT result = m_services->CreateInstanceEnum(
        WmiText(className), flags | WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
        &instances);
    result = WithBlanket(result, instances);
    while (SUCCEEDED(result)) {
        ATL::CComPtr<IWbemClassObject> instance;
        ULONG count = 0;
        result = instances->Next(kNextPatience, 1, &instance, &count);
        if (result == WBEM_S_TIMEDOUT) {
            return HRESULT(WBEM_E_TIMED_OUT);
        }
        if (SUCCEEDED(result) && !instance) {
            return S_OK;
        }
        if (SUCCEEDED(result)) {
            take(*instance);
        }
    }
    return result;
}

} // namespace quilletctl
