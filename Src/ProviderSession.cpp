#include "ProviderSession.h"

#include "Trace.h"

ProviderSession::ProviderSession(CQuillet& quillet, const wchar_t* missing) : m_quillet(quillet) {
    m_service.Attach(quillet.GetWbemService());
    m_context.Attach(quillet.GetContext());
    if (FAILED(Result())) {
        TraceText(missing);
    }
}

namespace {

/// The common end of what hands out an enumeration: success without an enumerator is a failure as well, for
/// an empty list has one.
HRESULT Check(HRESULT result, const ProviderEnum& instances, const wchar_t* failure) {
    if (FAILED(result)) {
        TraceText(failure);
        return result;
    }
    if (!instances) {
        TraceText(failure, L" -> NULL");
        return RESULT_WBEM_FAILED;
    }
    return result;
}

} // namespace

HRESULT ProviderSession::Query(const std::wstring& text, ProviderEnum& instances,
                               const wchar_t* failure) const {
    if (FAILED(Result())) {
        return Result();
    }
    return Check(m_service->ExecQuery(_bstr_t(L"WQL"), _bstr_t(text.c_str()), 0, m_context, &instances),
                 instances, failure);
}

HRESULT ProviderSession::Enumerate(const ProviderName& className, ProviderEnum& instances,
                                   const wchar_t* failure) const {
    if (FAILED(Result())) {
        return Result();
    }
    return Check(m_service->CreateInstanceEnum(_bstr_t(className.name), 0, m_context, &instances), instances,
                 failure);
}

HRESULT ProviderSession::Commit(IWbemClassObject* instance, const wchar_t* failure,
                                const wchar_t* outcome) const {
    if (FAILED(Result())) {
        return Result();
    }
    const auto failed = [](HRESULT code, const wchar_t* text) {
        if (text) {
            TraceText(text);
        }
        return code;
    };
    ATL::CComPtr<IWbemCallResult> callResult;
    HRESULT result = m_service->PutInstance(
        instance, WBEM_FLAG_USE_AMENDED_QUALIFIERS | WBEM_FLAG_RETURN_IMMEDIATELY, m_context, &callResult);
    if (FAILED(result)) {
        return failed(result, failure);
    }
    if (!callResult) {
        return failed(RESULT_WBEM_FAILED, L"PutInstance -> pWbemCallResult -> NULL");
    }
    LONG status = WBEM_S_NO_ERROR;
    result = callResult->GetCallStatus(static_cast<LONG>(WBEM_INFINITE), &status);
    result = FAILED(result) ? result : status;
    return FAILED(result) ? failed(result, outcome) : result;
}

HRESULT ProviderSession::Delete(const std::wstring& path, const wchar_t* failure) const {
    if (FAILED(Result())) {
        return Result();
    }
    const HRESULT result = m_service->DeleteInstance(_bstr_t(path.c_str()), 0, m_context, nullptr);
    if (FAILED(result)) {
        TraceText(failure);
    }
    return result;
}
