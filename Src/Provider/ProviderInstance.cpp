#include "Provider/ProviderInstance.h"

#include "Provider/Trace.h"

ProviderInstance::ProviderInstance(const ProviderSession& session, const std::wstring& path,
                                   const wchar_t* failure, const wchar_t* missing)
    : m_result(session.Result()) {
    if (Failed()) {
        return;
    }
    m_result = session.Service()->GetObject(_bstr_t(path.c_str()), 0, session.Context(), &m_object, nullptr);
    if (Failed()) {
        TraceText(failure);
    } else if (!m_object) {
        TraceText(missing ? missing : failure, missing ? L"" : L" -> NULL");
        m_result = RESULT_WBEM_FAILED;
    }
}

HRESULT PutProperty(IWbemClassObject* object, const ProviderName& property, _variant_t value) {
    const HRESULT result = object->Put(property.name, 0, &value, 0);
    if (FAILED(result)) {
        TraceText(L"Put -> ", property.symbol);
    }
    return result;
}
