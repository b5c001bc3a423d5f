// Environment variables of this process.
#pragma once

namespace quillet::tests {

/// Sets a variable; an empty value removes it.
void SetEnvironment(const char* name, const char* value);

} // namespace quillet::tests
