// A mutex for what takes a moment.
#pragma once

#include <mutex>

namespace quillet::simulator {

/// Who meets it held tries again for a while before it sleeps: it is free again sooner than a sleeping thread
/// is awake.
class BriefMutex {
  public:
    void lock() {
        constexpr int kAttempts = 500; // some microseconds
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            if (m_mutex.try_lock()) {
                return;
            }
        }
        m_mutex.lock();
    }
    void unlock() { m_mutex.unlock(); }

  private:
    std::mutex m_mutex;
};

} // namespace quillet::simulator
