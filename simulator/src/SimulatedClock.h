// A clock that stands still until it is told otherwise.
#pragma once

#include <chrono>
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

  private:
    std::chrono::milliseconds Read() const;

    mutable std::mutex m_mutex;
    std::chrono::milliseconds m_elapsed{0};
    bool m_follows = false;
    std::chrono::steady_clock::time_point m_since;
};

} // namespace quillet::simulator
