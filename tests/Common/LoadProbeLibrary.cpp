// A shared library that traces nothing when it is loaded: only its load routine is asked about.
#include "LumDebug.h"

int ProbeLevel() {
    return LumTrace().IsConfigured() ? static_cast<int>(LumTrace().GetCurrentLogLevel()) : 0;
}
