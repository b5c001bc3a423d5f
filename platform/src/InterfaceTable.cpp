// The Global Interface Table: interfaces by cookie, a proxy of its own for each retrieval of a remote object.
#include "InterfaceTable.h"
#include "Apartment.h"
#include "Counters.h"

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <vector>

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
        const auto registered = std::make_shared<const Registered>(asked);
        const std::lock_guard guard(m_changes);
        // Counts on, so that a cookie kept too long does not soon name something else.
        do {
            ++m_lastCookie;
        } while (m_lastCookie == 0 || m_parts.front().entries.count(m_lastCookie) != 0);
        for (Part& part : m_parts) {
            const std::lock_guard lock(part.mutex);
            part.entries.emplace(m_lastCookie, std::make_shared<const Entry>(Entry{registered}));
        }
        *cookie = m_lastCookie;
        g_counters.interfaceTableEntries.Add(1);
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE RevokeInterfaceFromGlobal(DWORD cookie) override {
        if (!IsComInitialised()) {
            return CO_E_NOTINITIALIZED;
        }
        // They go when all locks are released: the last release of an object may run any code.
        std::vector<EntryPtr> revoked;
        {
            const std::lock_guard guard(m_changes);
            for (Part& part : m_parts) {
                const std::lock_guard lock(part.mutex);
                if (const auto found = part.entries.find(cookie); found != part.entries.end()) {
                    revoked.push_back(std::move(found->second));
                    part.entries.erase(found);
                }
            }
        }
        if (revoked.empty()) {
            return E_INVALIDARG;
        }
        g_counters.interfaceTableEntries.Add(-1);
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
        EntryPtr entry;
        {
            Part& part = m_parts[OwnPart::Index()];
            const std::lock_guard lock(part.mutex);
            const auto found = part.entries.find(cookie);
            if (found == part.entries.end()) {
                return E_INVALIDARG;
            }
            entry = found->second;
        }
        return entry->registered->HandOut(riid, object);
    }

  private:
    /// An interface and what copies it, asked for once.
    class Registered {
      public:
        /// @param object whose reference it takes over
        explicit Registered(IUnknown* object) : m_object(object) {
            if (FAILED(object->QueryInterface(IID_IClientSecurity, reinterpret_cast<void**>(&m_security)))) {
                m_security = nullptr;
            }
        }
        ~Registered() {
            if (m_security) {
                m_security->Release();
            }
            m_object->Release();
        }
        Registered(const Registered&) = delete;
        Registered& operator=(const Registered&) = delete;

        HRESULT HandOut(REFIID riid, void** object) const {
            if (!m_security) {
                return m_object->QueryInterface(riid, object);
            }
            IUnknown* copy = nullptr;
            HRESULT hr = m_security->CopyProxy(m_object, &copy);
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

      private:
        IUnknown* const m_object;
        IClientSecurity* m_security = nullptr;
    };
    /// What a thread holds while it retrieves: the count is its part's, and lies apart from those of others.
    struct alignas(64) Entry {
        std::shared_ptr<const Registered> registered;
    };
    using EntryPtr = std::shared_ptr<const Entry>;
    /// All interfaces, for some of the threads. Every operation of every thread looks into the table: with
    /// one for all they would wait for its lock and its counts rather than for each other's calls.
    struct alignas(64) Part {
        std::mutex mutex;
        std::unordered_map<DWORD, EntryPtr> entries;
    };

    std::mutex m_changes; ///< keeps the parts alike
    std::array<Part, OwnPart::kCount> m_parts;
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
