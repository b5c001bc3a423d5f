// Which adapters blink so that a person finds them, and until when.
#pragma once

#include "machine/BriefMutex.h"

#include <quillet-wmi/Model.h>

#include <chrono>
#include <map>
#include <mutex>

namespace quillet::simulator {

/// Safe for many threads.
class BlinkingLights {
  public:
    /// The adapter blinks until this moment; an earlier order is replaced.
    void Start(std::wstring deviceId, std::chrono::milliseconds until) {
        const std::lock_guard lock(m_mutex);
        m_until[std::move(deviceId)] = until;
    }
    /// How much longer it blinks; zero when it does not.
    std::chrono::milliseconds Left(std::wstring_view deviceId, std::chrono::milliseconds now) const {
        const std::lock_guard lock(m_mutex);
        const auto found = m_until.find(deviceId);
        return found != m_until.end() && found->second > now ? found->second - now
                                                             : std::chrono::milliseconds(0);
    }

  private:
    mutable BriefMutex m_mutex;
    std::map<std::wstring, std::chrono::milliseconds, wmi::NameLess> m_until;
};

} // namespace quillet::simulator
