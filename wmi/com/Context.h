// IWbemContext: the named values that travel with a call.
#pragma once

#include "com/ComObject.h"

#include <quillet-wmi/Connection.h>

namespace quillet::wmi {

/// The values of any context, by name; none for a null one.
std::vector<NamedValue> ContextValues(IWbemContext* context);

/// A new, empty context whose calls the host's observer sees.
IWbemContext* MakeContext(std::shared_ptr<Host> host);

} // namespace quillet::wmi
