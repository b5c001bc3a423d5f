#include "ProviderSession.h"

#include "Trace.h"

ProviderSession::ProviderSession(CQuillet& quillet, const wchar_t* missing) : m_quillet(quillet) {
    m_service.Attach(quillet.GetWbemService());
    m_context.Attach(quillet.GetContext());
    if (FAILED(Result())) {
        TraceText(missing);
    }
}

HRESULT ProviderSession::Query(const std::wstring& text, ProviderEnum& instances,
                               const wchar_t* failure) const {
    if (FAILED(Result())) {
        return Result();
    }
    const HRESULT result =
        m_service->ExecQuery(_bstr_t(L"WQL"), _bstr_t(text.c_str()), 0, m_context, &instances);
    if (FAILED(result)) {
        TraceText(failure);
    }
    return result;
}

HRESULT ProviderSession::Enumerate(const ProviderName& className, ProviderEnum& instances,
                                   const wchar_t* failure) const {
    if (FAILED(Result())) {
        return Result();
    }
    const HRESULT result = m_service->CreateInstanceEnum(_bstr_t(className.name), 0, m_context, &instances);
    if (FAILED(result)) {
        TraceText(failure);
    }
    return result;
}
