// Handles of process tokens.
#pragma once

#include <windows.h>

namespace quillet::platform {

/// Closes a token handle; false if it is none.
bool CloseToken(HANDLE handle) noexcept;

} // namespace quillet::platform
