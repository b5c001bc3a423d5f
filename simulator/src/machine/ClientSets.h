// The client sets of a machine: which are open, and what follow-up their changes ask for.
#pragma once

#include <windows.h>

#include <map>
#include <mutex>

namespace quillet::simulator {

/// Several sets may be open at once, one for each client. Safe for many threads.
class ClientSets {
  public:
    /// Opens a set under a handle that was never used before.
    LONG Open();
    bool IsOpen(LONG handle) const;
    /// The set opened last of those that are open; 0 when none is.
    LONG Last() const;
    /// Adds the follow-up of a change: to its set, or to whichever closes next when it belongs to none.
    void Require(LONG handle, LONG action);
    /// Closes a set (a handle that is not open closes none) and takes the follow-up that is due.
    LONG Close(LONG handle);

  private:
    mutable std::mutex m_mutex;
    std::map<LONG, LONG> m_open; ///< handle and follow-up
    LONG m_next = 1;
    LONG m_pending = 0;
};

} // namespace quillet::simulator
