#include "Provider/ProviderMethod.h"

#include "Provider/FetchedObjects.h"
#include "Variants/SafeArray.h"
#include "Variants/SecretVariant.h"
#include "Provider/Trace.h"

using ATL::CComPtr;

ProviderMethod::ProviderMethod(const ProviderSession& session, const ProviderName& className,
                               const ProviderName& method, ClassFetch fetch, const wchar_t* signatureNote)
    : m_session(session), m_method(method), m_result(session.Result()) {
    if (Failed()) {
        return;
    }
    CComPtr<IWbemClassObject> classObject;
    m_result = session.Service()->GetObject(_bstr_t(className.name), 0,
                                            fetch == ClassFetch::WithContext ? session.Context() : nullptr,
                                            &classObject, nullptr);
    if (Failed()) {
        Fail(m_result, L"GetObject -> ", className);
    } else if (!classObject) {
        Fail(kResultWbemFailed, L"GetObject -> ", className, L" -> NULL");
    } else {
        if (signatureNote) {
            TraceText(signatureNote);
        }
        CComPtr<IWbemClassObject> outSignature;
        m_result = classObject->GetMethod(method.name, 0, &m_inSignature, &outSignature);
        if (Failed()) {
            Fail(m_result, L"GetMethod -> ", method);
        }
    }
}

ProviderMethod::ProviderMethod(const ProviderSession& session, const ProviderName& method)
    : m_session(session), m_method(method), m_result(session.Result()) {}

ProviderMethod& ProviderMethod::Spawn() {
    if (Failed() || m_in) {
        return *this;
    }
    // Only a method that takes something has an in-signature to make the parameters from.
    m_result = m_inSignature ? m_inSignature->SpawnInstance(0, &m_in) : kResultWbemFailed;
    if (SUCCEEDED(m_result) && !m_in) {
        m_result = kResultWbemFailed;
    }
    if (Failed()) {
        Fail(m_result, L"SpawnInstance -> ", m_method);
    }
    return *this;
}

ProviderMethod& ProviderMethod::Put(const ProviderName& parameter, const _variant_t& value,
                                    const wchar_t* step) {
    // The provider only reads the value; a copy of it here would be one more flash image in memory.
    return PutVariant(parameter, const_cast<_variant_t&>(value), step);
}

ProviderMethod& ProviderMethod::PutSecret(const ProviderName& parameter, const std::wstring& text) {
    if (Spawn().Failed()) {
        return *this;
    }
    SecretVariant value(text);
    return PutVariant(parameter, value);
}

ProviderMethod& ProviderMethod::PutVariant(const ProviderName& parameter, VARIANT& value,
                                           const wchar_t* step) {
    if (Spawn().Failed()) {
        return *this;
    }
    m_result = m_in->Put(parameter.name, 0, &value, 0);
    if (Failed()) {
        Fail(m_result, step, parameter);
    }
    return *this;
}

ProviderMethod& ProviderMethod::Put(const ProviderName& parameter, const std::vector<std::wstring>& texts) {
    if (Failed()) {
        return *this;
    }
    _variant_t array;
    if (!MakeTextArray(texts, array)) {
        TraceText(L"(NULL == pSafeArray) -> Create fail");
        m_result = kResultWbemFailed;
        return *this;
    }
    return Put(parameter, array);
}

ProviderMethod& ProviderMethod::ExecOnNetService(const wchar_t* failure) {
    if (Failed()) {
        return *this;
    }
    CComPtr<IWbemClassObject> netService;
    netService.Attach(m_session.Quillet().GetNetService());
    if (!netService) {
        TraceText(L"(pZorelService == NULL)");
        m_result = kResultWbemFailed;
        return *this;
    }
    std::wstring path;
    m_result = PropertyReader(netService, L"pZorelService")
                   .When(PropertyReader::OnNull::Fail)
                   .String(L_ZOREL_PATH, path)
                   .Result();
    return Exec(path, L"bstrObjectPath", failure);
}

ProviderMethod& ProviderMethod::Exec(const std::wstring& path, const wchar_t* variable,
                                     const wchar_t* failure) {
    if (Failed()) {
        return *this;
    }
    FetchedObjects::Forget();
    CComPtr<IWbemCallResult> callResult;
    m_result = m_session.Service()->ExecMethod(_bstr_t(path.c_str()), _bstr_t(m_method.name), 0,
                                               m_session.Context(), m_in, &m_out, &callResult);
    if (Failed()) {
        if (failure) {
            TraceText(failure);
        } else {
            LumTrace().Print(L"ExecMethod -> %s, %s", variable, m_method.symbol);
        }
    }
    return *this;
}

ProviderMethod& ProviderMethod::NeedAnswer(const wchar_t* failure) {
    if (!Failed() && !m_out) {
        TraceText(failure);
        m_result = kResultWbemFailed;
    }
    return *this;
}

void ProviderMethod::Fail(HRESULT result, const wchar_t* text, const ProviderName& name,
                          const wchar_t* ending) {
    LumTrace().Print(L"%s%s%s", text, name.symbol, ending);
    m_result = result;
}
