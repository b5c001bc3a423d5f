// What the variant functions need to know of arrays and of VARIANT types.
#pragma once

#include <windows.h>

namespace quillet::platform {

/// Bytes of one value of a VARIANT type without flags; 0 for a type that no array and no variant can hold.
ULONG ElementSize(VARTYPE type) noexcept;

} // namespace quillet::platform
