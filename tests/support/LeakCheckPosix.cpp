// What a host with our own platform layer can count: everything that the layer hands out, and open files.
#include "LeakCheck.h"

#include <quillet-platform/TestHooks.h>

#include <filesystem>
#include <iterator>

namespace quillet::tests {

void RegisterHostLeakCounters() {
    RegisterLeakCounter("BSTRs", [] { return platform::Live().bstrs; });
    RegisterLeakCounter("SAFEARRAYs", [] { return platform::Live().safeArrays; });
    RegisterLeakCounter("interface-table entries", [] { return platform::Live().interfaceTableEntries; });
    RegisterLeakCounter("registry keys", [] { return platform::Live().registryKeys; });
    RegisterLeakCounter("token handles", [] { return platform::Live().tokens; });
    RegisterLeakCounter("open files", [] {
        return static_cast<long>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                                               std::filesystem::directory_iterator()));
    });
}

} // namespace quillet::tests
