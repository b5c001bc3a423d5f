// The client sets of a machine.
#include "machine/ClientSets.h"

#include <algorithm>

namespace quillet::simulator {

LONG ClientSets::Open() {
    const std::lock_guard lock(m_mutex);
    const LONG handle = m_next++;
    m_open.emplace(handle, 0);
    return handle;
}

bool ClientSets::IsOpen(LONG handle) const {
    const std::lock_guard lock(m_mutex);
    return m_open.count(handle) != 0;
}

LONG ClientSets::Last() const {
    const std::lock_guard lock(m_mutex);
    return m_open.empty() ? 0 : m_open.rbegin()->first;
}

void ClientSets::Require(LONG handle, LONG action) {
    const std::lock_guard lock(m_mutex);
    const auto set = m_open.find(handle);
    LONG& due = set != m_open.end() ? set->second : m_pending;
    due = std::max(due, action);
}

LONG ClientSets::Close(LONG handle) {
    const std::lock_guard lock(m_mutex);
    LONG due = m_pending;
    m_pending = 0;
    if (const auto set = m_open.find(handle); set != m_open.end()) {
        due = std::max(due, set->second);
        m_open.erase(set);
    }
    return due;
}

} // namespace quillet::simulator
