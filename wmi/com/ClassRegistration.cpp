// The way to a host: IWbemLocator, and the class objects behind CLSID_WbemLocator and CLSID_WbemContext.
#include <quillet-wmi/Registration.h>

#include "com/ComObject.h"
#include "com/Context.h"
#include "com/Services.h"
#include "connection/Session.h"

#include <quillet-wmi/Variant.h>

#include <objbase.h>

namespace quillet::wmi {

namespace {

class Locator final : public ComObject<IWbemLocator, IID_IWbemLocator> {
  public:
    explicit Locator(std::shared_ptr<Host> host) : m_host(std::move(host)) {}

    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG flags, const BSTR authority,
                                            IWbemContext* values, IWbemServices** services) override {
        const auto given = [](const BSTR text) {
            return text != nullptr ? std::optional(BstrText(text)) : std::nullopt;
        };
        const ConnectArguments arguments{BstrText(resource), given(user), given(password), given(locale),
                                         given(authority)};
        CallContext context;
        context.flags = flags;
        context.hasContext = values != nullptr;
        context.values = ContextValues(values);
        context.locale = LocaleFromText(BstrText(locale));
        const bool known = (flags & ~LONG(WBEM_FLAG_CONNECT_USE_MAX_WAIT)) == 0;
        if (!ClearOut(services) || resource == nullptr || !known) {
            ObservedCall seen;
            seen.operation = Operation::ConnectServer;
            seen.target = arguments.resource;
            seen.context = &context;
            return Refused(m_host->Observer(), seen, HRESULT(WBEM_E_INVALID_PARAMETER), arguments.Named());
        }
        auto session = std::make_shared<Session>();
        const Outcome outcome = m_host->Connect(context, arguments, session->connection);
        if (SUCCEEDED(outcome.status) && session->connection != nullptr) {
            session->locale = context.locale;
            session->observer = session->connection->Observer();
            *services = MakeServices(std::move(session));
        }
        return outcome.status;
    }

  private:
    std::shared_ptr<Host> m_host;
};

/// Queries an object that was just made and gives it away.
HRESULT HandOut(IUnknown* made, REFIID iid, void** object) {
    const ComOwner<IUnknown> owned(made);
    return owned->QueryInterface(iid, object);
}

HRESULT CreateLocator(const std::shared_ptr<Host>& host, REFIID iid, void** object) {
    return HandOut(static_cast<IWbemLocator*>(new Locator(host)), iid, object);
}

HRESULT CreateContext(const std::shared_ptr<Host>& host, REFIID iid, void** object) {
    ObservedCall seen;
    seen.operation = Operation::CreateContext;
    seen.target = L"IWbemContext";
    const LocalCall call(host->Observer(), seen);
    if (call.Stopped()) {
        return call.Done(*call.Stopped());
    }
    return call.Done(call.Withheld() ? HRESULT(S_OK) : HandOut(MakeContext(host), iid, object));
}

using Creator = HRESULT (*)(const std::shared_ptr<Host>&, REFIID, void**);

class ClassFactory final : public ComObject<IClassFactory, IID_IClassFactory> {
  public:
    ClassFactory(std::shared_ptr<Host> host, Creator create) : m_host(std::move(host)), m_create(create) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (!ClearOut(object)) {
            return E_POINTER;
        }
        return outer == nullptr ? m_create(m_host, iid, object) : CLASS_E_NOAGGREGATION;
    }

    // The code is linked into its client: there is nothing to unload.
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    std::shared_ptr<Host> m_host;
    Creator m_create;
};

HRESULT Register(REFCLSID clsid, std::shared_ptr<Host> host, Creator create, DWORD* cookie) {
    const ComOwner<IClassFactory> factory(new ClassFactory(std::move(host), create));
    return CoRegisterClassObject(clsid, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, cookie);
}

} // namespace

ClassRegistration::ClassRegistration(std::shared_ptr<Host> host) {
    m_result = Register(CLSID_WbemLocator, host, CreateLocator, &m_locator);
    if (SUCCEEDED(m_result)) {
        m_result = Register(CLSID_WbemContext, std::move(host), CreateContext, &m_context);
    }
}

ClassRegistration::~ClassRegistration() {
    if (m_context != 0) {
        CoRevokeClassObject(m_context);
    }
    if (m_locator != 0) {
        CoRevokeClassObject(m_locator);
    }
}

} // namespace quillet::wmi
