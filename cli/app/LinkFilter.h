// Choosing by the link.
#pragma once

#include "app/Syntax.h"

#include <optional>
#include <string>

namespace quilletctl {

/// --up and --down of a list.
class LinkFilter {
  public:
    /// @param things what the list shows: "adapters"
    void Declare(Syntax& syntax, const std::string& things);
    /// Throws UsageError where both are wanted.
    void Check() const;
    /// Whether a link has to be known at all.
    bool IsWanted() const noexcept { return m_isUp || m_isDown; }
    /// Whether something with such a link is wanted. What does not tell is neither up nor down.
    bool Takes(std::optional<bool> isUp) const noexcept { return !IsWanted() || isUp == m_isUp; }

  private:
    bool m_isUp = false;
    bool m_isDown = false;
};

} // namespace quilletctl
