// IWbemServices.
#include "com/Services.h"

#include "com/Blanket.h"
#include "com/CallResult.h"
#include "com/ComObject.h"
#include "com/Context.h"
#include "com/Enumerator.h"
#include "objects/ClassObject.h"

#include <quillet-wmi/Variant.h>

namespace quillet::wmi {

namespace {

constexpr LONG kSemisynchronous = WBEM_FLAG_RETURN_IMMEDIATELY;
constexpr LONG kAmended = WBEM_FLAG_USE_AMENDED_QUALIFIERS;
constexpr LONG kEnumeration = WBEM_FLAG_RETURN_IMMEDIATELY | WBEM_FLAG_FORWARD_ONLY |
                              WBEM_FLAG_ENSURE_LOCATABLE | WBEM_FLAG_DIRECT_READ |
                              WBEM_FLAG_USE_AMENDED_QUALIFIERS;

bool Within(LONG flags, LONG allowed) noexcept {
    return (flags & ~allowed) == 0;
}

/// The same session with a count of its own. Each thread has its own proxy; whatever that hands out holds the
/// session, and would otherwise share its count with the objects of all other threads.
SessionPtr CountedAlone(SessionPtr session) {
    const Session* const same = session.get();
    return SessionPtr(std::make_shared<const SessionPtr>(std::move(session)), same);
}

/// One call on a proxy until it reaches the connection.
struct ServiceCall {
    ServiceCall(const Session& of, Operation operation, std::wstring_view target, LONG flags = 0,
                IWbemContext* values = nullptr, bool callResult = false, std::wstring_view method = {})
        : session(of) {
        context.flags = flags;
        context.hasContext = values != nullptr;
        context.values = ContextValues(values);
        context.locale = of.locale;
        context.callResult = callResult;
        seen.operation = operation;
        seen.target = target;
        seen.method = method;
        seen.context = &context;
    }
    ServiceCall(const ServiceCall&) = delete;
    ServiceCall& operator=(const ServiceCall&) = delete;

    /// E_ACCESSDENIED for a proxy without its blanket, then WBEM_E_INVALID_PARAMETER.
    HRESULT Admit(const Blanket& blanket, bool argumentsValid, std::vector<NamedValue> arguments = {}) const {
        if (!blanket.Suffices()) {
            return Refuse(E_ACCESSDENIED, std::move(arguments));
        }
        return argumentsValid ? HRESULT(S_OK)
                              : Refuse(HRESULT(WBEM_E_INVALID_PARAMETER), std::move(arguments));
    }
    HRESULT Refuse(HRESULT code, std::vector<NamedValue> arguments = {}) const {
        return Refused(session.observer, seen, code, std::move(arguments));
    }
    Connection& To() const { return *session.connection; }

    const Session& session;
    CallContext context;
    ObservedCall seen;
};

/// What an object of ours holds, or nothing of somebody else's.
struct HeldObject {
    explicit HeldObject(IWbemClassObject* object) : own(ClassObject::Behind(object)) {
        if (own) {
            values = own->Values();
            puts = own->Puts();
        }
    }

