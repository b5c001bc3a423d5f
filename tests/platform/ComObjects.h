// Small COM objects for the tests: what they are asked for and how often they are held can be seen.
#pragma once

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>

#include <atomic>

namespace quillet::tests {

/// An object that may be called from any apartment. It lives as long as its owner says, whatever its count.
class AgileObject : public IClassFactory {
  public:
    AgileObject() { CoCreateFreeThreadedMarshaler(this, &m_marshaler); }
    AgileObject(const AgileObject&) = delete;
    AgileObject& operator=(const AgileObject&) = delete;
    virtual ~AgileObject() { m_marshaler->Release(); }

    ULONG References() const { return m_references; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IMarshal) {
            return m_marshaler->QueryInterface(iid, object);
        }
        if (iid != IID_IUnknown && iid != IID_IClassFactory) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    /// Hands itself out, unless it is told to fail.
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        ++created;
        lastOuter = outer;
        if (FAILED(createResult)) {
            *object = nullptr;
            return createResult;
        }
        return QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

    std::atomic<int> created{0};
    std::atomic<IUnknown*> lastOuter{nullptr};
    HRESULT createResult = S_OK;

  private:
    std::atomic<ULONG> m_references{1};
    IUnknown* m_marshaler = nullptr;
};

/// An object whose security settings are its own business, as a proxy's are.
class SecuredObject : public IClientSecurity {
  public:
    SecuredObject() = default;
    SecuredObject(const SecuredObject&) = delete;
    SecuredObject& operator=(const SecuredObject&) = delete;
    virtual ~SecuredObject() = default;

    struct Blanket {
        IUnknown* proxy = nullptr;
        DWORD authnSvc = 0;
        DWORD authzSvc = 0;
        OLECHAR* principal = nullptr;
        DWORD authnLevel = 0;
        DWORD impLevel = 0;
        void* authInfo = nullptr;
        DWORD capabilities = 0;
    };
    Blanket blanket;
    int blanketsSet = 0;
    HRESULT blanketResult = S_OK;
    ULONG References() const { return m_references; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown && iid != IID_IClientSecurity) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IClientSecurity*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown*, DWORD* authnSvc, DWORD* authzSvc, OLECHAR**,
                                           DWORD* authnLevel, DWORD* impLevel, void**,
                                           DWORD* capabilities) override {
        *authnSvc = blanket.authnSvc;
        *authzSvc = blanket.authzSvc;
        *authnLevel = blanket.authnLevel;
        *impLevel = blanket.impLevel;
        *capabilities = blanket.capabilities;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authnSvc, DWORD authzSvc, OLECHAR* principal,
                                         DWORD authnLevel, DWORD impLevel, void* authInfo,
                                         DWORD capabilities) override {
        blanket = {proxy, authnSvc, authzSvc, principal, authnLevel, impLevel, authInfo, capabilities};
        ++blanketsSet;
        return blanketResult;
    }
    HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown*, IUnknown** copy) override {
        *copy = this;
        AddRef();
        return S_OK;
    }

  private:
    std::atomic<ULONG> m_references{1};
};

} // namespace quillet::tests
