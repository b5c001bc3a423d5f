// A provider that refuses.
#pragma once

#include <quillet-simulator/Machine.h>

#include <optional>
#include <string>

namespace quillet::tests {

/// Lets a call of a method of the provider's fail: access is denied.
inline void Refuse(simulator::Machine& machine, const std::wstring& method, unsigned nth = 1) {
    simulator::FaultRule rule;
    rule.method = method;
    rule.nth = nth;
    rule.code = HRESULT(WBEM_E_ACCESS_DENIED);
    machine.Rules().Add(rule);
}

/// The provider refuses its nth call from now, whatever that is.
inline void RefuseCall(simulator::Machine& machine, std::size_t nth) {
    simulator::FaultRule rule;
    rule.operation = std::nullopt; // any
    rule.nth = unsigned(nth);
    rule.code = HRESULT(WBEM_E_ACCESS_DENIED);
    machine.Rules().Add(rule);
}

} // namespace quillet::tests
