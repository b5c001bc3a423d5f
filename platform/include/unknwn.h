// IUnknown and IClassFactory.
#pragma once

#include <windef.h>
#include <guiddef.h>
#include <winerror.h>

#pragma GCC visibility push(default)
#pragma GCC diagnostic push
// A virtual destructor would take a slot of the table that COM fixes.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

#define STDMETHOD(method) virtual HRESULT STDMETHODCALLTYPE method
#define STDMETHOD_(type, method) virtual type STDMETHODCALLTYPE method
#define STDMETHODIMP HRESULT STDMETHODCALLTYPE
#define STDMETHODIMP_(type) type STDMETHODCALLTYPE
#define STDAPI extern "C" HRESULT STDAPICALLTYPE
#define PURE = 0

QUILLET_PLATFORM_OLE_IID(IUnknown, 0x00000000)
struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    template <class Interface>
    HRESULT QueryInterface(Interface** object) {
        return QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(object));
    }
};
using LPUNKNOWN = IUnknown*;

QUILLET_PLATFORM_OLE_IID(IClassFactory, 0x00000001)
struct IClassFactory : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;
};

/// The address of an interface pointer as void**, checked to be one.
template <class Interface>
void** IID_PPV_ARGS_Helper(Interface** object) noexcept {
    static_assert(std::is_base_of_v<IUnknown, Interface>, "an interface pointer is expected");
    return reinterpret_cast<void**>(object);
}
#define IID_PPV_ARGS(object) __uuidof(**(object)), IID_PPV_ARGS_Helper(object)

#pragma GCC diagnostic pop
#pragma GCC visibility pop
