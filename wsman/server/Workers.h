// Threads that are kept for the next task.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace quillet::wsman {

/// Runs each task at once, on a thread that has none or on a new one: a task waits for nobody's. Safe for
/// many threads.
class Workers {
  public:
    Workers() = default;
    /// Waits for all tasks.
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// @param task throws nothing. Throws std::system_error where there is no thread to be had.
    void Run(std::function<void()> task);

  private:
    void Work();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks; ///< that a thread has not begun yet
    std::size_t m_idle = 0;                    ///< threads without a task
    bool m_isStopping = false;
    std::vector<std::thread> m_threads;
};

} // namespace quillet::wsman
