// Keeping threads.
#include "server/Workers.h"

#include <utility>

namespace quillet::wsman {

Workers::~Workers() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads) {
        thread.join();
    }
}

void Workers::Run(std::function<void()> task) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_tasks.size() >= m_idle) { // those that are idle have each a task to take already
            m_threads.emplace_back([this] { Work(); });
            ++m_idle;
        }
        m_tasks.push_back(std::move(task));
    }
    m_changed.notify_one();
}

void Workers::Work() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isStopping || !m_tasks.empty(); });
        if (m_tasks.empty()) {
            return;
        }
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        --m_idle;
        lock.unlock();
        task();
        lock.lock();
        ++m_idle;
    }
}

} // namespace quillet::wsman
