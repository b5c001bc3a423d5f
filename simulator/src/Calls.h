// One call of a client while it runs: its fault, its delay and its place in the journal.
#pragma once

#include "ClassProvider.h"
#include "Session.h"

namespace quillet::simulator {

/// WBEM_INFINITE as the timeouts are passed.
inline constexpr LONG InfiniteTimeout = static_cast<LONG>(WBEM_INFINITE);

/// Clears an out-pointer and tells whether there is one.
template <class Pointer>
bool ClearOut(Pointer** out) noexcept {
    if (out == nullptr) {
        return false;
    }
    *out = nullptr;
    return true;
}

/// A call that reaches the provider. It stands in the journal once, whatever becomes of it.
class ProviderCall {
  public:
    ProviderCall(const Session& session, Operation operation, std::wstring_view target, LONG flags = 0,
                 IWbemContext* context = nullptr, std::wstring_view method = {});
    ProviderCall(const ProviderCall&) = delete;
    ProviderCall& operator=(const ProviderCall&) = delete;

    JournalEntry& Entry() noexcept { return m_entry; }
    Machine& Target() const noexcept { return m_machine; }

    /// Decides whether the call goes on: E_ACCESSDENIED for a proxy without its blanket, then
    /// WBEM_E_INVALID_PARAMETER, then the fault that hits it. Takes the time that the fault asks for.
    HRESULT Admit(bool blanketSet, bool argumentsValid);
    /// The same for a call that may wait no longer than a timeout (WBEM_INFINITE, or milliseconds): the time
    /// that is left to wait stays in `debt`, and WBEM_S_TIMEDOUT says so.
    HRESULT AdmitWithin(LONG timeout, unsigned& debt, bool argumentsValid);
    bool Has(Effect effect) const noexcept { return m_fault && m_fault->effect == effect; }
    /// The code of the fault.
    HRESULT FaultCode() const noexcept { return m_fault->code; }
    const FaultRule* Fault() const noexcept { return m_fault ? &*m_fault : nullptr; }
    /// Writes the call into the journal with its result, and returns that.
    HRESULT Done(HRESULT result);

  private:
    HRESULT Check(bool argumentsValid);

    Machine& m_machine;
    JournalEntry m_entry;
    std::optional<FaultRule> m_fault;
};

/// A call that stays with the object in the client's hands.
class LocalCall {
  public:
    /// @param target what the call names: a property, a qualifier, a context value, a class
    /// @param className the class of the object, for the fault rules
    LocalCall(Machine& machine, Operation operation, std::wstring_view target,
              std::wstring_view className = {}, std::wstring_view method = {});

    bool Has(Effect effect) const noexcept { return m_fault && m_fault->effect == effect; }
    const FaultRule* Fault() const noexcept { return m_fault ? &*m_fault : nullptr; }
    HRESULT FaultCode() const noexcept { return m_fault->code; }
    /// Writes the call into the journal, if local calls are recorded, and returns the result.
    HRESULT Done(HRESULT result, std::vector<NamedValue> arguments = {}) const;
    /// Whether Done will write anything.
    bool Recorded() const noexcept { return m_machine.Calls().RecordsLocal(); }

  private:
    Machine& m_machine;
    Operation m_operation;
    std::wstring_view m_target;
    std::wstring_view m_method;
    std::optional<FaultRule> m_fault;
};

/// A value as the journal keeps it: *** in place of what the schema marks as a secret.
NamedValue ForJournal(const Property& property, VARTYPE vt, const Value& value);

} // namespace quillet::simulator
