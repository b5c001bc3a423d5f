// Environment variables on a POSIX host.
#include "support/Environment.h"

#include <stdlib.h>

namespace quillet::tests {

void SetEnvironment(const char* name, const char* value) {
    if (*value == '\0') {
        unsetenv(name);
    } else {
        setenv(name, value, 1);
    }
}

} // namespace quillet::tests
