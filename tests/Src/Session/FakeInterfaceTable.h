// Stand-ins for what COM itself provides, for the failures that COM cannot be told to have: an interface
// table, and a class that is registered but cannot be created.
#pragma once

#include <windows.h>
#include <objbase.h>
#include <objidl.h>

#include <vector>

/// An interface table whose calls have the results that a test sets. It keeps no interface.
class FakeInterfaceTable : public IGlobalInterfaceTable {
  public:
    HRESULT registerResult = S_OK;
    HRESULT revokeResult = S_OK;
    HRESULT getResult = E_INVALIDARG;
    DWORD nextCookie = 0x700;
    std::vector<DWORD> revoked;    ///< the cookies, in order
    std::vector<IID> registeredAs; ///< the interfaces asked for when something was registered
    std::vector<IID> askedAs;      ///< and when something was retrieved

    virtual ~FakeInterfaceTable() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IGlobalInterfaceTable)) {
            *object = static_cast<IGlobalInterfaceTable*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    HRESULT STDMETHODCALLTYPE RegisterInterfaceInGlobal(IUnknown*, REFIID iid, DWORD* cookie) override {
        registeredAs.push_back(iid);
        if (SUCCEEDED(registerResult)) {
            *cookie = nextCookie++;
        }
        return registerResult;
    }
    HRESULT STDMETHODCALLTYPE RevokeInterfaceFromGlobal(DWORD cookie) override {
        revoked.push_back(cookie);
        return revokeResult;
    }
    HRESULT STDMETHODCALLTYPE GetInterfaceFromGlobal(DWORD, REFIID iid, void** object) override {
        askedAs.push_back(iid);
        *object = nullptr;
        return getResult;
    }

  private:
    ULONG m_references = 1;
};

/// Registers a class object for the process that creates nothing: every creation has this result and no
/// object.
class FailingClass : public IClassFactory {
  public:
    FailingClass(REFCLSID clsid, HRESULT result) : m_result(result) {
        m_registered =
            CoRegisterClassObject(clsid, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
    }
    virtual ~FailingClass() {
        if (SUCCEEDED(m_registered)) {
            CoRevokeClassObject(m_cookie);
        }
    }
    FailingClass(const FailingClass&) = delete;
    FailingClass& operator=(const FailingClass&) = delete;

    HRESULT Registered() const { return m_registered; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IClassFactory)) {
            *object = static_cast<IClassFactory*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void** object) override {
        *object = nullptr;
        return m_result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    HRESULT m_result;
    HRESULT m_registered = E_FAIL;
    DWORD m_cookie = 0;
    ULONG m_references = 1;
};
