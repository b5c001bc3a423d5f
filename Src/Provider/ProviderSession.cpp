#include "Provider/ProviderSession.h"

#include "Provider/FetchedObjects.h"

namespace {

thread_local unsigned g_partialRetrievals = 0;

} // namespace

PartialRetrieval::PartialRetrieval(const ProviderSession& session, LONG mode) : m_session(session) {
    m_session.Retrieve(mode);
    ++g_partialRetrievals;
}

PartialRetrieval::~PartialRetrieval() {
    --g_partialRetrievals;
    m_session.Retrieve(ProviderSession::kEverything);
}

bool PartialRetrieval::IsUnderWay() noexcept {
    return g_partialRetrievals != 0;
}

ProviderSession::ProviderSession(CQuillet& quillet, const wchar_t* missing)
    : ProviderSession(quillet, Refusal{false, nullptr}, missing) {}

ProviderSession::ProviderSession(CQuillet& quillet, const Refusal& refusal, const wchar_t* missing)
    : m_quillet(quillet) {
    const auto fail = [this](HRESULT code, const wchar_t* text) {
        TraceText(text);
        m_result = code;
    };
    if (refusal.applies && !refusal.onceConnected) {
        fail(refusal.code, refusal.text);
        return;
    }
    m_service.Attach(quillet.GetWbemService());
    m_context.Attach(quillet.GetContext());
    if (!m_service || !m_context) {
        fail(kResultWbemFailed, missing);
    } else if (refusal.applies) {
        fail(refusal.code, refusal.text);
    }
}

/// Success without an enumerator is a failure as well, for an empty list has one.
template <class Ask>
ProviderEnum ProviderSession::Enumeration(const wchar_t* failure, Ask ask) const {
    if (Failed()) {
        return ProviderEnum(Result());
    }
    ATL::CComPtr<IEnumWbemClassObject> enumerator;
    HRESULT result = ask(&enumerator);
    if (FAILED(result)) {
        TraceText(failure);
    } else if (!enumerator) {
        TraceText(failure, L" -> NULL");
        result = kResultWbemFailed;
    }
    return ProviderEnum(result, enumerator);
}

ProviderEnum ProviderSession::Query(const std::wstring& text, const wchar_t* failure) const {
    return Enumeration(failure, [&](IEnumWbemClassObject** enumerator) {
        return m_service->ExecQuery(_bstr_t(L"WQL"), _bstr_t(text.c_str()), 0, m_context, enumerator);
    });
}

ProviderEnum ProviderSession::Enumerate(const ProviderName& className, const wchar_t* failure) const {
    return Enumeration(failure, [&](IEnumWbemClassObject** enumerator) {
        return m_service->CreateInstanceEnum(_bstr_t(className.name), 0, m_context, enumerator);
    });
}

HRESULT ProviderSession::Commit(IWbemClassObject* instance, const wchar_t* failure,
                                const wchar_t* outcome) const {
    if (Failed()) {
        return Result();
    }
    const auto failed = [](HRESULT code, const wchar_t* text) {
        if (text) {
            TraceText(text);
        }
        return code;
    };
    FetchedObjects::Forget();
    ATL::CComPtr<IWbemCallResult> callResult;
    HRESULT result = m_service->PutInstance(
        instance, WBEM_FLAG_USE_AMENDED_QUALIFIERS | WBEM_FLAG_RETURN_IMMEDIATELY, m_context, &callResult);
    if (FAILED(result)) {
        return failed(result, failure);
    }
    if (!callResult) {
        return failed(kResultWbemFailed, L"PutInstance -> pWbemCallResult -> NULL");
    }
    LONG status = WBEM_S_NO_ERROR;
    result = callResult->GetCallStatus(static_cast<LONG>(WBEM_INFINITE), &status);
    result = FAILED(result) ? result : status;
    return FAILED(result) ? failed(result, outcome) : result;
}

HRESULT ProviderSession::Delete(const std::wstring& path, const wchar_t* failure) const {
    if (Failed()) {
        return Result();
    }
    FetchedObjects::Forget();
    const HRESULT result = m_service->DeleteInstance(_bstr_t(path.c_str()), 0, m_context, nullptr);
    if (FAILED(result)) {
        TraceText(failure);
    }
    return result;
}
