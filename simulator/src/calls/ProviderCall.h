// One call that reaches the simulated provider, while it runs: its fault, its delay and its place in the
// journal.
#pragma once

#include <quillet-simulator/Machine.h>

#include <quillet-wmi/Connection.h>

namespace quillet::simulator {

/// Stands in the journal once, whatever becomes of it.
class ProviderCall {
  public:
    ProviderCall(Machine& machine, Operation operation, std::wstring_view target,
                 const CallContext& context = {}, std::wstring_view method = {});
    ProviderCall(const ProviderCall&) = delete;
    ProviderCall& operator=(const ProviderCall&) = delete;

    /// Meets the fault that hits the call, and takes the time that it asks for; false when the call is not
    /// begun, and NotBegun() is all that is left to do.
    bool Begin();
    /// The same for a call that waits no longer than a timeout (WBEM_INFINITE, or milliseconds): the time
    /// that is left to wait stays in `owed`, and WBEM_S_TIMEDOUT says so.
    HRESULT BeginWithin(LONG timeout, unsigned& owed);
    bool Has(Effect effect) const noexcept { return m_fault && m_fault->effect == effect; }
    /// The rule that hits the call; to be asked when there is one.
    const FaultRule& Fault() const noexcept { return *m_fault; }
    /// The status that a fault gives to the end of the call; nothing when there is none.
    std::optional<HRESULT> FailedStatus() const noexcept;

    void SetArguments(const Filled* given);
    void SetArguments(std::vector<NamedValue> arguments) { m_entry.arguments = std::move(arguments); }
    void SetNote(std::wstring note) { m_entry.note = std::move(note); }

    /// Writes the call that ended with a status into the journal, as its client sees it.
    Outcome End(HRESULT status);
    /// The same for a call that was not begun.
    Outcome NotBegun();
    /// The same for a call whose client gets the result as it is.
    HRESULT Done(HRESULT result);

  private:
    Machine& m_machine;
    const CallContext& m_context;
    JournalEntry m_entry;
    std::optional<FaultRule> m_fault;
};

/// What a client put, as the journal keeps it: *** in place of what the schema marks as a secret.
std::vector<NamedValue> ForJournal(const ClassDefinition& definition, std::vector<NamedValue> puts);

} // namespace quillet::simulator
