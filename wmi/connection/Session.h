// One client's connection, and the calls on what it handed out.
#pragma once

#include <quillet-wmi/Observer.h>

namespace quillet::wmi {

/// Shared by everything that a connection hands out; it keeps the connection alive.
struct Session {
    std::shared_ptr<Connection> connection;
    LCID locale = 0; ///< the language of amended qualifiers; 0: the texts as the schema has them
    CallObserver* observer = nullptr; ///< the connection's own
};

using SessionPtr = std::shared_ptr<const Session>;

/// The language in a locale text such as "MS_407"; 0 when it is none.
LCID LocaleFromText(std::wstring_view text) noexcept;

/// Clears an out-pointer and tells whether there is one.
template <class Pointer>
bool ClearOut(Pointer** out) noexcept {
    if (out == nullptr) {
        return false;
    }
    *out = nullptr;
    return true;
}

/// A call that ends in this process, from its beginning to its end as an observer sees it.
class LocalCall {
  public:
    LocalCall(CallObserver* observer, const ObservedCall& call) : m_observer(observer), m_call(call) {
        if (observer != nullptr && observer->Interferes()) {
            m_interference = observer->Before(m_call);
        }
    }

    /// What the call returns without doing anything, if the observer says so.
    const std::optional<HRESULT>& Stopped() const noexcept { return m_interference.result; }
    /// Whether a call that succeeds hands nothing out.
    bool Withheld() const noexcept { return m_interference.withhold; }
    /// The status that GetCallStatus tells instead of the true one.
    const std::optional<HRESULT>& Status() const noexcept { return m_interference.status; }
    /// Whether the VARIANT that is handed out holds something else than the object does.
    bool Damages() const noexcept { return m_interference.fill != nullptr; }
    /// Fills the VARIANT that is handed out.
    HRESULT Fill(const Value& value, CIMTYPE type, VARIANT* variant) const;
    /// Whether Done will tell anybody.
    bool Recorded() const noexcept { return m_observer != nullptr && m_observer->Records(m_call.operation); }
    /// Ends the call, and returns its result.
    HRESULT Done(HRESULT result, std::vector<NamedValue> arguments = {}, HRESULT status = S_OK) const {
        if (Recorded()) {
            m_observer->After(m_call, result, std::move(arguments), status);
        }
        return result;
    }

  private:
    CallObserver* const m_observer;
    const ObservedCall m_call;
    Interference m_interference;
};

/// Ends a call that was refused before anybody was asked, and returns the result.
HRESULT Refused(CallObserver* observer, const ObservedCall& call, HRESULT result,
                const std::vector<NamedValue>& arguments = {});

} // namespace quillet::wmi
