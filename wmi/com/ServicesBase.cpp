// The blanket of a proxy, and the calls that are not done.
#include "com/ServicesBase.h"

namespace quillet::wmi {

ServicesBase::ServicesBase(SessionPtr session) : m_session(std::move(session)) {}

HRESULT ServicesBase::Unsupported(const wchar_t* method) const {
    const ServiceCall call(*OwnSession(), Operation::Unsupported, {}, 0, nullptr, false, method);
    if (const HRESULT admitted = call.Admit(m_blanket, true); FAILED(admitted)) {
        return admitted;
    }
    const LocalCall refused(OwnSession()->observer, call.seen);
    return refused.Done(refused.Stopped().value_or(HRESULT(WBEM_E_NOT_SUPPORTED)));
}

HRESULT STDMETHODCALLTYPE ServicesBase::CancelAsyncCall(IWbemObjectSink*) {
    return Unsupported(L"CancelAsyncCall");
}

HRESULT STDMETHODCALLTYPE ServicesBase::QueryObjectSink(LONG, IWbemObjectSink** sink) {
    ClearOut(sink);
    return Unsupported(L"QueryObjectSink");
}

HRESULT STDMETHODCALLTYPE ServicesBase::GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) {
    return Unsupported(L"GetObjectAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                                 IWbemCallResult** result) {
    ClearOut(result);
    return Unsupported(L"PutClass");
}

HRESULT STDMETHODCALLTYPE ServicesBase::PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                                      IWbemObjectSink*) {
    return Unsupported(L"PutClassAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::DeleteClass(const BSTR, LONG, IWbemContext*,
                                                    IWbemCallResult** result) {
    ClearOut(result);
    return Unsupported(L"DeleteClass");
}

HRESULT STDMETHODCALLTYPE ServicesBase::DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) {
    return Unsupported(L"DeleteClassAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                             IWbemObjectSink*) {
    return Unsupported(L"CreateClassEnumAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                                         IWbemObjectSink*) {
    return Unsupported(L"PutInstanceAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::DeleteInstanceAsync(const BSTR, LONG, IWbemContext*,
                                                            IWbemObjectSink*) {
    return Unsupported(L"DeleteInstanceAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                                IWbemObjectSink*) {
    return Unsupported(L"CreateInstanceEnumAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                       IWbemObjectSink*) {
    return Unsupported(L"ExecQueryAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                              IEnumWbemClassObject** enumerator) {
    ClearOut(enumerator);
    return Unsupported(L"ExecNotificationQuery");
}

HRESULT STDMETHODCALLTYPE ServicesBase::ExecNotificationQueryAsync(const BSTR, const BSTR, LONG,
                                                                   IWbemContext*, IWbemObjectSink*) {
    return Unsupported(L"ExecNotificationQueryAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                        IWbemClassObject*, IWbemObjectSink*) {
    return Unsupported(L"ExecMethodAsync");
}

HRESULT STDMETHODCALLTYPE ServicesBase::QueryBlanket(IUnknown* proxy, DWORD* authenticationService,
                                                     DWORD* authorisationService, OLECHAR** principal,
                                                     DWORD* authenticationLevel, DWORD* impersonationLevel,
                                                     void** identity, DWORD* capabilities) {
    if (proxy == nullptr) {
        return E_INVALIDARG;
    }
    m_blanket.Tell(authenticationService, authorisationService, authenticationLevel, impersonationLevel,
                   capabilities);
    ClearOut(principal);
    ClearOut(identity);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ServicesBase::SetBlanket(IUnknown* proxy, DWORD authenticationService,
                                                   DWORD authorisationService, OLECHAR*,
                                                   DWORD authenticationLevel, DWORD impersonationLevel, void*,
                                                   DWORD capabilities) {
    if (proxy == nullptr) {
        return E_INVALIDARG;
    }
    ObservedCall seen;
    seen.operation = Operation::SetBlanket;
    seen.target = L"IWbemServices";
    const LocalCall call(OwnSession()->observer, seen);
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

} // namespace quillet::wmi
