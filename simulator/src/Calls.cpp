// One call of a client while it runs.
#include "Calls.h"

#include "Context.h"
#include "MachineState.h"

namespace quillet::simulator {

LCID LocaleFromText(std::wstring_view text) noexcept {
    constexpr std::wstring_view Prefix = L"MS_";
    if (text.size() <= Prefix.size() || text.size() > Prefix.size() + 8 ||
        !SameName(text.substr(0, Prefix.size()), Prefix)) {
        return 0;
    }
    LCID locale = 0;
    for (const wchar_t character : text.substr(Prefix.size())) {
        unsigned digit = 0;
        if (character >= L'0' && character <= L'9') {
            digit = static_cast<unsigned>(character - L'0');
        } else if (character >= L'A' && character <= L'F') {
            digit = static_cast<unsigned>(character - L'A') + 10;
        } else if (character >= L'a' && character <= L'f') {
            digit = static_cast<unsigned>(character - L'a') + 10;
        } else {
            return 0;
        }
        locale = locale * 16 + digit;
    }
    return locale;
}

ProviderCall::ProviderCall(const Session& session, Operation operation, std::wstring_view target, LONG flags,
                           IWbemContext* context, std::wstring_view method)
    : m_machine(*session.machine) {
    m_entry.operation = operation;
    m_entry.target = target;
    m_entry.method = method;
    m_entry.flags = flags;
    m_entry.thread = GetCurrentThreadId();
    m_entry.hasContext = context != nullptr;
    m_entry.context = ContextValues(context);
}

HRESULT ProviderCall::Check(bool argumentsValid) {
    if (!argumentsValid) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    m_fault = m_machine.Rules().Hit(m_entry.operation, m_entry.target, m_entry.method);
    return S_OK;
}

HRESULT ProviderCall::Admit(bool blanketSet, bool argumentsValid) {
    if (!blanketSet) {
        return E_ACCESSDENIED;
    }
    const HRESULT checked = Check(argumentsValid);
    if (FAILED(checked) || !m_fault) {
        return checked;
    }
    m_machine.Internals().clock.Sleep(std::chrono::milliseconds(m_fault->milliseconds));
    return Has(Effect::Fail) ? m_fault->code : S_OK;
}

HRESULT ProviderCall::AdmitWithin(LONG timeout, unsigned& debt, bool argumentsValid) {
    const HRESULT checked = Check(argumentsValid && timeout >= InfiniteTimeout);
    if (FAILED(checked)) {
        return checked;
    }
    debt += m_fault ? m_fault->milliseconds : 0;
    auto wait = debt;
    const bool late = timeout != InfiniteTimeout && debt > static_cast<unsigned>(timeout);
    if (late) {
        wait = static_cast<unsigned>(timeout);
    }
    debt -= wait;
    m_machine.Internals().clock.Sleep(std::chrono::milliseconds(wait));
    if (late) {
        return WBEM_S_TIMEDOUT;
    }
    return Has(Effect::Fail) ? m_fault->code : S_OK;
}

HRESULT ProviderCall::Done(HRESULT result) {
    m_entry.result = result;
    m_machine.Calls().Add(std::move(m_entry));
    return result;
}

LocalCall::LocalCall(Machine& machine, Operation operation, std::wstring_view target,
                     std::wstring_view className, std::wstring_view method)
    : m_machine(machine), m_operation(operation), m_target(target), m_method(method) {
    if (machine.Rules().Armed()) {
        m_fault = machine.Rules().Hit(operation, target, method, className);
        if (m_fault) {
            machine.Internals().clock.Sleep(std::chrono::milliseconds(m_fault->milliseconds));
        }
    }
}

HRESULT LocalCall::Done(HRESULT result, std::vector<NamedValue> arguments) const {
    if (Recorded()) {
        JournalEntry entry;
        entry.operation = m_operation;
        entry.target = m_target;
        entry.method = m_method;
        entry.arguments = std::move(arguments);
        entry.thread = GetCurrentThreadId();
        entry.result = result;
        m_machine.Calls().Add(std::move(entry));
    }
    return result;
}

NamedValue ForJournal(const Property& property, VARTYPE vt, const Value& value) {
    NamedValue named{property.name, vt, property.type, Value()};
    if (!value.IsNull()) {
        named.value = property.qualifiers.Has(L"Secret") ? Value::Text(L"***") : value;
    }
    return named;
}

} // namespace quillet::simulator
