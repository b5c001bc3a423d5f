// How many objects of each counted kind are alive in the process.
#pragma once

#include <atomic>

namespace quillet::platform {

struct Counters {
    std::atomic<long> bstrs{0};
    std::atomic<long> safeArrays{0};
    std::atomic<long> interfaceTableEntries{0};
    std::atomic<long> registryKeys{0};
    std::atomic<long> tokens{0};
};
inline Counters counters;

} // namespace quillet::platform
