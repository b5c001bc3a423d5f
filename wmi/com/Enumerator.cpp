// IEnumWbemClassObject.
#include "com/Enumerator.h"

#include "com/ComObject.h"
#include "objects/ClassObject.h"

#include <algorithm>
#include <mutex>

namespace quillet::wmi {

namespace {

class Enumerator final : public ComObject<IEnumWbemClassObject, IID_IEnumWbemClassObject> {
  public:
    Enumerator(SessionPtr session, Enumeration enumeration)
        : m_session(std::move(session)), m_enumeration(std::move(enumeration)) {}

    HRESULT STDMETHODCALLTYPE Reset() override {
        if (m_enumeration.forwardOnly || m_enumeration.objects == nullptr) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        const std::lock_guard lock(m_mutex);
        return m_enumeration.objects->Reset();
    }

    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override {
        const bool whole = objects != nullptr && returned != nullptr;
        if (whole) {
            *returned = 0;
            std::fill(objects, objects + count, nullptr);
        }
        const std::lock_guard lock(m_mutex);
        if (m_enumeration.objects == nullptr) {
            return FAILED(m_enumeration.status) ? m_enumeration.status : HRESULT(WBEM_E_INVALID_OPERATION);
        }
        // Most clients take one at a time.
        Object one;
        std::vector<Object> many(whole && count > 1 ? count : 0);
        const std::span<Object> places = many.empty() ? std::span<Object>(&one, 1) : std::span<Object>(many);
        ULONG filled = 0;
        const HRESULT result = m_enumeration.objects->Next(timeout, places.first(whole ? count : 0), filled);
        for (ULONG index = 0; index < filled; ++index) {
            // A connection may say that there is an object and hand out none.
            if (Object& object = places[index]; object.definition != nullptr) {
                objects[index] = new ClassObject(m_session, std::move(object), m_enumeration.amended);
            }
        }
        if (whole) {
            *returned = filled;
        }
        return result;
    }

    HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }

    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) override {
        if (!ClearOut(copy)) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        if (m_enumeration.forwardOnly || m_enumeration.objects == nullptr) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        const std::lock_guard lock(m_mutex);
        auto objects = m_enumeration.objects->Clone();
        if (objects == nullptr) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        *copy = MakeEnumerator(m_session,
                               {std::move(objects), m_enumeration.status, m_enumeration.amended, false});
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) override {
        if (timeout < kInfiniteTimeout) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        return FAILED(m_enumeration.status) || m_enumeration.objects == nullptr
                   ? m_enumeration.status
                   : m_enumeration.objects->Skip(timeout, count);
    }

    // A blanket may be set on an enumerator; none is demanded.
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*,
                                         DWORD) override {
        return S_OK;
    }

  private:
    const SessionPtr m_session; // before the stream, which must not outlive it
    const Enumeration m_enumeration;
    std::mutex m_mutex;
};

} // namespace

IEnumWbemClassObject* MakeEnumerator(SessionPtr session, Enumeration enumeration) {
    return new Enumerator(std::move(session), std::move(enumeration));
}

} // namespace quillet::wmi
