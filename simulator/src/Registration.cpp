// The way into a machine: IWbemLocator, and the class objects behind CLSID_WbemLocator and CLSID_WbemContext.
#include <quillet-simulator/Machine.h>

#include "Calls.h"
#include "ComObject.h"
#include "Context.h"
#include "Services.h"
#include "VariantConversion.h"

#include <objbase.h>

namespace quillet::simulator {

namespace {

class Locator final : public ComObject<IWbemLocator, IID_IWbemLocator> {
  public:
    explicit Locator(std::shared_ptr<Machine> machine) : m_machine(std::move(machine)) {}

    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR resource, const BSTR user, const BSTR password,
                                            const BSTR locale, LONG flags, const BSTR authority,
                                            IWbemContext* context, IWbemServices** services) override {
        auto session = std::make_shared<Session>();
        session->machine = m_machine;
        session->locale = LocaleFromText(BstrText(locale));
        ProviderCall call(*session, Operation::ConnectServer, BstrText(resource), flags, context);
        const auto argument = [&call](const wchar_t* name, const BSTR text, bool secret) {
            NamedValue value{name, VT_BSTR, CIM_STRING, Value()};
            if (text != nullptr) {
                value.value = Value::Text(secret ? std::wstring(L"***") : std::wstring(BstrText(text)));
            }
            call.Entry().arguments.push_back(std::move(value));
        };
        argument(L"User", user, false);
        argument(L"Password", password, true);
        argument(L"Locale", locale, false);
        argument(L"Authority", authority, false);

        const bool cleared = ClearOut(services);
        const bool known = (flags & ~LONG(WBEM_FLAG_CONNECT_USE_MAX_WAIT)) == 0;
        const HRESULT admitted = call.Admit(true, cleared && resource != nullptr && known);
        if (FAILED(admitted)) {
            return call.Done(admitted);
        }
        if (!NamesNamespace(BstrText(resource), m_machine->Store())) {
            return call.Done(HRESULT(WBEM_E_INVALID_NAMESPACE));
        }
        if (!call.Has(Effect::NullObject)) {
            *services = MakeServices(std::move(session));
        }
        return call.Done(S_OK);
    }

  private:
    std::shared_ptr<Machine> m_machine;
};

/// Queries an object that was just made and gives it away.
HRESULT HandOut(IUnknown* made, REFIID iid, void** object) {
    const ComOwner<IUnknown> owned(made);
    return owned->QueryInterface(iid, object);
}

HRESULT CreateLocator(const std::shared_ptr<Machine>& machine, REFIID iid, void** object) {
    return HandOut(static_cast<IWbemLocator*>(new Locator(machine)), iid, object);
}

HRESULT CreateContext(const std::shared_ptr<Machine>& machine, REFIID iid, void** object) {
    const LocalCall call(*machine, Operation::CreateContext, L"IWbemContext");
    if (call.Has(Effect::Fail)) {
        return call.Done(call.FaultCode());
    }
    return call.Done(call.Has(Effect::NullObject) ? HRESULT(S_OK)
                                                  : HandOut(MakeContext(machine), iid, object));
}

using Creator = HRESULT (*)(const std::shared_ptr<Machine>&, REFIID, void**);

class ClassFactory final : public ComObject<IClassFactory, IID_IClassFactory> {
  public:
    ClassFactory(std::shared_ptr<Machine> machine, Creator create)
        : m_machine(std::move(machine)), m_create(create) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (!ClearOut(object)) {
            return E_POINTER;
        }
        return outer == nullptr ? m_create(m_machine, iid, object) : CLASS_E_NOAGGREGATION;
    }

    // The code is linked into its client: there is nothing to unload.
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    std::shared_ptr<Machine> m_machine;
    Creator m_create;
};

HRESULT Register(REFCLSID clsid, std::shared_ptr<Machine> machine, Creator create, DWORD* cookie) {
    const ComOwner<IClassFactory> factory(new ClassFactory(std::move(machine), create));
    return CoRegisterClassObject(clsid, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, cookie);
}

} // namespace

Registration::Registration(std::shared_ptr<Machine> machine) {
    m_result = Register(CLSID_WbemLocator, machine, CreateLocator, &m_locator);
    if (SUCCEEDED(m_result)) {
        m_result = Register(CLSID_WbemContext, std::move(machine), CreateContext, &m_context);
    }
}

Registration::~Registration() {
    if (m_context != 0) {
        CoRevokeClassObject(m_context);
    }
    if (m_locator != 0) {
        CoRevokeClassObject(m_locator);
    }
}

} // namespace quillet::simulator
