// How many objects of each counted kind are alive in the process.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace quillet::platform {

/// Which part of something that is divided among the threads is the calling thread's. Two threads may have
/// the same. The simulated WMI has the same for itself: on Windows there is nothing of ours below it.
struct OwnPart {
    static constexpr std::size_t kCount = 16;
    static std::size_t Index() noexcept {
        static std::atomic<std::size_t> threads{0};
        thread_local const std::size_t kOwn = threads.fetch_add(1, std::memory_order_relaxed) % kCount;
        return kOwn;
    }
};

/// A number that every thread changes all the time and that is read seldom. Each thread changes a part of its
/// own: a single number would travel between the cores with every BSTR.
class Counter {
  public:
    void Add(long difference) noexcept {
        m_parts[OwnPart::Index()].value.fetch_add(difference, std::memory_order_relaxed);
    }
    long Value() const noexcept {
        long sum = 0;
        for (const Part& part : m_parts) {
            sum += part.value.load(std::memory_order_relaxed);
        }
        return sum;
    }

  private:
    /// As long as what a core holds in one piece.
    struct alignas(64) Part {
        std::atomic<long> value{0};
    };
    std::array<Part, OwnPart::kCount> m_parts;
};

struct Counters {
    Counter bstrs;
    Counter safeArrays;
    Counter interfaceTableEntries;
    Counter registryKeys;
    Counter tokens;
};
inline Counters g_counters;

} // namespace quillet::platform
