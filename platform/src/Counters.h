// How many objects of each counted kind are alive in the process.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace quillet::platform {

/// A number that every thread changes all the time and that is read seldom. Each thread changes a part of its
/// own: a single number would travel between the cores with every BSTR.
class Counter {
  public:
    void Add(long difference) noexcept {
        m_parts[OwnPart()].value.fetch_add(difference, std::memory_order_relaxed);
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
    static constexpr std::size_t kParts = 16;

    static std::size_t OwnPart() noexcept {
        static std::atomic<std::size_t> threads{0};
        thread_local const std::size_t kOwn = threads.fetch_add(1, std::memory_order_relaxed) % kParts;
        return kOwn;
    }

    std::array<Part, kParts> m_parts;
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
