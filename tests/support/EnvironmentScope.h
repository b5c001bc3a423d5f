// One environment variable for the length of one test.
#pragma once

#include <optional>
#include <string>

namespace quillet::tests {

class EnvironmentScope {
  public:
    /// Sets the variable of this process, or takes it away.
    EnvironmentScope(std::wstring name, const std::optional<std::wstring>& value);
    ~EnvironmentScope();
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

  private:
    std::wstring m_name;
    std::optional<std::wstring> m_before;
};

} // namespace quillet::tests
