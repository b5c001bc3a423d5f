// IEnumWbemClassObject.
#include "Enumerator.h"

#include "Calls.h"
#include "ClassObject.h"
#include "ComObject.h"

#include <algorithm>

namespace quillet::simulator {

namespace {

class Enumerator final : public ComObject<IEnumWbemClassObject, IID_IEnumWbemClassObject> {
  public:
    Enumerator(SessionPtr session, Enumeration enumeration)
        : m_session(std::move(session)), m_enumeration(std::move(enumeration)) {}

    HRESULT STDMETHODCALLTYPE Reset() override {
        if (m_enumeration.forwardOnly) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        const std::lock_guard lock(m_mutex);
        m_position = 0;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects,
                                   ULONG* returned) override {
        ProviderCall call(*m_session, Operation::Next, m_enumeration.target);
        const bool whole = objects != nullptr && returned != nullptr;
        if (whole) {
            *returned = 0;
            std::fill(objects, objects + count, nullptr);
        }
        const std::lock_guard lock(m_mutex);
        const HRESULT admitted = call.AdmitWithin(timeout, m_debt, whole && count != 0);
        if (admitted != S_OK) {
            return call.Done(admitted);
        }
        if (FAILED(m_enumeration.status)) {
            return call.Done(m_enumeration.status);
        }
        if (call.Has(Effect::EndOfData)) {
            m_position = m_enumeration.objects->size();
        }
        while (*returned < count && m_position < m_enumeration.objects->size()) {
            if (!call.Has(Effect::NullObject)) {
                objects[*returned] =
                    new ClassObject(m_session, (*m_enumeration.objects)[m_position], m_enumeration.amended);
            }
            ++*returned;
            ++m_position;
        }
        return call.Done(*returned == count ? HRESULT(WBEM_S_NO_ERROR) : HRESULT(WBEM_S_FALSE));
    }

    HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override {
        return HRESULT(WBEM_E_NOT_SUPPORTED);
    }

    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject** copy) override {
        if (!ClearOut(copy)) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        if (m_enumeration.forwardOnly) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        const std::lock_guard lock(m_mutex);
        auto* made = new Enumerator(m_session, m_enumeration);
        made->m_position = m_position;
        *copy = made;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Skip(LONG timeout, ULONG count) override {
        if (timeout < InfiniteTimeout) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        if (FAILED(m_enumeration.status)) {
            return m_enumeration.status;
        }
        const std::size_t left = m_enumeration.objects->size() - m_position;
        m_position += std::min<std::size_t>(count, left);
        return count <= left ? HRESULT(WBEM_S_NO_ERROR) : HRESULT(WBEM_S_FALSE);
    }

    // A blanket may be set on an enumerator; none is demanded.
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*,
                                         DWORD) override {
        return S_OK;
    }

  private:
    const SessionPtr m_session;
    const Enumeration m_enumeration;
    std::mutex m_mutex;
    std::size_t m_position = 0;
    unsigned m_debt = 0; ///< milliseconds that a delayed answer still takes
};

} // namespace

IEnumWbemClassObject* MakeEnumerator(SessionPtr session, Enumeration enumeration) {
    return new Enumerator(std::move(session), std::move(enumeration));
}

} // namespace quillet::simulator
