// The journal and the faults of a machine for the calls that stay with the client's objects.
#include "calls/MachineObserver.h"

#include "calls/Damage.h"
#include "calls/ProviderCall.h"
#include "machine/MachineState.h"

namespace quillet::simulator {

namespace {

std::wstring StatusNote(HRESULT status) {
    static constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    std::wstring note = L"status 0x";
    for (int shift = 28; shift >= 0; shift -= 4) {
        note += kDigits[(static_cast<std::uint32_t>(status) >> shift) & 0xF];
    }
    return note;
}

} // namespace

Interference MachineObserver::Before(const ObservedCall& call) {
    Interference interference;
    const auto rule = m_machine.Rules().Hit(call.operation, call.target, call.method,
                                            call.definition != nullptr ? call.definition->name : L"");
    auto& clock = m_machine.Internals().clock;
    if (call.owed != nullptr) {
        *call.owed += rule ? rule->milliseconds : 0;
        if (!clock.SleepWithin(call.timeout, *call.owed)) {
            interference.result = WBEM_S_TIMEDOUT;
            return interference;
        }
    } else if (rule) {
        clock.Sleep(std::chrono::milliseconds(rule->milliseconds));
    }
    if (!rule) {
        return interference;
    }
    switch (rule->effect) {
    case Effect::Fail:
        interference.result = rule->code;
        break;
    case Effect::Absent:
        interference.result = HRESULT(WBEM_E_NOT_FOUND);
        break;
    case Effect::FailStatus:
        interference.status = rule->code;
        break;
    case Effect::NullObject:
        interference.withhold = true;
        break;
    case Effect::Delay:
        break;
    default:
        interference.fill = [rule = *rule](const Value& value, CIMTYPE type, VARIANT* variant) {
            return ToDamagedVariant(value, type, rule, variant);
        };
        break;
    }
    return interference;
}

bool MachineObserver::Records(Operation operation) const noexcept {
    return IsProviderCall(operation) || m_machine.Calls().RecordsLocal();
}

void MachineObserver::After(const ObservedCall& call, HRESULT result, std::vector<NamedValue> arguments,
                            HRESULT status) {
    JournalEntry entry;
    entry.operation = call.operation;
    entry.target = call.target;
    entry.method = call.method;
    if (call.definition != nullptr) {
        arguments = ForJournal(*call.definition, std::move(arguments));
    }
    entry.arguments = std::move(arguments);
    if (call.context != nullptr) {
        entry.flags = call.context->flags;
        entry.hasContext = call.context->hasContext;
        entry.context = call.context->values;
    }
    entry.thread = GetCurrentThreadId();
    entry.result = result;
    entry.note = status != S_OK ? StatusNote(status) : std::wstring();
    m_machine.Calls().Add(std::move(entry));
}

} // namespace quillet::simulator
