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
