#include "Provider/ProviderInstance.h"

#include "Provider/FetchedObjects.h"
#include "Provider/Trace.h"

ProviderInstance::ProviderInstance(const ProviderSession& session, const std::wstring& path,
                                   const wchar_t* failure, const wchar_t* missing)
    : m_result(session.Result()) {
    if (Failed()) {
        return;
    }
    const auto fetch = [&](IWbemClassObject** object) {
        return session.Service()->GetObject(_bstr_t(path.c_str()), 0, session.Context(), object, nullptr);
    };
    // An object of which only a part was asked for would be missing the rest for the next one.
    m_result = session.IsPartial() || PartialRetrieval::IsUnderWay()
                   ? fetch(&m_object)
                   : FetchedObjects::Get(session.Quillet(), path, fetch, m_object);
    if (Failed()) {
        TraceText(failure);
    } else if (!m_object) {
        TraceText(missing ? missing : failure, missing ? L"" : L" -> NULL");
        m_result = kResultWbemFailed;
    }
}

HRESULT PutProperty(IWbemClassObject* object, const ProviderName& property, _variant_t value) {
    FetchedObjects::Forget();
    const HRESULT result = object->Put(property.name, 0, &value, 0);
    if (FAILED(result)) {
        TraceText(L"Put -> ", property.symbol);
    }
    return result;
}
