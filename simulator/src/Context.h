// IWbemContext: the named values that travel with a call.
#pragma once

#include "ComObject.h"

#include <quillet-simulator/Machine.h>

namespace quillet::simulator {

/// The values of any context, by name; none for a null one.
std::vector<NamedValue> ContextValues(IWbemContext* context);

/// A new, empty context whose calls the machine's journal and faults see.
IWbemContext* MakeContext(std::shared_ptr<Machine> machine);

} // namespace quillet::simulator
