// The load routine on Windows. A static library must not bring a DllMain into its client's program, so this
// is an initialiser, which the C++ run-time library runs on process attach for a DLL and before main for a
// program. LumTrace() is here so that no client can use the log without linking the load routine.
#include "TraceAtLoad.h"

CLumDebug& LumTrace() {
    static CLumDebug trace;
    return trace;
}

namespace {

struct LoadRoutine {
    LoadRoutine() noexcept {
        try {
            ConfigureTraceAtLoad(HostExecutablePath());
        } catch (...) {
            // An exception would end the process that loads the library, for the sake of a log.
        }
    }
} const kLoadRoutine;

} // namespace
