// COM's functions: initialisation per thread, class objects, proxy blankets, memory, GUID texts.
#pragma once

#include <windef.h>
#include <guiddef.h>
#include <winerror.h>
#include <unknwn.h>
#include <objidl.h>

enum tagCOINIT {
    COINIT_MULTITHREADED = 0x0,
    COINIT_APARTMENTTHREADED = 0x2,
    COINIT_DISABLE_OLE1DDE = 0x4,
    COINIT_SPEED_OVER_MEMORY = 0x8
};
using COINIT = tagCOINIT;

enum tagREGCLS {
    REGCLS_SINGLEUSE = 0,
    REGCLS_MULTIPLEUSE = 1,
    REGCLS_MULTI_SEPARATE = 2,
    REGCLS_SUSPENDED = 4,
    REGCLS_SURROGATE = 8
};
using REGCLS = tagREGCLS;

using CO_MTA_USAGE_COOKIE = struct CO_MTA_USAGE_COOKIE__*;

#define COLE_DEFAULT_PRINCIPAL (reinterpret_cast<OLECHAR*>(static_cast<INT_PTR>(-1)))
#define COLE_DEFAULT_AUTHINFO (reinterpret_cast<void*>(static_cast<INT_PTR>(-1)))

#pragma GCC visibility push(default)

/// Initialises COM for the calling thread; every success must be paired with CoUninitialize.
/// @return S_OK, S_FALSE when it was initialised already, RPC_E_CHANGED_MODE when for the other model.
HRESULT WINAPI CoInitializeEx(void* reserved, DWORD model);
HRESULT WINAPI CoInitialize(void* reserved);
void WINAPI CoUninitialize();
/// Keeps the process's multithreaded apartment alive without initialising COM for any thread: meanwhile,
/// threads that have not done so belong to it. Every success must be paired with CoDecrementMTAUsage.
HRESULT WINAPI CoIncrementMTAUsage(CO_MTA_USAGE_COOKIE* cookie);
HRESULT WINAPI CoDecrementMTAUsage(CO_MTA_USAGE_COOKIE cookie);
HRESULT WINAPI CoInitializeSecurity(void* descriptor, LONG services, SOLE_AUTHENTICATION_SERVICE* service,
                                    void* reserved1, DWORD authnLevel, DWORD impLevel, void* authList,
                                    DWORD capabilities, void* reserved3);

/// @return CO_E_NOTINITIALIZED on a thread without COM (there is no implicit apartment), REGDB_E_CLASSNOTREG
///         for a class that is not in the table, or what the class object answers.
HRESULT WINAPI CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID riid, void** object);
HRESULT WINAPI CoGetClassObject(REFCLSID clsid, DWORD context, void* serverInfo, REFIID riid, void** object);
/// Puts a class object into the process's table; with several of one class the oldest is used.
HRESULT WINAPI CoRegisterClassObject(REFCLSID clsid, IUnknown* classObject, DWORD context, DWORD flags,
                                     DWORD* cookie);
HRESULT WINAPI CoRevokeClassObject(DWORD cookie);
/// An object that makes its outer one callable from any apartment. Only the aggregation is of use here: its
/// marshalling methods answer E_NOTIMPL.
HRESULT WINAPI CoCreateFreeThreadedMarshaler(IUnknown* outer, IUnknown** marshaler);

/// Hands the settings to the proxy's own IClientSecurity; E_NOINTERFACE if it has none.
HRESULT WINAPI CoSetProxyBlanket(IUnknown* proxy, DWORD authnSvc, DWORD authzSvc, OLECHAR* serverPrincipal,
                                 DWORD authnLevel, DWORD impLevel, RPC_AUTH_IDENTITY_HANDLE authInfo,
                                 DWORD capabilities);
HRESULT WINAPI CoQueryProxyBlanket(IUnknown* proxy, DWORD* authnSvc, DWORD* authzSvc,
                                   OLECHAR** serverPrincipal, DWORD* authnLevel, DWORD* impLevel,
                                   RPC_AUTH_IDENTITY_HANDLE* authInfo, DWORD* capabilities);
HRESULT WINAPI CoCopyProxy(IUnknown* proxy, IUnknown** copy);

void* WINAPI CoTaskMemAlloc(SIZE_T bytes) noexcept;
void* WINAPI CoTaskMemRealloc(void* memory, SIZE_T bytes) noexcept;
void WINAPI CoTaskMemFree(void* memory) noexcept;

HRESULT WINAPI CoCreateGuid(GUID* guid);
/// Writes "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
/// @return characters with the terminator (39), or 0 for a short buffer.
int WINAPI StringFromGUID2(REFGUID guid, LPOLESTR buffer, int size);
HRESULT WINAPI CLSIDFromString(LPCOLESTR text, CLSID* clsid);
HRESULT WINAPI IIDFromString(LPCOLESTR text, IID* iid);

#pragma GCC visibility pop
