// IWbemCallResult.
#include "com/CallResult.h"

#include <quillet-wmi/Variant.h>

#include <mutex>

namespace quillet::wmi {

namespace {

class CallResult final : public ComObject<IWbemCallResult, IID_IWbemCallResult> {
  public:
    CallResult(SessionPtr session, CallOutcome outcome)
        : m_session(std::move(session)), m_outcome(std::move(outcome)) {}

    HRESULT STDMETHODCALLTYPE GetResultObject(LONG timeout, IWbemClassObject** object) override {
        const std::lock_guard lock(m_mutex);
        const ObservedCall seen = Seen(Operation::GetResultObject, timeout);
        if (!ClearOut(object) || timeout < kInfiniteTimeout) {
            return Refused(m_session->observer, seen, HRESULT(WBEM_E_INVALID_PARAMETER));
        }
        const LocalCall call(m_session->observer, seen);
        if (call.Stopped()) {
            return call.Done(*call.Stopped());
        }
        if (FAILED(m_outcome.status)) {
            return call.Done(m_outcome.status);
        }
        if (call.Withheld()) {
            return call.Done(S_OK);
        }
        return call.Done(HandOut(m_outcome.object, object));
    }

    HRESULT STDMETHODCALLTYPE GetResultString(LONG timeout, BSTR* text) override {
        if (!ClearOut(text) || timeout < kInfiniteTimeout) {
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
        if (!ClearOut(services) || timeout < kInfiniteTimeout) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        return FAILED(m_outcome.status) ? m_outcome.status : HandOut(m_outcome.services, services);
    }

    HRESULT STDMETHODCALLTYPE GetCallStatus(LONG timeout, LONG* status) override {
        const std::lock_guard lock(m_mutex);
        const ObservedCall seen = Seen(Operation::GetCallStatus, timeout);
        if (status == nullptr || timeout < kInfiniteTimeout) {
            return Refused(m_session->observer, seen, HRESULT(WBEM_E_INVALID_PARAMETER));
        }
        const LocalCall call(m_session->observer, seen);
        if (call.Stopped()) {
            return call.Done(*call.Stopped());
        }
        *status = call.Status().value_or(m_outcome.status);
        return call.Done(S_OK, {}, *status);
    }

    // A blanket may be set on a call result; none is demanded.
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown*, DWORD, DWORD, OLECHAR*, DWORD, DWORD, void*,
                                         DWORD) override {
        return S_OK;
    }

  private:
    ObservedCall Seen(Operation operation, LONG timeout) {
        ObservedCall seen;
        seen.operation = operation;
        seen.target = m_outcome.target;
        seen.timeout = timeout;
        seen.owed = &m_owed;
        return seen;
    }

    template <class Interface>
    static HRESULT HandOut(const ComOwner<Interface>& yielded, Interface** place) {
        if (!yielded) {
            return HRESULT(WBEM_E_INVALID_OPERATION);
        }
        yielded->AddRef();
        *place = yielded.get();
        return S_OK;
    }

    const SessionPtr m_session;
    const CallOutcome m_outcome;
    std::mutex m_mutex;
    unsigned m_owed = 0; ///< milliseconds that a delayed answer still takes
};

} // namespace

IWbemCallResult* MakeCallResult(SessionPtr session, CallOutcome outcome) {
    return new CallResult(std::move(session), std::move(outcome));
}

} // namespace quillet::wmi
