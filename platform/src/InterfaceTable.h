// The process's Global Interface Table.
#pragma once

#include <objbase.h>

namespace quillet::platform {

/// The one table; it lives as long as the process.
IGlobalInterfaceTable* InterfaceTable() noexcept;

} // namespace quillet::platform