    ComOwner<ClassObject> own;
    Instance values;
    std::vector<NamedValue> puts;
};

class ServicesProxy final : public ComObject<IWbemServices, IID_IWbemServices> {
  public:
    explicit ServicesProxy(SessionPtr session) : m_session(CountedAlone(std::move(session))) {}

    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR path, LONG flags, IWbemContext* context,
                                            IWbemServices** services, IWbemCallResult** result) override {
        const ServiceCall call(*m_session, Operation::OpenNamespace, BstrText(path), flags, context,
                               result != nullptr);
        const bool cleared = static_cast<int>(ClearOut(services)) + static_cast<int>(ClearOut(result)) != 0;
        const bool valid = cleared && path != nullptr && Within(flags, kSemisynchronous);
        if (const HRESULT admitted = call.Admit(m_blanket, valid); FAILED(admitted)) {
            return admitted;
        }
        std::shared_ptr<Connection> opened;
        const Outcome outcome = call.To().OpenNamespace(call.context, BstrText(path), opened);
        CallOutcome end;
        if (SUCCEEDED(outcome.status) && opened != nullptr) {
            auto session = std::make_shared<Session>(*m_session);
            session->observer = opened->Observer();
            session->connection = std::move(opened);
            end.services.reset(MakeServices(std::move(session)));
            HandOver(call, end.services, services);
        }
        return Finish(call, outcome, std::move(end), result);
    }

    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object, IWbemCallResult** result) override {
        const ServiceCall call(*m_session, Operation::GetObject, BstrText(path), flags, context,
                               result != nullptr);
        const bool wantsObject = ClearOut(object);
        const bool wantsResult = ClearOut(result);
        const bool valid = path != nullptr &&
                           (call.context.Semisynchronous() ? wantsResult : wantsObject || wantsResult) &&
                           Within(flags, kSemisynchronous | kAmended | WBEM_FLAG_DIRECT_READ);
        if (const HRESULT admitted = call.Admit(m_blanket, valid); FAILED(admitted)) {
            return admitted;
        }
        Object found;
        const Outcome outcome = call.To().GetObject(call.context, BstrText(path), found);
        CallOutcome end;
        if (SUCCEEDED(outcome.status) && found.definition != nullptr) {
            end.object.reset(new ClassObject(m_session, std::move(found), (flags & kAmended) != 0));
            HandOver(call, end.object, object);
        }
        return Finish(call, outcome, std::move(end), result);
    }

    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* object, LONG flags, IWbemContext* context,
                                          IWbemCallResult** result) override {
        HeldObject held(object);
        auto path = held.own ? held.own->Path() : std::nullopt;
        const std::wstring target = path ? *path : (held.own ? held.values.definition->name : std::wstring());
        ServiceCall call(*m_session, Operation::PutInstance, target, flags, context, result != nullptr);
        call.seen.definition = held.values.definition.get();
        ClearOut(result);
        constexpr LONG kAllowed = kSemisynchronous | kAmended | WBEM_FLAG_CREATE_ONLY | WBEM_FLAG_UPDATE_ONLY;
        constexpr LONG kContradiction = WBEM_FLAG_CREATE_ONLY | WBEM_FLAG_UPDATE_ONLY;
        const bool valid =
            object != nullptr && Within(flags, kAllowed) && (flags & kContradiction) != kContradiction;
        if (const HRESULT admitted = call.Admit(m_blanket, valid, held.puts); FAILED(admitted)) {
            return admitted;
        }
        if (!held.own || !held.own->IsInstance()) {
            return call.Refuse(HRESULT(WBEM_E_INVALID_OBJECT), held.puts);
        }
        const Outcome outcome =
            call.To().PutInstance(call.context, {held.values, held.puts}, WriteModeOf(flags));
        CallOutcome end;
        if (SUCCEEDED(outcome.status)) {
            held.own->ForgetPuts();
            end.text = std::move(path);
        }
        return Finish(call, outcome, std::move(end), result);
    }

    HRESULT STDMETHODCALLTYPE DeleteInstance(const BSTR path, LONG flags, IWbemContext* context,
                                             IWbemCallResult** result) override {
        const ServiceCall call(*m_session, Operation::DeleteInstance, BstrText(path), flags, context,
                               result != nullptr);
        ClearOut(result);
        const bool valid = path != nullptr && Within(flags, kSemisynchronous);
        if (const HRESULT admitted = call.Admit(m_blanket, valid); FAILED(admitted)) {
            return admitted;
        }
        const Outcome outcome = call.To().DeleteInstance(call.context, BstrText(path));
        return Finish(call, outcome, {}, result);
    }

    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR superclass, LONG flags, IWbemContext* context,
                                              IEnumWbemClassObject** enumerator) override {
        const ServiceCall call(*m_session, Operation::CreateClassEnum, BstrText(superclass), flags, context);
        return Enumerate(call, WBEM_FLAG_SHALLOW, enumerator, true, [&](auto& found) {
            return call.To().Classes(call.context, BstrText(superclass), DepthOf(flags), found);
        });
    }

    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* context,
                                                 IEnumWbemClassObject** enumerator) override {
        const ServiceCall call(*m_session, Operation::CreateInstanceEnum, BstrText(className), flags,
                               context);
        return Enumerate(call, WBEM_FLAG_SHALLOW, enumerator, className != nullptr, [&](auto& found) {
            return call.To().Instances(call.context, BstrText(className), DepthOf(flags), found);
        });
    }

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext* context, IEnumWbemClassObject** enumerator) override {
        const ServiceCall call(*m_session, Operation::ExecQuery, BstrText(query), flags, context);
        const bool whole = language != nullptr && query != nullptr;
        if (whole && !SameName(BstrText(language), L"WQL") && m_blanket.Suffices()) {
            ClearOut(enumerator);
            return call.Refuse(HRESULT(WBEM_E_INVALID_QUERY_TYPE));
        }
        return Enumerate(call, 0, enumerator, whole,
                         [&](auto& found) { return call.To().Query(call.context, BstrText(query), found); });
    }

    HRESULT STDMETHODCALLTYPE ExecMethod(const BSTR path, const BSTR method, LONG flags,
                                         IWbemContext* context, IWbemClassObject* inParameters,
                                         IWbemClassObject** outParameters,
                                         IWbemCallResult** result) override {
        ServiceCall call(*m_session, Operation::ExecMethod, BstrText(path), flags, context, result != nullptr,
                         BstrText(method));
        const HeldObject in(inParameters);
        call.seen.definition = in.values.definition.get();
        ClearOut(outParameters);
        const bool valid = path != nullptr && method != nullptr && Within(flags, kSemisynchronous) &&
                           (ClearOut(result) || !call.context.Semisynchronous());
        if (const HRESULT admitted = call.Admit(m_blanket, valid, in.puts); FAILED(admitted)) {
            return admitted;
        }
        if (inParameters != nullptr && (!in.own || !in.own->IsInstance())) {
            const Outcome outcome = HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
            call.Refuse(outcome.Returned(call.context), in.puts);
            return Finish(call, outcome, {}, result);
        }
        const Filled filled{in.values, in.puts};
        InstancePtr out;
        const Outcome outcome = call.To().ExecMethod(call.context, BstrText(path), BstrText(method),
                                                     in.own ? &filled : nullptr, out);
        CallOutcome end;
        if (out != nullptr) {
            auto definition = out->definition;
            end.object.reset(new ClassObject(m_session, {std::move(definition), std::move(out)}, false));
            HandOver(call, end.object, outParameters);
        }
        return Finish(call, outcome, std::move(end), result);
    }

    // What is not done: calls that end at a sink, notifications, and changes of the schema, which is not the
    // client's to change.
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override {
        return Unsupported(L"CancelAsyncCall");
    }
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink** sink) override {
        ClearOut(sink);
        return Unsupported(L"QueryObjectSink");
    }
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return Unsupported(L"GetObjectAsync");
    }
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                       IWbemCallResult** result) override {
        ClearOut(result);
        return Unsupported(L"PutClass");
    }
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override {
        return Unsupported(L"PutClassAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*,
                                          IWbemCallResult** result) override {
        ClearOut(result);
        return Unsupported(L"DeleteClass");
    }
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override {
        return Unsupported(L"DeleteClassAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override {
        return Unsupported(L"CreateClassEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override {
        return Unsupported(L"PutInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                  IWbemObjectSink*) override {
        return Unsupported(L"DeleteInstanceAsync");
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override {
        return Unsupported(L"CreateInstanceEnumAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override {
        return Unsupported(L"ExecQueryAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject** enumerator) override {
        ClearOut(enumerator);
        return Unsupported(L"ExecNotificationQuery");
    }
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                         IWbemObjectSink*) override {
        return Unsupported(L"ExecNotificationQueryAsync");
    }
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override {
        return Unsupported(L"ExecMethodAsync");
    }

    // IClientSecurity: this object is its own proxy.
    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authenticationService,
                                           DWORD* authorisationService, OLECHAR** principal,
                                           DWORD* authenticationLevel, DWORD* impersonationLevel,
                                           void** identity, DWORD* capabilities) override {
        if (proxy == nullptr) {
            return E_INVALIDARG;
        }
        m_blanket.Tell(authenticationService, authorisationService, authenticationLevel, impersonationLevel,
                       capabilities);
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
        ObservedCall seen;
        seen.operation = Operation::SetBlanket;
        seen.target = L"IWbemServices";
        const LocalCall call(m_session->observer, seen);
        if (call.Stopped()) {
            return call.Done(*call.Stopped());
        }
        m_blanket.Set(authenticationService, authorisationService, authenticationLevel, impersonationLevel,
                      capabilities);
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
    static WriteMode WriteModeOf(LONG flags) {
        if ((flags & WBEM_FLAG_CREATE_ONLY) != 0) {
            return WriteMode::CreateOnly;
        }
        return (flags & WBEM_FLAG_UPDATE_ONLY) != 0 ? WriteMode::UpdateOnly : WriteMode::CreateOrUpdate;
    }
    static Depth DepthOf(LONG flags) {
        return (flags & WBEM_FLAG_SHALLOW) != 0 ? Depth::Shallow : Depth::Deep;
    }

    /// A semisynchronous client gets the object from its call result.
    template <class Interface>
    static void HandOver(const ServiceCall& call, const ComOwner<Interface>& yielded, Interface** place) {
        if (place != nullptr && !call.context.Semisynchronous()) {
            yielded->AddRef();
            *place = yielded.get();
        }
    }

    /// Ends a call that may have a call result.
    HRESULT Finish(const ServiceCall& call, const Outcome& outcome, CallOutcome end,
                   IWbemCallResult** result) const {
        const HRESULT returned = outcome.Returned(call.context);
        if (result != nullptr && SUCCEEDED(returned) && !outcome.withheld) {
            end.target = call.seen.target;
            end.status = outcome.status;
            *result = MakeCallResult(m_session, std::move(end));
        }
        return returned;
    }

    /// Ends a call that hands out an enumerator. A semisynchronous one reports a failure at the first Next.
    template <class Ask>
    HRESULT Enumerate(const ServiceCall& call, LONG ownFlags, IEnumWbemClassObject** enumerator,
                      bool argumentsValid, Ask ask) const {
        const LONG flags = call.context.flags;
        const bool valid = ClearOut(enumerator) && argumentsValid && Within(flags, kEnumeration | ownFlags);
        if (const HRESULT admitted = call.Admit(m_blanket, valid); FAILED(admitted)) {
            return admitted;
        }
        std::unique_ptr<ObjectStream> found;
        const Outcome outcome = ask(found);
        const bool later = call.context.Semisynchronous() && outcome.told != Outcome::Told::AtOnce;
        if (FAILED(outcome.status) && !later) {
            return outcome.status;
        }
        if (!outcome.withheld) {
            *enumerator =
                MakeEnumerator(m_session, {std::move(found), outcome.status, (flags & kAmended) != 0,
                                           (flags & WBEM_FLAG_FORWARD_ONLY) != 0});
        }
        return S_OK;
    }

    HRESULT Unsupported(const wchar_t* method) const {
        const ServiceCall call(*m_session, Operation::Unsupported, {}, 0, nullptr, false, method);
        if (const HRESULT admitted = call.Admit(m_blanket, true); FAILED(admitted)) {
            return admitted;
        }
        const LocalCall refused(m_session->observer, call.seen);
        return refused.Done(refused.Stopped().value_or(HRESULT(WBEM_E_NOT_SUPPORTED)));
    }

    const SessionPtr m_session;
    Blanket m_blanket;
};

} // namespace

IWbemServices* MakeServices(SessionPtr session) {
    return new ServicesProxy(std::move(session));
}

} // namespace quillet::wmi
