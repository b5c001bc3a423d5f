// What stands in the way of a change to a team.
#pragma once

#include "app/Invocation.h"

#include <quillet/client/Team.h>

namespace quilletctl {

/// What the library's and the provider's checks found, each as a sentence.
class TeamProblems {
  public:
    void Add(quillet::Flags<quillet::TeamProblem> problems) noexcept { m_problems |= problems; }
    bool Any() const noexcept { return m_problems.Any(); }
    /// Answers with the problems instead of the command's own answer.
    ExitStatus Report(Invocation& run) const;

  private:
    quillet::Flags<quillet::TeamProblem> m_problems;
};

} // namespace quilletctl
