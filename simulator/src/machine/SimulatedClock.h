// A clock that stands still until it is told otherwise.
#pragma once

#include <quillet-wmi/ReadMostlyMutex.h>

#include <chrono>
#include <cstdint>
#include <mutex>

namespace quillet::simulator {

/// Safe for many threads.
class SimulatedClock {
  public:
    std::chrono::milliseconds Now() const;
    void Advance(std::chrono::milliseconds time);
    void FollowRealTime(bool follow);
    /// Lets the time pass that something takes on the machine; real time only when the clock follows it.
    void Pass(std::chrono::milliseconds time);
    /// Lets real time pass, and simulated time with it.
    void Sleep(std::chrono::milliseconds time);
    /// Sleeps off what is owed (milliseconds), for no longer than a timeout (WBEM_INFINITE, or milliseconds);
    /// false when that was not enough.
    bool SleepWithin(std::int32_t timeout, unsigned& owed);

  private:
    std::chrono::milliseconds Read() const;

    mutable wmi::ReadMostlyMutex m_mutex; ///< the clock is read far more often than set
    std::chrono::milliseconds m_elapsed{0};
    bool m_follows = false;
    std::chrono::steady_clock::time_point m_since;
};

} // namespace quillet::simulator
