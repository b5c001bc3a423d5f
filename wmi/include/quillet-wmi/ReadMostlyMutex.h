// A lock for what is read by every call and written by few, and the division of shared state by threads.
#pragma once

#include <quillet-wmi/SharedMutex.h>

#include <array>
#include <atomic>
#include <cstddef>

namespace quillet::wmi {

/// Which part of something that is divided among the threads is the calling thread's. Two threads may have
/// the same.
struct OwnPart {
    static constexpr std::size_t kCount = 16; ///< how many parts there are
    /// The part of the calling thread, below kCount.
    static std::size_t Index() noexcept {
        static std::atomic<std::size_t> threads{0};
        thread_local const std::size_t kOwn = threads.fetch_add(1, std::memory_order_relaxed) % kCount;
        return kOwn;
    }
};

/// A thread reads under a lock of its own, and whoever writes takes the locks of all: threads that only read
/// do not even share the word in which a single lock would count them. To be used with std::shared_lock and
/// std::unique_lock, and released by the thread that took it.
class ReadMostlyMutex {
  public:
    ReadMostlyMutex() = default;
    ReadMostlyMutex(const ReadMostlyMutex&) = delete;
    ReadMostlyMutex& operator=(const ReadMostlyMutex&) = delete;

    /// Waits until nobody reads or writes, and keeps others out.
    void lock() {
        for (Part& part : m_parts) {
            part.mutex.lock();
        }
    }
    /// Ends what lock() began.
    void unlock() {
        for (Part& part : m_parts) {
            part.mutex.unlock();
        }
    }
    /// Waits until nobody writes, and keeps writers out.
    void lock_shared() { m_parts[OwnPart::Index()].mutex.lock_shared(); }
    /// Ends what lock_shared() began.
    void unlock_shared() { m_parts[OwnPart::Index()].mutex.unlock_shared(); }

  private:
    struct alignas(64) Part {
        SharedMutex mutex;
    };
    std::array<Part, OwnPart::kCount> m_parts;
};

} // namespace quillet::wmi
