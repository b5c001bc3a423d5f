// A lock for many readers or one writer.
#pragma once

#include <windows.h>

#include <shared_mutex>

namespace quillet::wmi {

/// To be used with std::shared_lock and std::unique_lock. It is the system's: std::shared_mutex is made of
/// semaphores where mingw-w64 compiles it, and never gives them back.
class SharedMutex {
  public:
    SharedMutex() = default;
    SharedMutex(const SharedMutex&) = delete;
    SharedMutex& operator=(const SharedMutex&) = delete;

    /// Waits until nobody reads or writes, and keeps others out.
    void lock() noexcept { AcquireSRWLockExclusive(&m_lock); }
    /// Ends what lock() began.
    void unlock() noexcept { ReleaseSRWLockExclusive(&m_lock); }
    /// Waits until nobody writes, and keeps writers out.
    void lock_shared() noexcept { AcquireSRWLockShared(&m_lock); }
    /// Ends what lock_shared() began.
    void unlock_shared() noexcept { ReleaseSRWLockShared(&m_lock); }

  private:
    SRWLOCK m_lock = SRWLOCK_INIT;
};

} // namespace quillet::wmi
