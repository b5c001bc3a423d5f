// Answers as a provider that breaks its own schema would give them.
#pragma once

#include <quillet-simulator/Faults.h>

namespace quillet::simulator {

/// Fills a VARIANT with a value of a CIM type and the damage that a rule asks for; effects that are no damage
/// leave the value right.
HRESULT ToDamagedVariant(const Value& value, CIMTYPE type, const FaultRule& rule, VARIANT* variant);

} // namespace quillet::simulator
