// Walks an enumeration of provider objects one at a time: every object is fetched when it is wanted and
// released before the next one, so a provider may hand out as many as it likes.
#pragma once

#include <windows.h>
#include <wbemidl.h>
#include <atlbase.h>

class ProviderEnum {
  public:
    /// The enumerator's address, for the call that makes it.
    IEnumWbemClassObject** operator&() { return &m_enumerator; }

    /// Whether the provider handed out an enumerator.
    explicit operator bool() const { return m_enumerator != nullptr; }

    /// Fetches the next object. False at the end of the data, and when the provider fails (see Result).
    bool Next(ATL::CComPtr<IWbemClassObject>& object) {
        object.Release();
        if (!m_enumerator || FAILED(m_result)) {
            return false;
        }
        ULONG count = 0;
        m_result = m_enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &count);
        // A provider that reports success without an object has nothing more to say either.
        return SUCCEEDED(m_result) && object;
    }

    /// 0 or more after a normal end, else the code with which the enumeration broke off.
    HRESULT Result() const { return m_result; }

  private:
    ATL::CComPtr<IEnumWbemClassObject> m_enumerator;
    HRESULT m_result = S_OK;
};
