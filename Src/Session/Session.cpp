// The session: connecting to the provider, keeping its interfaces in the Global Interface Table for every
// thread of the client, and letting go of them.
#include <quillet/Quillet.h>

#include "Session/ConfigurationKeys.h"
#include "LumRegistry.h"
#include "Provider/ProviderEnum.h"
#include "Provider/ProviderNames.h"
#include "Session/ProxyBlanket.h"
#include "Provider/ResultCodes.h"
#include "Session/SessionLocale.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

#include <utility>

using ATL::CComPtr;

namespace {

constexpr const wchar_t* LOCAL_MACHINE = L"127.0.0.1";
constexpr const wchar_t* NAMESPACE_ROOT = L"\\ROOT\\";
constexpr const wchar_t* DEFAULT_NAMESPACE = L"MarloLUM2";
constexpr const wchar_t* NO_SERVICE = L"GetWbemService -> ((0 == m_dwService) || (m_pGIT == NULL))";

} // namespace

CQuillet::CQuillet() : CQuillet(LOCAL_MACHINE) {}

CQuillet::CQuillet(std::wstring machine) : m_strMachineName(std::move(machine)) {
    // The destructor traces: a static object must not outlive the log, which is made when it is first used.
    LumTrace();
}

CQuillet::CQuillet(const CQuillet& other) = default;

CQuillet& CQuillet::operator=(const CQuillet& other) = default;

CQuillet::~CQuillet() {
    TraceText(L"~CQuillet");
}

HRESULT CQuillet::InitQuillet() {
    TraceText(L"Enter InitQuillet");
    // A second connection must not leave the first one's entries in the table for ever.
    if (m_dwNetService != 0) {
        RevokeNetService();
    }
    if (m_dwContext != 0) {
        RevokeWbemContext();
    }
    if (m_dwService != 0) {
        RevokeWbemService();
    }

    HRESULT result = SetInitialSecurityAttribute();
    if (FAILED(result)) {
        return result;
    }
    CComPtr<IWbemLocator> locator;
    result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                              reinterpret_cast<void**>(&locator));
    if (FAILED(result)) {
        TraceText(L"Failed to create IWbemLocator object.");
        return result;
    }
    const _bstr_t path = _bstr_t(L"\\\\") + m_strMachineName.c_str() + GetNamespace();
    _bstr_t locale;
    if (const std::optional<std::wstring> chosen = ChooseConnectionLocale()) {
        locale = chosen->c_str();
    }
    CComPtr<IWbemServices> service;
    result = locator->ConnectServer(path, nullptr, nullptr, locale, 0, nullptr, nullptr, &service);
    if (FAILED(result)) {
        TraceText(L"Could not connect to namespace.");
        return result;
    }
    result = SetProxyBlanket(service);
    locator.Release();
    if (FAILED(result)) {
        TraceText(L"Could not set proxy blanket.");
        return result;
    }

    // A service that cannot be registered is found missing by the next step.
    MarshalWbemService(service);
    result = CreateNetServices();
    if (FAILED(result)) {
        RevokeWbemService();
        TraceText(L"Unable to create net service");
        return result;
    }
    result = CreateContext();
    if (FAILED(result)) {
        RevokeWbemService();
        RevokeNetService();
        return result;
    }
    TraceText(L"Create Context - Exit InitQuillet");
    service.Release();
    TraceText(L"Exit InitQuillet");
    return S_OK;
}

HRESULT CQuillet::UninitQuillet() {
    TraceText(L"Enter UninitQuillet");
    RevokeNetService();
    RevokeWbemContext();
    RevokeWbemService();
    TraceText(L"Exit UninitQuillet");
    return S_OK;
}

_bstr_t CQuillet::GetNamespace() {
    constexpr std::size_t namespaceBuffer = 1024;
    const std::optional<std::wstring> configured =
        LumRegistryKey(REGISTRY_PROVIDERS).ReadString(L"Namespace", namespaceBuffer);
    return _bstr_t(NAMESPACE_ROOT) + (configured ? configured->c_str() : DEFAULT_NAMESPACE);
}

HRESULT CQuillet::CreateNetServices() {
    const OperationTrace trace(L"Enter CreateNetServices", L"Exit CreateNetServices");
    CComPtr<IWbemServices> service;
    service.Attach(GetWbemService());
    if (!service) {
        return trace.Fail(RESULT_WBEM_FAILED, L"pIWbemService == NULL");
    }
    CComPtr<IEnumWbemClassObject> enumerator;
    const HRESULT result =
        service->CreateInstanceEnum(_bstr_t(L_CLASS_ZOREL_CORESERVICE.name), 0, nullptr, &enumerator);
    if (FAILED(result)) {
        return trace.Fail(result, L"pIWbemService->CreateInstanceEnum");
    }
    ProviderEnum netServices(result, enumerator);
    CComPtr<IWbemClassObject> last;
    CComPtr<IWbemClassObject> netService;
    while (netServices.Next(netService)) {
        last = netService;
    }
    // A provider without its network service can still be asked for everything else, so neither the
    // enumeration's end nor the registration is a reason to refuse the connection.
    MarshalNetService(last);
    return S_OK;
}

