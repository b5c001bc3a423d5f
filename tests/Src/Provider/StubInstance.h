// An IWbemClassObject made by hand: it hands out whatever VARIANT and result a test wants, also those that no
// simulated provider would come up with.
#pragma once

#include <windows.h>
#include <wbemidl.h>
#include <comutil.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Lives where it is declared; the destructor's caller can see by References() whether somebody kept it.
class StubInstance : public IWbemClassObject {
  public:
    /// Answers a Get: fills the VARIANT, which is empty, and yields the result.
    using Answer = std::function<HRESULT(VARIANT& value)>;

    StubInstance() = default;
    explicit StubInstance(Answer answer) : m_answer(std::move(answer)) {}
    /// Every property holds a copy of this value, as it is: what it points to is not copied.
    explicit StubInstance(const VARIANT& value)
        : m_answer([value](VARIANT& target) {
              target = value;
              return S_OK;
          }) {}
    virtual ~StubInstance() = default;
    StubInstance(const StubInstance&) = delete;
    StubInstance& operator=(const StubInstance&) = delete;

    void AnswerWith(Answer answer) { m_answer = std::move(answer); }

    ULONG References() const { return m_references; }
    /// The names asked for, in order.
    const std::vector<std::wstring>& Asked() const { return m_asked; }
    /// Whether every Get came with flags 0 and an initialised VARIANT.
    bool AskedRightly() const { return m_askedRightly; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IWbemClassObject)) {
            *object = static_cast<IWbemClassObject*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE*, LONG*) override {
        m_asked.emplace_back(name);
        m_askedRightly = m_askedRightly && flags == 0 && V_VT(value) == VT_EMPTY;
        return m_answer ? m_answer(*value) : HRESULT{E_NOTIMPL};
    }

    // Nothing that reads a property may call any of these.
    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR, LONG, VARIANT*, CIMTYPE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR, LONG, VARIANT*, SAFEARRAY**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Next(LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EndEnumeration() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG, IWbemClassObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CompareTo(LONG, IWbemClassObject*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR, LONG, IWbemClassObject**, IWbemClassObject**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NextMethod(LONG, BSTR*, IWbemClassObject**, IWbemClassObject**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR, IWbemQualifierSet**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR, BSTR*) override { return E_NOTIMPL; }

  private:
    Answer m_answer;
    std::vector<std::wstring> m_asked;
    bool m_askedRightly = true;
    ULONG m_references = 1;
};
