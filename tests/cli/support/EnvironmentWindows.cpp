// Environment variables on Windows, where the C library keeps its own copy.
#include "support/Environment.h"

#include <stdlib.h>

namespace quillet::tests {

void SetEnvironment(const char* name, const char* value) {
    _putenv_s(name, value);
}

} // namespace quillet::tests
