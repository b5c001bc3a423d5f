// Fault rules: which call they hit, and counting.
#include <quillet-simulator/Faults.h>

#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Wql.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace quillet::simulator {

namespace {

struct NamedEffect {
    Effect effect;
    const wchar_t* name;
};

constexpr std::array kEffects{
    NamedEffect{Effect::Fail, L"Fail"},
    NamedEffect{Effect::FailStatus, L"FailStatus"},
    NamedEffect{Effect::NullObject, L"NullObject"},
    NamedEffect{Effect::Verdict, L"Verdict"},
    NamedEffect{Effect::NoOutParameters, L"NoOutParameters"},
    NamedEffect{Effect::NullValue, L"NullValue"},
    NamedEffect{Effect::Absent, L"Absent"},
    NamedEffect{Effect::WrongType, L"WrongType"},
    NamedEffect{Effect::ShiftedArray, L"ShiftedArray"},
    NamedEffect{Effect::EmptyArray, L"EmptyArray"},
    NamedEffect{Effect::NullArray, L"NullArray"},
    NamedEffect{Effect::UnreadableElement, L"UnreadableElement"},
    NamedEffect{Effect::HugeString, L"HugeString"},
    NamedEffect{Effect::EndOfData, L"EndOfData"},
    NamedEffect{Effect::PowerCut, L"PowerCut"},
    NamedEffect{Effect::Delay, L"Delay"},
};

bool HandsOutObjects(Operation operation) noexcept {
    switch (operation) {
    case Operation::SetContextValue:
    case Operation::SetBlanket:
    case Operation::Get:
    case Operation::Put:
    case Operation::GetQualifier:
    case Operation::GetCallStatus:
    case Operation::Unsupported:
        return false;
    default:
        return true;
    }
}

/// The class that the target of a provider call is about; empty when it tells none.
std::wstring ClassOfTarget(std::wstring_view target) {
    if (const auto path = ObjectPath::Parse(target)) {
        return path->className;
    }
    if (const auto query = ParseWql(target)) {
        if (query->kind == WqlQuery::Kind::Select) {
            return query->className;
        }
        return !query->resultClass.empty() ? query->resultClass : query->assocClass;
    }
    return {};
}

} // namespace

const wchar_t* EffectName(Effect effect) noexcept {
    const auto* found = std::find_if(kEffects.begin(), kEffects.end(),
                                     [effect](const auto& named) { return named.effect == effect; });
    return found != kEffects.end() ? found->name : L"";
}

std::optional<Effect> EffectByName(std::wstring_view name) noexcept {
    const auto* found = std::find_if(kEffects.begin(), kEffects.end(),
                                     [name](const auto& named) { return SameName(named.name, name); });
    return found != kEffects.end() ? std::optional<Effect>(found->effect) : std::nullopt;
}

bool Applies(Effect effect, Operation operation) noexcept {
    switch (effect) {
    case Effect::Fail:
    case Effect::Delay:
        return true;
    case Effect::FailStatus:
        return operation == Operation::GetObject || operation == Operation::PutInstance ||
               operation == Operation::DeleteInstance || operation == Operation::ExecMethod ||
               operation == Operation::GetCallStatus;
    case Effect::NullObject:
        return HandsOutObjects(operation);
    case Effect::Verdict:
    case Effect::NoOutParameters:
    case Effect::PowerCut:
        return operation == Operation::ExecMethod;
    case Effect::EndOfData:
        return operation == Operation::Next;
    default:
        return operation == Operation::Get || operation == Operation::GetQualifier;
    }
}

void Faults::Add(FaultRule rule) {
    if (rule.nth == 0) {
        throw std::invalid_argument("a fault counts calls from 1");
    }
    const bool fits = rule.operation ? Applies(rule.effect, *rule.operation)
                                     : rule.effect == Effect::Fail || rule.effect == Effect::Delay;
    if (!fits) {
        throw std::invalid_argument("this effect means nothing for this operation");
    }
    const std::lock_guard lock(m_mutex);
    m_rules.push_back({std::move(rule), 0});
    m_armed.store(true, std::memory_order_release);
}

void Faults::Clear() {
    const std::lock_guard lock(m_mutex);
    m_rules.clear();
    m_armed.store(false, std::memory_order_release);
}

std::optional<FaultRule> Faults::Hit(Operation operation, std::wstring_view target, std::wstring_view method,
                                     std::wstring_view className) {
    if (!Armed()) {
        return std::nullopt;
    }
    std::optional<std::wstring> targetClass;
    if (!className.empty()) {
        targetClass = className;
    }
    std::optional<FaultRule> hit;
    unsigned milliseconds = 0;
    const std::lock_guard lock(m_mutex);
    for (auto& [rule, seen] : m_rules) {
        if (rule.operation ? *rule.operation != operation : !IsProviderCall(operation)) {
            continue;
        }
        if (!rule.method.empty() && !SameName(rule.method, method)) {
            continue;
        }
        if (!rule.target.empty() && !SameName(rule.target, target)) {
            if (!targetClass) {
                targetClass = ClassOfTarget(target);
            }
            if (!SameName(rule.target, *targetClass)) {
                continue;
            }
        }
        ++seen;
        if (seen != rule.nth && !(rule.repeat && seen > rule.nth)) {
            continue;
        }
        milliseconds += rule.milliseconds;
        if (!hit || (hit->effect == Effect::Delay && rule.effect != Effect::Delay)) {
            hit = rule;
        }
    }
    if (hit) {
        hit->milliseconds = milliseconds;
        ++m_hits;
    }
    return hit;
}

unsigned Faults::Hits() const {
    const std::lock_guard lock(m_mutex);
    return m_hits;
}

} // namespace quillet::simulator
