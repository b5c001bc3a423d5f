#include "ProviderInstance.h"

#include "Trace.h"

ProviderInstance::ProviderInstance(const ProviderSession& session, const std::wstring& path,
                                   const wchar_t* failure)
    : m_result(session.Result()) {
    if (Failed()) {
        return;
    }
    m_result = session.Service()->GetObject(_bstr_t(path.c_str()), 0, session.Context(), &m_object, nullptr);
    if (Failed()) {
        TraceText(failure);
    } else if (!m_object) {
        TraceText(failure, L" -> NULL");
        m_result = RESULT_WBEM_FAILED;
    }
}
