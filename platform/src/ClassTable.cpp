// Class objects of the process and the creation of objects through them.
#include "Apartment.h"
#include "InterfaceTable.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

using quillet::platform::IsComInitialised;

struct Registration {
    DWORD cookie;
    CLSID clsid;
    IUnknown* classObject;
    bool singleUse;
};

struct ClassTable {
    std::mutex lock;
    std::vector<Registration> registrations;
    DWORD lastCookie = 0;
};

ClassTable& Classes() {
    // Never destroyed, because objects with static lifetime may still revoke their class at exit.
    static ClassTable& table = *new ClassTable;
    return table;
}

/// The oldest registration of the class that is not spent.
auto FindClass(ClassTable& table, REFCLSID clsid) {
    return std::find_if(
        table.registrations.begin(), table.registrations.end(),
        [&clsid](const Registration& entry) { return entry.clsid == clsid && entry.classObject; });
}

/// The class object with a reference for the caller, or null. A single-use registration is spent by it.
IUnknown* TakeClassObject(REFCLSID clsid) {
    ClassTable& table = Classes();
    const std::lock_guard guard(table.lock);
    const auto found = FindClass(table, clsid);
    if (found == table.registrations.end()) {
        return nullptr;
    }
    IUnknown* const classObject = found->classObject;
    if (found->singleUse) {
        found->classObject = nullptr;
    } else {
        classObject->AddRef();
    }
    return classObject;
}

} // namespace

HRESULT WINAPI CoRegisterClassObject(REFCLSID clsid, IUnknown* classObject, DWORD, DWORD flags,
                                     DWORD* cookie) {
    if (!IsComInitialised()) {
        return CO_E_NOTINITIALIZED;
    }
    if (!classObject || !cookie) {
        return E_INVALIDARG;
    }
    ClassTable& table = Classes();
    const std::lock_guard guard(table.lock);
    const bool singleUse = (flags & (REGCLS_MULTIPLEUSE | REGCLS_MULTI_SEPARATE)) == 0;
    if (singleUse && FindClass(table, clsid) != table.registrations.end()) {
        return CO_E_OBJISREG;
    }
    if (++table.lastCookie == 0) {
        ++table.lastCookie;
    }
    classObject->AddRef();
    table.registrations.push_back({table.lastCookie, clsid, classObject, singleUse});
    *cookie = table.lastCookie;
    return S_OK;
}

HRESULT WINAPI CoRevokeClassObject(DWORD cookie) {
    if (!IsComInitialised()) {
        return CO_E_NOTINITIALIZED;
    }
    IUnknown* classObject = nullptr;
    {
        ClassTable& table = Classes();
        const std::lock_guard guard(table.lock);
        const auto found =
            std::find_if(table.registrations.begin(), table.registrations.end(),
                         [cookie](const Registration& entry) { return entry.cookie == cookie; });
        if (found == table.registrations.end()) {
            return E_INVALIDARG;
        }
        classObject = found->classObject;
        table.registrations.erase(found);
    }
    if (classObject) {
        classObject->Release();
    }
    return S_OK;
}

HRESULT WINAPI CoGetClassObject(REFCLSID clsid, DWORD, void*, REFIID riid, void** object) {
    if (!object) {
        return E_INVALIDARG;
    }
    *object = nullptr;
    if (!IsComInitialised()) {
        return CO_E_NOTINITIALIZED;
    }
    IUnknown* const classObject = TakeClassObject(clsid);
    if (!classObject) {
        return REGDB_E_CLASSNOTREG;
    }
    const HRESULT hr = classObject->QueryInterface(riid, object);
    classObject->Release();
    return hr;
}

HRESULT WINAPI CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID riid, void** object) {
    if (!object) {
        return E_POINTER;
    }
    *object = nullptr;
    if (!IsComInitialised()) {
        return CO_E_NOTINITIALIZED;
    }
    if (clsid == CLSID_StdGlobalInterfaceTable) {
        return outer ? CLASS_E_NOAGGREGATION
                     : quillet::platform::InterfaceTable()->QueryInterface(riid, object);
    }
    IClassFactory* factory = nullptr;
    HRESULT hr =
        CoGetClassObject(clsid, context, nullptr, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    if (FAILED(hr)) {
        return hr;
    }
    hr = factory->CreateInstance(outer, riid, object);
    factory->Release();
    return hr;
}
