// The Global Interface Table: interfaces by cookie, a proxy of its own for each retrieval of a remote object.
#include "InterfaceTable.h"
#include "Apartment.h"
#include "Counters.h"

#include <cstddef>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <unordered_map>

namespace quillet::platform {
namespace {

class Table final : public IGlobalInterfaceTable {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!object) {
            return E_POINTER;
        }
        if (riid != IID_IUnknown && riid != IID_IGlobalInterfaceTable && riid != IID_IAgileObject) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IGlobalInterfaceTable*>(this);
        return S_OK;
    }
    // The table outlives all who use it; the counts only keep up the form.
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE RegisterInterfaceInGlobal(IUnknown* object, REFIID riid,
                                                        DWORD* cookie) override {
        if (!IsComInitialised()) {
            return CO_E_NOTINITIALIZED;
        }
        if (!object || !cookie) {
            return E_INVALIDARG;
        }
        IUnknown* asked = nullptr;
        const HRESULT hr = object->QueryInterface(riid, reinterpret_cast<void**>(&asked));
        if (FAILED(hr)) {
            return hr;
        }
        const std::unique_lock guard(m_lock);
        // Counts on, so that a cookie kept too long does not soon name something else.
        do {
            ++m_lastCookie;
        } while (m_lastCookie == 0 || m_entries.count(m_lastCookie) != 0);
        m_entries.emplace(m_lastCookie, asked);
        *cookie = m_lastCookie;
        g_counters.interfaceTableEntries.Add(1);
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE RevokeInterfaceFromGlobal(DWORD cookie) override {
        if (!IsComInitialised()) {
            return CO_E_NOTINITIALIZED;
        }
        IUnknown* object = nullptr;
        {
            const std::unique_lock guard(m_lock);
            const auto found = m_entries.find(cookie);
            if (found == m_entries.end()) {
                return E_INVALIDARG;
            }
            object = found->second;
            m_entries.erase(found);
        }
        g_counters.interfaceTableEntries.Add(-1);
        // Outside the lock: the last release may run any code.
        object->Release();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetInterfaceFromGlobal(DWORD cookie, REFIID riid, void** object) override {
        if (!IsComInitialised()) {
            return CO_E_NOTINITIALIZED;
        }
        if (!object) {
            return E_INVALIDARG;
        }
        *object = nullptr;
        IUnknown* registered = nullptr;
        {
            const std::shared_lock guard(m_lock);
            const auto found = m_entries.find(cookie);
            if (found == m_entries.end()) {
                return E_INVALIDARG;
            }
            registered = found->second;
            registered->AddRef();
        }
        const HRESULT hr = HandOut(registered, riid, object);
        registered->Release();
        return hr;
    }

  private:
    static HRESULT HandOut(IUnknown* registered, REFIID riid, void** object) {
        IClientSecurity* security = nullptr;
        if (FAILED(registered->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&security)))) {
            return registered->QueryInterface(riid, object);
        }
        IUnknown* copy = nullptr;
        HRESULT hr = security->CopyProxy(registered, &copy);
        security->Release();
        if (FAILED(hr)) {
            return hr;
        }
        if (!copy) {
            return E_NOINTERFACE;
        }
        hr = copy->QueryInterface(riid, object);
        copy->Release();
        return hr;
    }

    std::shared_mutex m_lock;
    std::unordered_map<DWORD, IUnknown*> m_entries;
    DWORD m_lastCookie = 0xff;
};

} // namespace

IGlobalInterfaceTable* InterfaceTable() noexcept {
    // Never destroyed, because objects with static lifetime may still revoke their entries at exit.
    alignas(Table) static std::byte place[sizeof(Table)];
    static Table& table = *new (place) Table;
    return &table;
}

} // namespace quillet::platform
