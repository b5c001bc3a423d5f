// One provider object, fetched by its path, and a reader for its properties. A failed fetch is a reader that
// has failed already, so that an operation is a session, an instance and a list of reads.
#pragma once

#include "Provider/PropertyReader.h"
#include "Provider/ProviderSession.h"

/// Sets a property of an object in the client's hands. A failure is traced "Put -> <symbol>".
HRESULT PutProperty(IWbemClassObject* object, const ProviderName& property, _variant_t value);

class ProviderInstance {
  public:
    /// Fetches the object with the thread's context. A failed session fails the fetch, too.
    /// @param failure the trace text of a failed fetch; " -> NULL" is added when success brought no object,
    ///                unless there is a text of its own for that
    /// @param missing that text
    ProviderInstance(const ProviderSession& session, const std::wstring& path, const wchar_t* failure,
                     const wchar_t* missing = nullptr);
    ProviderInstance(const ProviderInstance&) = delete;
    ProviderInstance& operator=(const ProviderInstance&) = delete;

    /// 0 or more, else the code of the failed fetch (0x80041001 when there is no object).
    HRESULT Result() const { return m_result; }
    bool Failed() const { return FAILED(m_result); }
    IWbemClassObject* Get() const { return m_object; }

    /// Sets a property; ProviderSession::Commit writes it back.
    HRESULT Put(const ProviderName& property, const _variant_t& value) const {
        return Failed() ? m_result : PutProperty(m_object, property, value);
    }

    /// A reader of the object's properties. @param variable what trace lines call the object.
    PropertyReader Read(const wchar_t* variable) const {
        return PropertyReader(m_object, variable).After(m_result);
    }

  private:
    ATL::CComPtr<IWbemClassObject> m_object;
    HRESULT m_result;
};
