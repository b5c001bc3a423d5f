// What an operation needs from the session: the calling thread's service and context, taken once and
// released on every path.
#pragma once

#include "ProviderEnum.h"
#include "ProviderNames.h"
#include "ResultCodes.h"

#include <quillet/Quillet.h>

class ProviderSession {
  public:
    /// Takes both; traces when either is missing.
    explicit ProviderSession(CQuillet& quillet, const wchar_t* missing = MISSING);
    ProviderSession(const ProviderSession&) = delete;
    ProviderSession& operator=(const ProviderSession&) = delete;

    /// 0, or 0x80041001 when the service or the context is missing.
    HRESULT Result() const { return m_service && m_context ? S_OK : RESULT_WBEM_FAILED; }
    IWbemServices* Service() const { return m_service; }
    IWbemContext* Context() const { return m_context; }
    CQuillet& Quillet() const { return m_quillet; }

    /// Asks for partial data (a mode) or for everything (-1) in the calls that follow.
    void Retrieve(LONG mode) const { CQuillet::ChangeContext(m_context, mode); }
    static constexpr LONG Everything = -1;

    /// Runs a WQL query with the thread's context. @param failure the trace text of a failed one.
    HRESULT Query(const std::wstring& text, ProviderEnum& instances, const wchar_t* failure) const;
    /// Enumerates a class with the thread's context. @param failure the trace text of a failed one.
    HRESULT Enumerate(const ProviderName& className, ProviderEnum& instances, const wchar_t* failure) const;

    /// Writes a changed instance back and waits until the provider has done it: the result is the write's
    /// final status.
    /// @param failure the trace text of a write that is refused at once; null for none
    /// @param outcome the trace text of one that fails in the end; null for none
    HRESULT Commit(IWbemClassObject* instance, const wchar_t* failure, const wchar_t* outcome) const;
    /// Deletes an instance with the thread's context. @param failure the trace text of a failed one.
    HRESULT Delete(const std::wstring& path, const wchar_t* failure) const;

  private:
    static constexpr const wchar_t* MISSING = L"((pIWbemService == NULL) || (pIWbemContext == NULL))";

    CQuillet& m_quillet;
    ATL::CComPtr<IWbemServices> m_service;
    ATL::CComPtr<IWbemContext> m_context;
};

/// Partial retrieval for a while: what is asked for in between brings only the data of a mode.
class PartialRetrieval {
  public:
    PartialRetrieval(const ProviderSession& session, LONG mode) : m_session(session) {
        m_session.Retrieve(mode);
    }
    /// On every path: the context may be the very one that the next operation gets.
    ~PartialRetrieval() { m_session.Retrieve(ProviderSession::Everything); }
    PartialRetrieval(const PartialRetrieval&) = delete;
    PartialRetrieval& operator=(const PartialRetrieval&) = delete;

  private:
    const ProviderSession& m_session;
};
