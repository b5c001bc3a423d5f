// IWbemServices.
#include "Services.h"

#include "CallResult.h"
#include "Calls.h"
#include "ClassObject.h"
#include "ComObject.h"
#include "Enumerator.h"
#include "VariantConversion.h"

#include <algorithm>

namespace quillet::simulator {

namespace {

constexpr LONG SemisynchronousFlag = WBEM_FLAG_RETURN_IMMEDIATELY;
constexpr LONG AmendedFlag = WBEM_FLAG_USE_AMENDED_QUALIFIERS;
constexpr LONG EnumerationFlags = WBEM_FLAG_RETURN_IMMEDIATELY | WBEM_FLAG_FORWARD_ONLY |
                                  WBEM_FLAG_ENSURE_LOCATABLE | WBEM_FLAG_DIRECT_READ |
                                  WBEM_FLAG_USE_AMENDED_QUALIFIERS;

bool Within(LONG flags, LONG allowed) noexcept {
    return (flags & ~allowed) == 0;
}

/// Of settings, a context may ask for subsets: bits above the low byte, which chooses properties. Settings of
/// no such subset are not told, as by a provider that knows partial retrieval.
void KeepSubset(const JournalEntry& call, std::vector<ProvidedObject>& found) {
    constexpr std::int64_t LowByte = 0xFF;
    const auto* asked = call.ContextValue(L"Zorel_PartialData");
    const auto* scalar = asked != nullptr ? asked->value.AsScalar() : nullptr;
    const auto* selector = scalar != nullptr ? std::get_if<std::int64_t>(scalar) : nullptr;
    if (selector == nullptr || *selector <= LowByte) {
        return;
    }
    std::erase_if(found, [subset = *selector & ~LowByte](const ProvidedObject& object) {
        return object.instance != nullptr && object.definition->IsA(L"Zorel_Setting") &&
               (object.instance->Number(L"PartialDataMask") & subset) == 0;
    });
}

/// The same session with a count of its own. Each thread has its own proxy; whatever that hands out holds the
/// session, and would otherwise share its count with the objects of all other threads.
SessionPtr CountedAlone(SessionPtr session) {
    const Session* const same = session.get();
    return SessionPtr(std::make_shared<const SessionPtr>(std::move(session)), same);
}

class ServicesProxy final : public ComObject<IWbemServices, IID_IWbemServices> {
  public:
    explicit ServicesProxy(SessionPtr session) : m_session(CountedAlone(std::move(session))) {}

    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR path, LONG flags, IWbemContext* context,
                                            IWbemServices** services, IWbemCallResult** result) override {
        ProviderCall call(*m_session, Operation::OpenNamespace, BstrText(path), flags, context);
        const bool cleared = static_cast<int>(ClearOut(services)) + static_cast<int>(ClearOut(result)) != 0;
        const HRESULT admitted =
            call.Admit(HasBlanket(), cleared && path != nullptr && Within(flags, SemisynchronousFlag));
        if (FAILED(admitted)) {
            return call.Done(admitted);
        }
        CallOutcome outcome;
        outcome.status = NamesNamespace(BstrText(path), m_session->machine->Store())
                             ? HRESULT(S_OK)
                             : HRESULT(WBEM_E_INVALID_NAMESPACE);
        if (SUCCEEDED(outcome.status) && !call.Has(Effect::NullObject)) {
            outcome.services.reset(MakeServices(m_session));
            if (services != nullptr && (flags & SemisynchronousFlag) == 0) {
                outcome.services->AddRef();
                *services = outcome.services.get();
            }
        }
        return Finish(call, flags, std::move(outcome), result);
    }

    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override {
        return Refuse(L"CancelAsyncCall");
    }

    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink** sink) override {
        ClearOut(sink);
        return Refuse(L"QueryObjectSink");
    }

    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object, IWbemCallResult** result) override {
        ProviderCall call(*m_session, Operation::GetObject, BstrText(path), flags, context);
        const bool wantsObject = ClearOut(object);
        const bool wantsResult = ClearOut(result);
        const bool later = (flags & SemisynchronousFlag) != 0;
        const bool valid = path != nullptr && (later ? wantsResult : wantsObject || wantsResult) &&
                           Within(flags, SemisynchronousFlag | AmendedFlag | WBEM_FLAG_DIRECT_READ);
        const HRESULT admitted = call.Admit(HasBlanket(), valid);
        if (FAILED(admitted)) {
            return call.Done(admitted);
        }
        // An empty path asks for an empty class to fill, and the schema is not the client's to change.
        CallOutcome outcome;
        if (SysStringLen(path) == 0) {
            outcome.status = HRESULT(WBEM_E_NOT_SUPPORTED);
        } else if (call.Has(Effect::FailStatus)) {
            outcome.status = call.FaultCode();
        } else {
            ProvidedObject found;
            outcome.status = Dispatcher(*m_session->machine).GetObject(BstrText(path), found);
            if (SUCCEEDED(outcome.status) && !call.Has(Effect::NullObject)) {
                outcome.object.reset(
                    new ClassObject(m_session, std::move(found), (flags & AmendedFlag) != 0));
                HandOver(outcome, later ? nullptr : object);
            }
        }
        return Finish(call, flags, std::move(outcome), result);
    }

    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return Refuse(L"GetObjectAsync");
    }

    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                       IWbemCallResult** result) override {
        ClearOut(result);
        return Refuse(L"PutClass");
    }

    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return Refuse(L"PutClassAsync");
    }

    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*,
                                          IWbemCallResult** result) override {
        ClearOut(result);
        return Refuse(L"DeleteClass");
    }

    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return Refuse(L"DeleteClassAsync");
    }

    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR superclass, LONG flags, IWbemContext* context,
                                              IEnumWbemClassObject** enumerator) override {
        ProviderCall call(*m_session, Operation::CreateClassEnum, BstrText(superclass), flags, context);
        return Enumerate(call, flags, WBEM_FLAG_SHALLOW, enumerator, true, [&](auto& found) {
            return Dispatcher(*m_session->machine)
                .ClassesBelow(BstrText(superclass), (flags & WBEM_FLAG_SHALLOW) != 0, found);
        });
    }

    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return Refuse(L"CreateClassEnumAsync");
    }

    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* object, LONG flags, IWbemContext* context,
                                          IWbemCallResult** result) override {
        const auto own = ClassObject::Behind(object);
        const auto path = own ? own->Path() : std::nullopt;
        const auto values = own ? own->Values() : Instance();
        ProviderCall call(*m_session, Operation::PutInstance,
                          path ? *path : (own ? values.definition->name : std::wstring()), flags, context);
        if (own) {
            call.Entry().arguments = own->Puts();
        }
        ClearOut(result);
        constexpr LONG Allowed =
            SemisynchronousFlag | AmendedFlag | WBEM_FLAG_CREATE_ONLY | WBEM_FLAG_UPDATE_ONLY;
        constexpr LONG Contradiction = WBEM_FLAG_CREATE_ONLY | WBEM_FLAG_UPDATE_ONLY;
        const bool valid =
            object != nullptr && Within(flags, Allowed) && (flags & Contradiction) != Contradiction;
        const HRESULT admitted = call.Admit(HasBlanket(), valid);
        if (FAILED(admitted)) {
            return call.Done(admitted);
        }
        CallOutcome outcome;
        if (!own || !own->IsInstance()) {
            outcome.status = HRESULT(WBEM_E_INVALID_OBJECT);
        } else if (call.Has(Effect::FailStatus)) {
            outcome.status = call.FaultCode();
        } else {
            Request request(*m_session->machine, call.Entry());
            outcome.status = Dispatcher(*m_session->machine).PutInstance(request, values, WriteMode(flags));
            call.Entry().note = request.Notes();
        }
        if (SUCCEEDED(outcome.status)) {
            own->ForgetPuts();
            outcome.text = path;
        }
        return Finish(call, flags, std::move(outcome), result);
    }

    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return Refuse(L"PutInstanceAsync");
    }

    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR path, LONG flags, IWbemContext* context,
                                             IWbemCallResult** result) override {
        ProviderCall call(*m_session, Operation::DeleteInstance, BstrText(path), flags, context);
        ClearOut(result);
        const HRESULT admitted =
            call.Admit(HasBlanket(), path != nullptr && Within(flags, SemisynchronousFlag));
        if (FAILED(admitted)) {
            return call.Done(admitted);
        }
        CallOutcome outcome;
        if (call.Has(Effect::FailStatus)) {
            outcome.status = call.FaultCode();
        } else {
            Request request(*m_session->machine, call.Entry());
            outcome.status = Dispatcher(*m_session->machine).DeleteInstance(request, BstrText(path));
            call.Entry().note = request.Notes();
        }
        return Finish(call, flags, std::move(outcome), result);
    }

    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return Refuse(L"DeleteInstanceAsync");
    }

    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* context,
                                                 IEnumWbemClassObject** enumerator) override {
        ProviderCall call(*m_session, Operation::CreateInstanceEnum, BstrText(className), flags, context);
        return Enumerate(call, flags, WBEM_FLAG_SHALLOW, enumerator, className != nullptr, [&](auto& found) {
            return Dispatcher(*m_session->machine)
                .InstancesOf(BstrText(className), (flags & WBEM_FLAG_SHALLOW) != 0, found);
        });
    }

    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return Refuse(L"CreateInstanceEnumAsync");
    }

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext* context, IEnumWbemClassObject** enumerator) override {
        ProviderCall call(*m_session, Operation::ExecQuery, BstrText(query), flags, context);
        if (language != nullptr && query != nullptr && !SameName(BstrText(language), L"WQL") &&
            HasBlanket()) {
            ClearOut(enumerator);
            return call.Done(HRESULT(WBEM_E_INVALID_QUERY_TYPE));
        }
        return Enumerate(
            call, flags, 0, enumerator, language != nullptr && query != nullptr, [&](auto& found) {
                const HRESULT result = Dispatcher(*m_session->machine).Query(BstrText(query), found);
                KeepSubset(call.Entry(), found);
                return result;
            });
    }

    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return Refuse(L"ExecQueryAsync");
    }

    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject** enumerator) override {
        ClearOut(enumerator);
        return Refuse(L"ExecNotificationQuery");
    }

    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                         IWbemObjectSink*) override {
        return Refuse(L"ExecNotificationQueryAsync");
    }

    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext* context, IWbemClassObject* inParameters,
                                         IWbemClassObject** outParameters,
                                         IWbemCallResult** result) override {
        ProviderCall call(*m_session, Operation::ExecMethod, BstrText(path), flags, context,
                          BstrText(method));
        const auto own = ClassObject::Behind(inParameters);
        if (own) {
            call.Entry().arguments = own->Puts();
        }
        ClearOut(outParameters);
        const bool later = (flags & SemisynchronousFlag) != 0;
        const bool valid = path != nullptr && method != nullptr && Within(flags, SemisynchronousFlag) &&
                           (ClearOut(result) || !later);
        const HRESULT admitted = call.Admit(HasBlanket(), valid);
        if (FAILED(admitted)) {
            return call.Done(admitted);
        }
        CallOutcome outcome;
        InstancePtr out;
        if (inParameters != nullptr && (!own || !own->IsInstance())) {
            outcome.status = HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        } else if (call.Has(Effect::FailStatus)) {
            outcome.status = call.FaultCode();
        } else {
            Request request(*m_session->machine, call.Entry());
            if (call.Has(Effect::Verdict)) {
                request.verdict = call.Fault()->verdict;
            } else if (call.Has(Effect::PowerCut)) {
                request.CutPower(call.FaultCode());
            }
            const auto in = own ? std::optional<Instance>(own->Values()) : std::nullopt;
            outcome.status =
                Dispatcher(*m_session->machine)
                    .ExecMethod(request, BstrText(path), BstrText(method), in ? &*in : nullptr, out);
            call.Entry().note = request.Notes();
        }
        if (out != nullptr && !call.Has(Effect::NullObject) && !call.Has(Effect::NoOutParameters)) {
            outcome.object.reset(new ClassObject(m_session, {out->definition, out}, false));
            HandOver(outcome, later ? nullptr : outParameters);
        }
        return Finish(call, flags, std::move(outcome), result);
    }

    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override {
        return Refuse(L"ExecMethodAsync");
    }

    // IClientSecurity: this object is its own proxy.
    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authenticationService,
                                           DWORD* authorisationService, OLECHAR** principal,
                                           DWORD* authenticationLevel, DWORD* impersonationLevel,
                                           void** identity, DWORD* capabilities) override {
        if (proxy == nullptr) {
            return E_INVALIDARG;
        }
        const std::lock_guard lock(m_mutex);
        const auto tell = [](DWORD* place, DWORD value) {
            if (place != nullptr) {
                *place = value;
            }
        };
        tell(authenticationService, m_blanket.authenticationService);
        tell(authorisationService, m_blanket.authorisationService);
        tell(authenticationLevel, m_blanket.authenticationLevel);
        tell(impersonationLevel, m_blanket.impersonationLevel);
        tell(capabilities, m_blanket.capabilities);
        ClearOut(principal);
        ClearOut(identity);
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authenticationService,
                                         DWORD authorisationService, OLECHAR*, DWORD authenticationLevel,
                                         DWORD impersonationLevel, void*, DWORD capabilities) override {
        if (proxy == nullptr) {
            return E_INVALIDARG;
        }
        const LocalCall call(*m_session->machine, Operation::SetBlanket, L"IWbemServices");
        if (call.Has(Effect::Fail)) {
            return call.Done(call.FaultCode());
        }
        {
            const std::lock_guard lock(m_mutex);
            m_blanket = {authenticationService, authorisationService, authenticationLevel, impersonationLevel,
                         capabilities};
        }
        if (!call.Recorded()) {
            return S_OK;
        }
        const auto number = [](const wchar_t* name, DWORD value) {
            return NamedValue{name, VT_UI4, CIM_UINT32, Value::Unsigned(value)};
        };
        return call.Done(S_OK, {number(L"AuthenticationLevel", authenticationLevel),
                                number(L"ImpersonationLevel", impersonationLevel)});
    }

  protected:
    // Each thread that retrieves the service gets a proxy of its own, and a new proxy has no blanket.
    IUnknown* CopyForRetrieval() override { return MakeServices(m_session); }

  private:
    struct Blanket {
        DWORD authenticationService = 0;
        DWORD authorisationService = 0;
        DWORD authenticationLevel = 0;
        DWORD impersonationLevel = 0;
        DWORD capabilities = 0;
    };

    bool HasBlanket() {
        const std::lock_guard lock(m_mutex);
        return m_blanket.authenticationLevel >= RPC_C_AUTHN_LEVEL_CALL &&
               m_blanket.impersonationLevel >= RPC_C_IMP_LEVEL_IMPERSONATE;
    }

    static Repository::Write WriteMode(LONG flags) {
        if ((flags & WBEM_FLAG_CREATE_ONLY) != 0) {
            return Repository::Write::CreateOnly;
        }
        return (flags & WBEM_FLAG_UPDATE_ONLY) != 0 ? Repository::Write::UpdateOnly
                                                    : Repository::Write::CreateOrUpdate;
    }

    static void HandOver(const CallOutcome& outcome, IWbemClassObject** object) {
        if (object != nullptr) {
            outcome.object->AddRef();
            *object = outcome.object.get();
        }
    }

    /// Ends a call that may have a call result: a semisynchronous one succeeds, and its result tells the
    /// rest.
    HRESULT Finish(ProviderCall& call, LONG flags, CallOutcome outcome, IWbemCallResult** result) {
        const bool later = (flags & SemisynchronousFlag) != 0 && result != nullptr;
        const bool accepted = later || (result != nullptr && call.Has(Effect::FailStatus));
        const HRESULT status = accepted ? S_OK : outcome.status;
        if (result != nullptr && SUCCEEDED(status) && !call.Has(Effect::NullObject)) {
            outcome.target = call.Entry().target;
            *result = MakeCallResult(m_session, std::move(outcome));
        }
        return call.Done(status);
    }

    /// Ends a call that hands out an enumerator. A semisynchronous one reports a failure at the first Next.
    template <class Find>
    HRESULT Enumerate(ProviderCall& call, LONG flags, LONG ownFlags, IEnumWbemClassObject** enumerator,
                      bool argumentsValid, Find find) {
        const bool valid =
            ClearOut(enumerator) && argumentsValid && Within(flags, EnumerationFlags | ownFlags);
        const HRESULT admitted = call.Admit(HasBlanket(), valid);
        if (FAILED(admitted)) {
            return call.Done(admitted);
        }
        auto found = std::make_shared<std::vector<ProvidedObject>>();
        const HRESULT result = find(*found);
        if (FAILED(result) && (flags & SemisynchronousFlag) == 0) {
            return call.Done(result);
        }
        if (!call.Has(Effect::NullObject)) {
            *enumerator = MakeEnumerator(m_session,
                                         {call.Entry().target, std::move(found), result,
                                          (flags & AmendedFlag) != 0, (flags & WBEM_FLAG_FORWARD_ONLY) != 0});
        }
        return call.Done(S_OK);
    }

    /// A call that the simulator does not do.
    HRESULT Refuse(const wchar_t* method) {
        ProviderCall call(*m_session, Operation::Unsupported, {}, 0, nullptr, method);
        const HRESULT admitted = call.Admit(HasBlanket(), true);
        return call.Done(FAILED(admitted) ? admitted : HRESULT(WBEM_E_NOT_SUPPORTED));
    }

    const SessionPtr m_session;
    std::mutex m_mutex;
    Blanket m_blanket;
};

} // namespace

IWbemServices* MakeServices(SessionPtr session) {
    return new ServicesProxy(std::move(session));
}

bool NamesNamespace(std::wstring_view path, const Repository& store) {
    std::wstring text(path);
    std::replace(text.begin(), text.end(), L'/', L'\\');
    std::wstring_view rest(text);
    if (rest.substr(0, 2) == L"\\\\") {
        const auto end = rest.find(L'\\', 2);
        if (end == std::wstring_view::npos || end == 2) {
            return false;
        }
        rest.remove_prefix(end + 1);
    }
    return SameName(rest, store.NamespaceName());
}

} // namespace quillet::simulator
