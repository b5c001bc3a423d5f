// What stands in the way of a change to a team.
#pragma once

#include "app/Invocation.h"

#include <windows.h>

#include <string>

namespace quilletctl {

/// Throws Refusal unless the provider answered; its refusal may also be a number of its own, which is no
/// failure code.
void ThrowUnlessAnswered(HRESULT result, const std::string& asked);

/// What the library's and the provider's checks found, each as a sentence.
class TeamProblems {
  public:
    void Add(ULONGLONG mask) noexcept { m_mask |= mask; }
    bool Any() const noexcept { return m_mask != 0; }
    /// Answers with the problems instead of the command's own answer.
    ExitStatus Report(Invocation& run) const;

  private:
    ULONGLONG m_mask = 0;
};

} // namespace quilletctl
