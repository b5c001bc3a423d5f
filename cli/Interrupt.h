// Ctrl-C as a request, for work that must be brought to an end in an orderly way. One implementation file per
// host.
#pragma once

#include <memory>

namespace quilletctl {

/// While it lives, Ctrl-C (and a request to terminate, where the host has one) does not end the process but
/// is remembered. One at a time.
class Interrupt {
  public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    bool Requested() const noexcept;

  private:
    struct Before;
    std::unique_ptr<Before> m_before;
};

} // namespace quilletctl
