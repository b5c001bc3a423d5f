// IWbemCallResult.
#include "CallResult.h"

#include "Calls.h"
#include "VariantConversion.h"

namespace quillet::simulator {

namespace {

std::wstring StatusNote(HRESULT status) {
    static constexpr wchar_t Digits[] = L"0123456789ABCDEF";
    std::wstring note = L"status 0x";
    for (int shift = 28; shift >= 0; shift -= 4) {
        note += Digits[(static_cast<std::uint32_t>(status) >> shift) & 0xF];
    }
    return note;
}

class CallResult final : public ComObject<IWbemCallResult, IID_IWbemCallResult> {
  public:
    CallResult(SessionPtr session, CallOutcome outcome)
        : m_session(std::move(session)), m_outcome(std::move(outcome)) {}

    HRESULT STDMETHODCALLTYPE GetResultObject(LONG timeout, IWbemClassObject** object) override {
        ProviderCall call(*m_session, Operation::GetResultObject, m_outcome.target);
        const std::lock_guard lock(m_mutex);
        const HRESULT admitted = call.AdmitWithin(timeout, m_debt, ClearOut(object));
        if (admitted != S_OK) {
            return call.Done(admitted);
        }
        if (FAILED(m_outcome.status)) {
            return call.Done(m_outcome.status);
        }
        if (call.Has(Effect::NullObject)) {
            return call.Done(S_OK);
        }
        if (!m_outcome.object) {
            return call.Done(HRESULT(WBEM_E_INVALID_OPERATION));
        }
        m_outcome.object->AddRef();
        *object = m_outcome.object.get();
        return call.Done(S_OK);
    }

    HRESULT STDMETHODCALLTYPE GetResultString(LONG timeout, BSTR* text) override {
        if (!ClearOut(text) || timeout < InfiniteTimeout) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        if (FAILED(m_outcome.status)) {
            return m_outcome.status;
        }
        if (!m_outcome.text) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        *text = MakeBstr(*m_outcome.text);
        return *text != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
    }

    HRESULT STDMETHODCALLTYPE GetResultServices(LONG timeout, IWbemServices** services) override {
        if (!ClearOut(services) || timeout < InfiniteTimeout) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        if (FAILED(m_outcome.status)) {
            return m_outcome.status;
        }
        if (!m_outcome.services) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        m_outcome.services->AddRef();
        *services = m_outcome.services.get();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetCallStatus(LONG timeout, LONG* status) override {
        ProviderCall call(*m_session, Operation::GetCallStatus, m_outcome.target);
        const std::lock_guard lock(m_mutex);
        const HRESULT admitted = call.AdmitWithin(timeout, m_debt, status != nullptr);
        if (admitted != S_OK) {
            return call.Done(admitted);
        }
        *status = call.Has(Effect::FailStatus) ? call.FaultCode() : m_outcome.status;
        call.Entry().note = *status != S_OK ? StatusNote(*status) : std::wstring();
        return call.Done(S_OK);
    }

    // A blanket may be set on a call result; none is demanded.
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*,
                                         DWORD) override {
        return S_OK;
    }

  private:
    const SessionPtr m_session;
    const CallOutcome m_outcome;
    std::mutex m_mutex;
    unsigned m_debt = 0; ///< milliseconds that a delayed answer still takes
};

} // namespace

IWbemCallResult* MakeCallResult(SessionPtr session, CallOutcome outcome) {
    return new CallResult(std::move(session), std::move(outcome));
}

} // namespace quillet::simulator
