// "--wait": until what a change took down is up again.
#pragma once

#include "app/Invocation.h"
#include "app/Syntax.h"

#include <quillet/client/Session.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// Something that can be up or down.
struct Watched {
    std::string what; ///< completes "could not see …": "the link of A up"
    /// One that cannot be read is not up; may throw quillet::Error.
    std::function<bool(quillet::Session&)> isUp;
};

/// The link of an adapter.
Watched LinkOf(const quillet::AdapterId& adapter, const std::string& called);
/// The logical adapter of a team or a VLAN.
Watched StatusOf(const quillet::TeamId& team, const std::string& called);
Watched StatusOf(const quillet::VlanId& vlan, const std::string& called);

class WaitOption {
  public:
    void Declare(Syntax& syntax);
    /// Before the change: those that are up. What is down already, such as a port without a cable, would not
    /// come up either. Asks nobody without the option.
    std::vector<Watched> Up(quillet::Session& session, const std::vector<Watched>& all) const;
    /// Once the client set is closed: returns when all are up, when the time is over, which is told after the
    /// answer as a failure, or when the command is interrupted. At once without the option.
    void Until(Invocation& run, const std::vector<Watched>& all) const;

  private:
    void TellDown(Invocation& run, const std::vector<Watched>& all, const std::vector<int>& looks) const;

    std::optional<LONG> m_seconds;
};

} // namespace quilletctl
