// The same object under other counts: one count that many threads change is what they would wait for.
#pragma once

#include <quillet-wmi/ReadMostlyMutex.h>

#include <array>
#include <atomic>
#include <memory>
#include <utility>

namespace quillet::wmi {

/// The same object with a count of its own, for somebody who lets others hold it, too.
template <class T>
std::shared_ptr<T> CountedAlone(std::shared_ptr<T> shared) {
    // Apart from what else is in memory: two counts in one line of a cache are as bad as one.
    struct alignas(64) Holder {
        std::shared_ptr<T> held;
    };
    T* const same = shared.get();
    return same != nullptr
               ? std::shared_ptr<T>(std::make_shared<const Holder>(Holder{std::move(shared)}), same)
               : nullptr;
}

/// An object that is handed out to all threads, to each with the count of its part.
template <class T>
class CountedByThreads {
  public:
    /// @param shared not null
    explicit CountedByThreads(std::shared_ptr<T> shared) : m_shared(std::move(shared)) {}
    CountedByThreads(const CountedByThreads&) = delete;
    CountedByThreads& operator=(const CountedByThreads&) = delete;
    ~CountedByThreads() { delete m_parts.load(std::memory_order_relaxed); }

    /// As it was given, with the count that it had.
    const std::shared_ptr<T>& Shared() const noexcept { return m_shared; }
    /// For the calling thread.
    std::shared_ptr<T> Taken() const { return Own()[OwnPart::Index()]; }

  private:
    using Parts = std::array<std::shared_ptr<T>, OwnPart::kCount>;

    /// Made when somebody asks first: most are never handed out.
    const Parts& Own() const {
        if (const Parts* made = m_parts.load(std::memory_order_acquire)) {
            return *made;
        }
        auto making = std::make_unique<Parts>();
        for (std::shared_ptr<T>& part : *making) {
            part = CountedAlone(m_shared);
        }
        const Parts* present = nullptr;
        if (m_parts.compare_exchange_strong(present, making.get(), std::memory_order_acq_rel)) {
            return *making.release();
        }
        return *present; // another thread was faster
    }

    const std::shared_ptr<T> m_shared;
    mutable std::atomic<const Parts*> m_parts{nullptr};
};

} // namespace quillet::wmi
