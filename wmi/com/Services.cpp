// IWbemServices: the calls that reach the connection.
#include "com/Services.h"

#include "com/CallResult.h"
#include "com/Enumerator.h"
#include "com/ServicesBase.h"
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

class ServicesProxy final : public ServicesBase {
  public:
    explicit ServicesProxy(SessionPtr session) : ServicesBase(std::move(session)) {}

    HRESULT STDMETHODCALLTYPE OpenNamespace(const BSTR path, LONG flags, IWbemContext* context,
                                            IWbemServices** services, IWbemCallResult** result) override {
        const ServiceCall call(*OwnSession(), Operation::OpenNamespace, BstrText(path), flags, context,
                               result != nullptr);
        const bool cleared = static_cast<int>(ClearOut(services)) + static_cast<int>(ClearOut(result)) != 0;
        const bool valid = cleared && path != nullptr && Within(flags, kSemisynchronous);
        if (const HRESULT admitted = call.Admit(OwnBlanket(), valid); FAILED(admitted)) {
            return admitted;
        }
        std::shared_ptr<Connection> opened;
        const Outcome outcome = call.To().OpenNamespace(call.context, BstrText(path), opened);
        CallOutcome end;
        if (SUCCEEDED(outcome.status) && opened != nullptr) {
            auto session = std::make_shared<Session>(*OwnSession());
            session->observer = opened->Observer();
            session->connection = std::move(opened);
            end.services.reset(MakeServices(std::move(session)));
            HandOver(call, end.services, services);
        }
        return Finish(call, outcome, std::move(end), result);
    }

    HRESULT STDMETHODCALLTYPE GetObject(const BSTR path, LONG flags, IWbemContext* context,
                                        IWbemClassObject** object, IWbemCallResult** result) override {
        const ServiceCall call(*OwnSession(), Operation::GetObject, BstrText(path), flags, context,
                               result != nullptr);
        const bool wantsObject = ClearOut(object);
        const bool wantsResult = ClearOut(result);
        const bool valid = path != nullptr &&
                           (call.context.Semisynchronous() ? wantsResult : wantsObject || wantsResult) &&
                           Within(flags, kSemisynchronous | kAmended | WBEM_FLAG_DIRECT_READ);
        if (const HRESULT admitted = call.Admit(OwnBlanket(), valid); FAILED(admitted)) {
            return admitted;
        }
        Object found;
        const Outcome outcome = call.To().GetObject(call.context, BstrText(path), found);
        CallOutcome end;
        if (SUCCEEDED(outcome.status) && found.definition != nullptr) {
            end.object.reset(new ClassObject(OwnSession(), std::move(found), (flags & kAmended) != 0));
            HandOver(call, end.object, object);
        }
        return Finish(call, outcome, std::move(end), result);
    }

