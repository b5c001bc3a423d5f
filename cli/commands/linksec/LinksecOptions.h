// Options of the commands that change link security.
#pragma once

#include "app/Syntax.h"

#include <quillet/client/LinkSecurity.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace quilletctl {

// Numbers whose range only the provider knows.
inline constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

/// "--reload".
class ReloadOption {
  public:
    void Declare(Syntax& syntax);
    quillet::Reload Chosen() const noexcept {
        return m_isGiven ? quillet::Reload::Driver : quillet::Reload::No;
    }

  private:
    bool m_isGiven = false;
};

// Take over what the command line gave; what it did not stays as it is.
void Take(const std::optional<LONG>& given, std::int32_t& member);
void Take(const std::optional<std::string>& given, std::wstring& member);
/// @param given "on", "off", or nothing
void Take(const std::string& given, bool& member);

} // namespace quilletctl
