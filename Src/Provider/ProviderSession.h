// What an operation needs from the session: the calling thread's service and context, taken once and
// released on every path.
#pragma once

#include "Provider/ProviderEnum.h"
#include "Provider/ProviderNames.h"
#include "Provider/ResultCodes.h"

#include <quillet/Quillet.h>

#include <string>

/// An argument with which an operation asks the provider nothing: most often an identifier that is empty.
struct Refusal {
    bool applies = false;
    const wchar_t* text = nullptr; ///< its trace text
    HRESULT code = E_FAIL;
    bool onceConnected = false; ///< a missing service or context comes before it

    /// Teams and VLANs look for the connection first.
    Refusal OnceConnected() const { return {applies, text, code, true}; }
};

inline Refusal NoAdapter(const std::wstring& id) {
    return {id.empty(), L"(wsAdapterID.empty())"};
}
inline Refusal NoTeam(const std::wstring& id) {
    return {id.empty(), L"(wsTeamID.empty())", kResultWbemFailed};
}
inline Refusal NoVLAN(const std::wstring& id) {
    return {id.empty(), L"(wsVLANID.empty())", kResultWbemFailed};
}

class ProviderSession {
  public:
    /// Takes both; traces when either is missing.
    explicit ProviderSession(CQuillet& quillet, const wchar_t* missing = kMissing);
    /// The same for an operation that may refuse. Whatever is done on a session that has failed does nothing,
    /// so that an operation need not look at each step.
    ProviderSession(CQuillet& quillet, const Refusal& refusal, const wchar_t* missing = kMissing);
    ProviderSession(const ProviderSession&) = delete;
    ProviderSession& operator=(const ProviderSession&) = delete;

    /// 0; the code of a refusal; 0x80041001 when the service or the context is missing.
    HRESULT Result() const { return m_result; }
    bool Failed() const { return FAILED(m_result); }
    IWbemServices* Service() const { return m_service; }
    IWbemContext* Context() const { return m_context; }
    CQuillet& Quillet() const { return m_quillet; }

    /// Asks for partial data (a mode) or for everything (-1) in the calls that follow.
    void Retrieve(LONG mode) const {
        CQuillet::ChangeContext(m_context, mode);
        m_isPartial = mode != kEverything;
    }
    static constexpr LONG kEverything = -1;
    /// Whether it asks for partial data.
    bool IsPartial() const { return m_isPartial; }

    /// Runs a WQL query with the thread's context. @param failure the trace text of a failed one.
    ProviderEnum Query(const std::wstring& text, const wchar_t* failure) const;
    /// Enumerates a class with the thread's context. @param failure the trace text of a failed one.
    ProviderEnum Enumerate(const ProviderName& className, const wchar_t* failure) const;

    /// Writes a changed instance back and waits until the provider has done it: the result is the write's
    /// final status.
    /// @param failure the trace text of a write that is refused at once; null for none
    /// @param outcome the trace text of one that fails in the end; null for none
    HRESULT Commit(IWbemClassObject* instance, const wchar_t* failure, const wchar_t* outcome) const;
    /// Deletes an instance with the thread's context. @param failure the trace text of a failed one.
    HRESULT Delete(const std::wstring& path, const wchar_t* failure) const;

  private:
    static constexpr const wchar_t* kMissing = L"((pIWbemService == NULL) || (pIWbemContext == NULL))";

    template <class Ask>
    ProviderEnum Enumeration(const wchar_t* failure, Ask ask) const;

    CQuillet& m_quillet;
    ATL::CComPtr<IWbemServices> m_service;
    ATL::CComPtr<IWbemContext> m_context;
    HRESULT m_result = S_OK;
    mutable bool m_isPartial = false; ///< of the context, which is no part of this object
};

/// Partial retrieval for a while: what is asked for in between brings only the data of a mode.
class PartialRetrieval {
  public:
    PartialRetrieval(const ProviderSession& session, LONG mode);
    /// On every path: the context may be the very one that the next operation gets.
    ~PartialRetrieval();
    PartialRetrieval(const PartialRetrieval&) = delete;
    PartialRetrieval& operator=(const PartialRetrieval&) = delete;

    /// Whether the calling thread is within one. What an operation within it fetches may be partial as well:
    /// its context may be this one.
    static bool IsUnderWay() noexcept;

  private:
    const ProviderSession& m_session;
};
