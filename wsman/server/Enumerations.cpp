// Keeping enumerations.
#include "server/Enumerations.h"

#include "soap/Envelope.h"

namespace quillet::wsman {

std::string Enumerations::Keep(const std::string& user, Enumeration enumeration) {
    const std::lock_guard lock(m_mutex);
    ForgetIdle();
    if (m_kept.size() >= m_most) {
        return {};
    }
    std::string id = NewMessageId();
    m_kept.insert_or_assign(id,
                            Kept{user, Clock::now(), std::make_unique<Enumeration>(std::move(enumeration))});
    return id;
}

void Enumerations::PutBack(const std::string& user, const std::string& id,
                           std::unique_ptr<Enumeration> enumeration) {
    const std::lock_guard lock(m_mutex);
    m_kept.insert_or_assign(id, Kept{user, Clock::now(), std::move(enumeration)});
}

std::unique_ptr<Enumeration> Enumerations::Take(const std::string& user, const std::string& id,
                                                const std::string& resource) {
    const std::lock_guard lock(m_mutex);
    ForgetIdle();
    const auto found = m_kept.find(id);
    if (found == m_kept.end() || found->second.user != user ||
        (!resource.empty() && found->second.enumeration->resource != resource)) {
        return nullptr;
    }
    std::unique_ptr<Enumeration> taken = std::move(found->second.enumeration);
    m_kept.erase(found);
    return taken;
}

void Enumerations::ForgetIdle() {
    const Clock::time_point now = Clock::now();
    std::erase_if(m_kept, [&](const auto& each) { return now - each.second.since > m_idle; });
}

} // namespace quillet::wsman
