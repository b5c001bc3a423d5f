// One call that reaches the simulated provider, while it runs.
#include "calls/ProviderCall.h"

#include "machine/MachineState.h"

namespace quillet::simulator {

ProviderCall::ProviderCall(Machine& machine, Operation operation, std::wstring_view target,
                           const CallContext& context, std::wstring_view method)
    : m_machine(machine), m_context(context) {
    m_entry.operation = operation;
    m_entry.target = target;
    m_entry.method = method;
    m_entry.flags = context.flags;
    m_entry.thread = GetCurrentThreadId();
    m_entry.hasContext = context.hasContext;
    m_entry.context = context.values;
}

bool ProviderCall::Begin() {
    m_fault = m_machine.Rules().Hit(m_entry.operation, m_entry.target, m_entry.method);
    if (m_fault) {
        m_machine.Internals().clock.Sleep(std::chrono::milliseconds(m_fault->milliseconds));
    }
    return !Has(Effect::Fail);
}

HRESULT ProviderCall::BeginWithin(LONG timeout, unsigned& owed) {
    m_fault = m_machine.Rules().Hit(m_entry.operation, m_entry.target, m_entry.method);
    owed += m_fault ? m_fault->milliseconds : 0;
    if (!m_machine.Internals().clock.SleepWithin(timeout, owed)) {
        return WBEM_S_TIMEDOUT;
    }
    return Has(Effect::Fail) ? m_fault->code : S_OK;
}

std::optional<HRESULT> ProviderCall::FailedStatus() const noexcept {
    return Has(Effect::FailStatus) ? std::optional(m_fault->code) : std::nullopt;
}

void ProviderCall::SetArguments(const Filled* given) {
    if (given != nullptr) {
        m_entry.arguments = ForJournal(*given->values.definition, given->puts);
    }
}

Outcome ProviderCall::End(HRESULT status) {
    Outcome outcome(status);
    outcome.told = Has(Effect::FailStatus) ? Outcome::Told::ByCallResult : Outcome::Told::Usually;
    outcome.withheld = Has(Effect::NullObject);
    Done(outcome.Returned(m_context));
    return outcome;
}

Outcome ProviderCall::NotBegun() {
    return Outcome::NotBegun(Done(m_fault->code));
}

HRESULT ProviderCall::Done(HRESULT result) {
    m_entry.result = result;
    m_machine.Calls().Add(std::move(m_entry));
    return result;
}

std::vector<NamedValue> ForJournal(const ClassDefinition& definition, std::vector<NamedValue> puts) {
    for (NamedValue& put : puts) {
        const Property* property = definition.FindProperty(put.name);
        if (!put.value.IsNull() && property != nullptr && property->qualifiers.Has(L"Secret")) {
            put.value = Value::Text(L"***");
        }
    }
    return puts;
}

} // namespace quillet::simulator
