// One call of a provider method: the class object, the method's in-signature, the parameters in their order,
// the execution on a path, the out-parameters. After the first failure, which is traced, nothing more is
// done.
#pragma once

#include "Provider/PropertyReader.h"
#include "Provider/ProviderSession.h"

class ProviderMethod {
  public:
    /// Whether the class object is fetched with the thread's context. The methods of the network service
    /// fetch theirs without: a class does not depend on a client set.
    enum class ClassFetch { WithContext, WithoutContext };

    /// Fetches the class object and the method's signature. A failed session fails the call, too.
    /// @param signatureNote traced before the signature is fetched.
    ProviderMethod(const ProviderSession& session, const ProviderName& className, const ProviderName& method,
                   ClassFetch fetch = ClassFetch::WithContext, const wchar_t* signatureNote = nullptr);
    /// A method without in-parameters needs neither class nor signature: execute it and nothing else.
    ProviderMethod(const ProviderSession& session, const ProviderName& method);
    ProviderMethod(const ProviderMethod&) = delete;
    ProviderMethod& operator=(const ProviderMethod&) = delete;

    /// Makes the in-parameters, all of them unset; Put does so by itself.
    ProviderMethod& Spawn();
    /// Sets one in-parameter; the provider sees them in the order of these calls.
    /// @param step what the trace line of a failure says before the parameter's symbol.
    ProviderMethod& Put(const ProviderName& parameter, const _variant_t& value,
                        const wchar_t* step = L"Put -> ");
    /// Sets one in-parameter to a text that is a secret: no copy of it is left behind.
    ProviderMethod& PutSecret(const ProviderName& parameter, const std::wstring& text);
    /// The same with a list of texts, as a VT_ARRAY | VT_BSTR.
    ProviderMethod& Put(const ProviderName& parameter, const std::vector<std::wstring>& texts);

    /// Executes the method on the network service's own path.
    /// @param failure replaces the usual trace text of a failed execution.
    ProviderMethod& ExecOnNetService(const wchar_t* failure = nullptr);
    /// Executes the method on an object.
    /// @param variable what trace lines call the path.
    ProviderMethod& Exec(const std::wstring& path, const wchar_t* variable = L"bstrObjectPath",
                         const wchar_t* failure = nullptr);

    /// Ends the call with 0x80041001 when the method brought no out-parameters. @param failure its trace
    /// text.
    ProviderMethod& NeedAnswer(const wchar_t* failure);

    /// 0 or more while everything went well, else the code of the step that failed.
    HRESULT Result() const { return m_result; }
    bool Failed() const { return FAILED(m_result); }

    /// A reader of the out-parameters. @param variable what trace lines call them.
    PropertyReader Read(const wchar_t* variable = L"pAdapter_OutParams", const wchar_t* prefix = L"") const {
        return PropertyReader(m_out, variable, prefix).After(m_result);
    }

  private:
    ProviderMethod& PutVariant(const ProviderName& parameter, VARIANT& value,
                               const wchar_t* step = L"Put -> ");
    void Fail(HRESULT result, const wchar_t* text, const ProviderName& name, const wchar_t* ending = L"");

    const ProviderSession& m_session;
    ProviderName m_method;
    ATL::CComPtr<IWbemClassObject> m_inSignature;
    ATL::CComPtr<IWbemClassObject> m_in;
    ATL::CComPtr<IWbemClassObject> m_out;
    HRESULT m_result = S_OK;
};
