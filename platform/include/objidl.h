// COM's own interfaces: the Global Interface Table, proxy security, marshalling.
#pragma once

#include <wtypes.h>
#include <unknwn.h>
#include <rpcdce.h>

#pragma GCC visibility push(default)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

struct IStream;

/// Interfaces by number, for use from every thread of the process.
QUILLET_PLATFORM_OLE_IID(IGlobalInterfaceTable, 0x00000146)
struct IGlobalInterfaceTable : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE RegisterInterfaceInGlobal(IUnknown* object, REFIID riid,
                                                                DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE RevokeInterfaceFromGlobal(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetInterfaceFromGlobal(DWORD cookie, REFIID riid, void** object) = 0;
};

enum tagEOLE_AUTHENTICATION_CAPABILITIES {
    EOAC_NONE = 0,
    EOAC_MUTUAL_AUTH = 0x1,
    EOAC_SECURE_REFS = 0x2,
    EOAC_ACCESS_CONTROL = 0x4,
    EOAC_APPID = 0x8,
    EOAC_DYNAMIC = 0x10,
    EOAC_STATIC_CLOAKING = 0x20,
    EOAC_DYNAMIC_CLOAKING = 0x40,
    EOAC_ANY_AUTHORITY = 0x80,
    EOAC_MAKE_FULLSIC = 0x100,
    EOAC_REQUIRE_FULLSIC = 0x200,
    EOAC_AUTO_IMPERSONATE = 0x400,
    EOAC_DEFAULT = 0x800,
    EOAC_DISABLE_AAA = 0x1000,
    EOAC_NO_CUSTOM_MARSHAL = 0x2000
};
using EOLE_AUTHENTICATION_CAPABILITIES = tagEOLE_AUTHENTICATION_CAPABILITIES;

struct SOLE_AUTHENTICATION_SERVICE {
    DWORD dwAuthnSvc;
    DWORD dwAuthzSvc;
    OLECHAR* pPrincipalName;
    HRESULT hr;
};

/// What a proxy offers for its own security settings.
QUILLET_PLATFORM_OLE_IID(IClientSecurity, 0x0000013d)
struct IClientSecurity : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authnSvc, DWORD* authzSvc,
                                                   OLECHAR** serverPrincipal, DWORD* authnLevel,
                                                   DWORD* impLevel, void** authInfo, DWORD* capabilities) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authnSvc, DWORD authzSvc,
                                                 OLECHAR* serverPrincipal, DWORD authnLevel, DWORD impLevel,
                                                 void* authInfo, DWORD capabilities) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown* proxy, IUnknown** copy) = 0;
};

QUILLET_PLATFORM_OLE_IID(IMarshal, 0x00000003)
struct IMarshal : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetUnmarshalClass(REFIID riid, void* object, DWORD context,
                                                        void* contextData, DWORD flags, CLSID* clsid) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMarshalSizeMax(REFIID riid, void* object, DWORD context,
                                                        void* contextData, DWORD flags, DWORD* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE MarshalInterface(IStream* stream, REFIID riid, void* object,
                                                       DWORD context, void* contextData, DWORD flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnmarshalInterface(IStream* stream, REFIID riid, void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE ReleaseMarshalData(IStream* stream) = 0;
    virtual HRESULT STDMETHODCALLTYPE DisconnectObject(DWORD reserved) = 0;
};

/// Says that its object may be called from any apartment; it has no methods.
QUILLET_PLATFORM_IID(IAgileObject, 0x94ea2b94, 0xe9cc, 0x49e0, 0xc0, 0xff, 0xee, 0x64, 0xca, 0x8f, 0x5b, 0x90)
struct IAgileObject : public IUnknown {};

DEFINE_OLEGUID(CLSID_StdGlobalInterfaceTable, 0x00000323, 0, 0);

#pragma GCC diagnostic pop
#pragma GCC visibility pop
