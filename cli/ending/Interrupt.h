// Ctrl-C and other requests to end, for work that must be brought to an end in an orderly way. One
// implementation file per host.
#pragma once

#include <memory>

namespace quilletctl {

/// While it lives, a request to end (Ctrl-C, a request to terminate, a terminal that goes away) ends the
/// process at once, saying that nothing was changed; from Hold() on it is only remembered. One at a time.
class Interrupt {
  public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// @param notice told on standard error when a request comes, a whole line; it must outlive this. Null:
    /// none.
    void Hold(const char* notice) noexcept;
    bool Requested() const noexcept;

  private:
    struct Before;
    std::unique_ptr<Before> m_before;
};

/// What is told where a request ends the process at once.
inline constexpr const char kNothingChanged[] = "quilletctl: interrupted; nothing was changed\n";

} // namespace quilletctl
