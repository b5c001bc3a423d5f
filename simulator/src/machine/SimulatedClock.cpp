// A clock that stands still until it is told otherwise.
#include "machine/SimulatedClock.h"

#include <mutex>
#include <shared_mutex>
#include <thread>

namespace quillet::simulator {

std::chrono::milliseconds SimulatedClock::Read() const {
    if (!m_follows) {
        return m_elapsed;
    }
    const auto real = std::chrono::steady_clock::now() - m_since;
    return m_elapsed + std::chrono::duration_cast<std::chrono::milliseconds>(real);
}

std::chrono::milliseconds SimulatedClock::Now() const {
    const std::shared_lock lock(m_mutex);
    return Read();
}

void SimulatedClock::Advance(std::chrono::milliseconds time) {
    const std::lock_guard lock(m_mutex);
    m_elapsed += time;
}

void SimulatedClock::FollowRealTime(bool follow) {
    const std::lock_guard lock(m_mutex);
    m_elapsed = Read();
    m_follows = follow;
    m_since = std::chrono::steady_clock::now();
}

void SimulatedClock::Pass(std::chrono::milliseconds time) {
    if (time.count() <= 0) {
        return;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (!m_follows) {
            m_elapsed += time;
            return;
        }
    }
    std::this_thread::sleep_for(time);
}

void SimulatedClock::Sleep(std::chrono::milliseconds time) {
    if (time.count() <= 0) {
        return;
    }
    std::this_thread::sleep_for(time);
    const std::lock_guard lock(m_mutex);
    if (!m_follows) {
        m_elapsed += time;
    }
}

bool SimulatedClock::SleepWithin(std::int32_t timeout, unsigned& owed) {
    const bool late = timeout >= 0 && owed > static_cast<unsigned>(timeout);
    const unsigned wait = late ? static_cast<unsigned>(timeout) : owed;
    owed -= wait;
    Sleep(std::chrono::milliseconds(wait));
    return !late;
}

} // namespace quillet::simulator
