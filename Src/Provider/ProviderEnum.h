// Walks an enumeration of provider objects one at a time: every object is fetched when it is wanted and
// released before the next one, so a provider may hand out as many as it likes.
#pragma once

#include "Provider/Trace.h"

#include <windows.h>
#include <wbemidl.h>
#include <atlbase.h>

#include <utility>

class ProviderEnum {
  public:
    /// @param asked      what asking for the enumeration came to; a failure is one that is at its end.
    /// @param enumerator what the provider handed out.
    explicit ProviderEnum(HRESULT asked, ATL::CComPtr<IEnumWbemClassObject> enumerator = {})
        : m_enumerator(std::move(enumerator)), m_result(asked) {}

    /// Fetches the next object. False at the end of the data, and when the provider fails (see Result).
    bool Next(ATL::CComPtr<IWbemClassObject>& object) {
        object.Release();
        if (!m_enumerator || Failed()) {
            return false;
        }
        ULONG count = 0;
        m_result = m_enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &count);
        // A provider that reports success without an object has nothing more to say either.
        return SUCCEEDED(m_result) && object;
    }

    /// Hands every object to a step, until one fails. An enumeration that breaks off is not a shorter list:
    /// it fails as well. @param brokenOff its trace text.
    template <class Take>
    HRESULT ForEach(const wchar_t* brokenOff, Take take) {
        if (Failed()) {
            return m_result; // whoever asked for it has told why
        }
        ATL::CComPtr<IWbemClassObject> object;
        while (Next(object)) {
            const HRESULT result = take(object.p);
            if (FAILED(result)) {
                return result;
            }
        }
        return End(brokenOff);
    }

    /// 0 after a normal end, else the code with which the enumeration broke off. @param brokenOff the trace
    /// text for that.
    HRESULT End(const wchar_t* brokenOff) const {
        if (Failed()) {
            TraceText(brokenOff);
            return m_result;
        }
        return S_OK;
    }

    /// 0 or more after a normal end, else the code of the question or the one with which the enumeration
    /// broke off.
    HRESULT Result() const { return m_result; }
    bool Failed() const { return FAILED(m_result); }

  private:
    ATL::CComPtr<IEnumWbemClassObject> m_enumerator;
    HRESULT m_result;
};