    HRESULT STDMETHODCALLTYPE PutInstance(IWbemClassObject* object, LONG flags, IWbemContext* context,
                                          IWbemCallResult** result) override {
        HeldObject held(object);
        auto path = held.own ? held.own->Path() : std::nullopt;
        const std::wstring target = path ? *path : (held.own ? held.values.definition->name : std::wstring());
        ServiceCall call(*OwnSession(), Operation::PutInstance, target, flags, context, result != nullptr);
        call.seen.definition = held.values.definition.get();
        ClearOut(result);
        constexpr LONG kAllowed = kSemisynchronous | kAmended | WBEM_FLAG_CREATE_ONLY | WBEM_FLAG_UPDATE_ONLY;
        constexpr LONG kContradiction = WBEM_FLAG_CREATE_ONLY | WBEM_FLAG_UPDATE_ONLY;
        const bool valid =
            object != nullptr && Within(flags, kAllowed) && (flags & kContradiction) != kContradiction;
        if (const HRESULT admitted = call.Admit(OwnBlanket(), valid, held.puts); FAILED(admitted)) {
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
        const ServiceCall call(*OwnSession(), Operation::DeleteInstance, BstrText(path), flags, context,
                               result != nullptr);
        ClearOut(result);
        const bool valid = path != nullptr && Within(flags, kSemisynchronous);
        if (const HRESULT admitted = call.Admit(OwnBlanket(), valid); FAILED(admitted)) {
            return admitted;
        }
        const Outcome outcome = call.To().DeleteInstance(call.context, BstrText(path));
        return Finish(call, outcome, {}, result);
    }

    HRESULT STDMETHODCALLTYPE CreateClassEnum(const BSTR superclass, LONG flags, IWbemContext* context,
                                              IEnumWbemClassObject** enumerator) override {
        const ServiceCall call(*OwnSession(), Operation::CreateClassEnum, BstrText(superclass), flags,
                               context);
        return Enumerate(call, WBEM_FLAG_SHALLOW, enumerator, true, [&](auto& found) {
            return call.To().Classes(call.context, BstrText(superclass), DepthOf(flags), found);
        });
    }

    HRESULT STDMETHODCALLTYPE CreateInstanceEnum(const BSTR className, LONG flags, IWbemContext* context,
                                                 IEnumWbemClassObject** enumerator) override {
        const ServiceCall call(*OwnSession(), Operation::CreateInstanceEnum, BstrText(className), flags,
                               context);
        return Enumerate(call, WBEM_FLAG_SHALLOW, enumerator, className != nullptr, [&](auto& found) {
            return call.To().Instances(call.context, BstrText(className), DepthOf(flags), found);
        });
    }

    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags,
                                        IWbemContext* context, IEnumWbemClassObject** enumerator) override {
        const ServiceCall call(*OwnSession(), Operation::ExecQuery, BstrText(query), flags, context);
        const bool whole = language != nullptr && query != nullptr;
        if (whole && !SameName(BstrText(language), L"WQL") && OwnBlanket().Suffices()) {
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
        ServiceCall call(*OwnSession(), Operation::ExecMethod, BstrText(path), flags, context,
                         result != nullptr, BstrText(method));
        const HeldObject in(inParameters);
        call.seen.definition = in.values.definition.get();
        ClearOut(outParameters);
        const bool valid = path != nullptr && method != nullptr && Within(flags, kSemisynchronous) &&
                           (ClearOut(result) || !call.context.Semisynchronous());
        if (const HRESULT admitted = call.Admit(OwnBlanket(), valid, in.puts); FAILED(admitted)) {
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
            end.object.reset(new ClassObject(OwnSession(), {std::move(definition), std::move(out)}, false));
            HandOver(call, end.object, outParameters);
        }
        return Finish(call, outcome, std::move(end), result);
    }

  protected:
    // Each thread that retrieves the service gets a proxy of its own, and a new proxy has no blanket.
    IUnknown* CopyForRetrieval() override { return MakeServices(SessionForCopy()); }

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
            *result = MakeCallResult(OwnSession(), std::move(end));
        }
        return returned;
    }

    /// Ends a call that hands out an enumerator. A semisynchronous one reports a failure at the first Next.
    template <class Ask>
    HRESULT Enumerate(const ServiceCall& call, LONG ownFlags, IEnumWbemClassObject** enumerator,
                      bool argumentsValid, Ask ask) const {
        const LONG flags = call.context.flags;
        const bool valid = ClearOut(enumerator) && argumentsValid && Within(flags, kEnumeration | ownFlags);
        if (const HRESULT admitted = call.Admit(OwnBlanket(), valid); FAILED(admitted)) {
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
                MakeEnumerator(OwnSession(), {std::move(found), outcome.status, (flags & kAmended) != 0,
                                              (flags & WBEM_FLAG_FORWARD_ONLY) != 0});
        }
        return S_OK;
    }
};

} // namespace

IWbemServices* MakeServices(SessionPtr session) {
    return new ServicesProxy(std::move(session));
}

} // namespace quillet::wmi