HRESULT CQuillet::CreateContext() {
    CComPtr<IWbemContext> context;
    const HRESULT result = CoCreateInstance(CLSID_WbemContext, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_IWbemContext, reinterpret_cast<void**>(&context));
    if (SUCCEEDED(result)) {
        MarshalWbemContext(context);
    }
    return result;
}

HRESULT CQuillet::MarshalInterface(IUnknown* pointer, REFIID iid, DWORD& cookie, const wchar_t* operation) {
    if (!m_pGIT) {
        const auto fail = [operation](HRESULT code, const wchar_t* ending) {
            LumTrace().Print(L"%s -> CoCreateInstance -> CLSID_StdGlobalInterfaceTable%s", operation, ending);
            return code;
        };
        const HRESULT result = CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                                IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&m_pGIT));
        if (FAILED(result)) {
            return fail(result, L"");
        }
        if (!m_pGIT) {
            return fail(E_FAIL, L" -> NULL");
        }
    }
    return m_pGIT->RegisterInterfaceInGlobal(pointer, iid, &cookie);
}

bool CQuillet::IsRegistered(DWORD cookie, const wchar_t* missing) const {
    if (cookie == 0 || !m_pGIT) {
        TraceText(missing);
        return false;
    }
    return true;
}

HRESULT CQuillet::RevokeInterface(DWORD& cookie, const wchar_t* missing) {
    return IsRegistered(cookie, missing) ? m_pGIT->RevokeInterfaceFromGlobal(std::exchange(cookie, 0))
                                         : E_FAIL;
}

template <class Interface>
CComPtr<Interface> CQuillet::FetchInterface(DWORD cookie, REFIID iid, const wchar_t* missing) {
    CComPtr<Interface> fetched;
    if (IsRegistered(cookie, missing) &&
        FAILED(m_pGIT->GetInterfaceFromGlobal(cookie, iid, reinterpret_cast<void**>(&fetched)))) {
        fetched.Release();
    }
    return fetched;
}

HRESULT CQuillet::MarshalWbemService(IWbemServices* service) {
    return MarshalInterface(service, IID_IWbemServices, m_dwService, L"MarshalWbemService");
}

HRESULT CQuillet::MarshalWbemContext(IWbemContext* context) {
    return MarshalInterface(context, IID_IWbemContext, m_dwContext, L"MarshalWbemContext");
}

HRESULT CQuillet::MarshalNetService(IWbemClassObject* netService) {
    return MarshalInterface(netService, IID_IWbemClassObject, m_dwNetService, L"MarshalNetService");
}

HRESULT CQuillet::RevokeWbemService() {
    // The getter's text, on purpose: both say that there is no service.
    return RevokeInterface(m_dwService, NO_SERVICE);
}

HRESULT CQuillet::RevokeWbemContext() {
    return RevokeInterface(m_dwContext, L"RevokeWbemContext -> ((0 == m_dwContext) || (m_pGIT == NULL))");
}

HRESULT CQuillet::RevokeNetService() {
    return RevokeInterface(m_dwNetService,
                           L"RevokeNetService -> ((0 == m_dwNetService) || (m_pGIT == NULL))");
}

IWbemServices* CQuillet::GetWbemService() {
    CComPtr<IWbemServices> service =
        FetchInterface<IWbemServices>(m_dwService, IID_IWbemServices, NO_SERVICE);
    // Each retrieval is a proxy of its own, and a proxy starts without this client's security.
    if (service && FAILED(SetProxyBlanket(service))) {
        TraceText(L"Could not set proxy blanket.");
        return nullptr;
    }
    return service.Detach();
}

IWbemContext* CQuillet::GetContext() {
    CComPtr<IWbemContext> context = FetchInterface<IWbemContext>(
        m_dwContext, IID_IWbemContext, L"GetContext -> ((0 == m_dwContext) || (m_pGIT == NULL))");
    if (context) {
        _variant_t clientSet = VariantOfLong(m_lClientSetId);
        // A fixed text; there is no code behind it.
        TraceText(L"dwErrorCode: %l");
        context->SetValue(CONTEXT_CLIENT_SET_ID, 0, &clientSet);
    }
    return context.Detach();
}

IWbemClassObject* CQuillet::GetNetService() {
    return FetchInterface<IWbemClassObject>(m_dwNetService, IID_IWbemClassObject,
                                            L"GetNetService -> ((0 == m_dwNetService) || (m_pGIT == NULL))")
        .Detach();
}

void CQuillet::AddNameSpace(const std::wstring& relativePath, std::wstring& fullPath) {
    wchar_t computer[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    if (!GetComputerNameW(computer, &length)) {
        TraceText(L"GetComputerName Failure!!!");
        fullPath = L"error";
        return;
    }
    fullPath = std::wstring(L"\\\\") + computer + L"\\" + L"ROOT\\MarloLUM2:" + relativePath;
}
