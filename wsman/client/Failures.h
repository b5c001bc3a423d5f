// What happened last, for whoever gets a code only.
#pragma once

#include <string>

namespace quillet::wsman {

/// Keeps a text for LastFailure of this thread.
void RememberFailure(std::string text);

} // namespace quillet::wsman
