// The load routine on POSIX hosts: the dynamic loader, or the start of the program, runs a constructor
// function. LumTrace() is here so that no client can use the log without linking the load routine.
#include "TraceAtLoad.h"

CLumDebug& LumTrace() {
    static CLumDebug trace;
    return trace;
}

namespace {

[[gnu::constructor]] void LoadRoutine() noexcept {
    try {
        ConfigureTraceAtLoad(HostExecutablePath());
    } catch (...) {
        // An exception would end the process that loads the library, for the sake of a log.
    }
}

} // namespace
