// What a proxy of IWbemServices is before it calls anybody.
#pragma once

#include "com/ComObject.h"
#include "com/ServiceCall.h"

#include <quillet-wmi/OwnCounts.h>

namespace quillet::wmi {

/// A session with a security blanket. It refuses what is not done: calls that end at a sink, notifications,
/// and changes of the schema, which is not the client's to change.
class ServicesBase : public ComObject<IWbemServices, IID_IWbemServices> {
  public:
    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE QueryObjectSink(LONG, IWbemObjectSink** sink) override;
    HRESULT STDMETHODCALLTYPE GetObjectAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE PutClass(IWbemClassObject*, LONG, IWbemContext*,
                                       IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE PutClassAsync(IWbemClassObject*, LONG, IWbemContext*,
                                            IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE DeleteClass(const BSTR, LONG, IWbemContext*, IWbemCallResult** result) override;
    HRESULT STDMETHODCALLTYPE DeleteClassAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE CreateClassEnumAsync(const BSTR, LONG, IWbemContext*,
                                                   IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE PutInstanceAsync(IWbemClassObject*, LONG, IWbemContext*,
                                               IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE DeleteInstanceAsync(const BSTR, LONG, IWbemContext*, IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE CreateInstanceEnumAsync(const BSTR, LONG, IWbemContext*,
                                                      IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE ExecQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                             IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE ExecNotificationQuery(const BSTR, const BSTR, LONG, IWbemContext*,
                                                    IEnumWbemClassObject** enumerator) override;
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR, const BSTR, LONG, IWbemContext*,
                                                         IWbemObjectSink*) override;
    HRESULT STDMETHODCALLTYPE ExecMethodAsync(const BSTR, const BSTR, LONG, IWbemContext*, IWbemClassObject*,
                                              IWbemObjectSink*) override;

    // IClientSecurity: this object is its own proxy.
    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authenticationService,
                                           DWORD* authorisationService, OLECHAR** principal,
                                           DWORD* authenticationLevel, DWORD* impersonationLevel,
                                           void** identity, DWORD* capabilities) override;
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authenticationService,
                                         DWORD authorisationService, OLECHAR*, DWORD authenticationLevel,
                                         DWORD impersonationLevel, void*, DWORD capabilities) override;

  protected:
    explicit ServicesBase(SessionPtr session);

    const SessionPtr& OwnSession() const noexcept { return m_session.Shared(); }
    /// The same for another proxy. Each thread has its own; whatever that hands out holds the session, and
    /// would otherwise share its count with the objects of all other threads.
    SessionPtr SessionForCopy() const { return m_session.Taken(); }
    const Blanket& OwnBlanket() const noexcept { return m_blanket; }

  private:
    HRESULT Unsupported(const wchar_t* method) const;

    const CountedByThreads<const Session> m_session;
    Blanket m_blanket;
};

} // namespace quillet::wmi
