// What is known of one thing, for people: a line for each of its properties.
#pragma once

#include "terminal/Terminal.h"

#include <string>
#include <utility>
#include <vector>

namespace quilletctl {

/// Labels and values (UTF-8), the values aligned.
class Sheet {
  public:
    /// Adds a line; an empty value is shown as "-". Characters that would steer the terminal are replaced.
    Sheet& Add(const std::string& label, const std::string& value);
    void Print(const Terminal& terminal) const;

  private:
    std::vector<std::pair<std::string, std::string>> m_lines;
};

} // namespace quilletctl
