// Options of the commands that change link security.
#pragma once

#include "app/Syntax.h"

#include <windows.h>

#include <limits>
#include <optional>
#include <string>

namespace quilletctl {

// Numbers whose range only the provider knows.
inline constexpr LONG kLeast = std::numeric_limits<LONG>::min();
inline constexpr LONG kGreatest = std::numeric_limits<LONG>::max();

/// "--reload".
void DeclareReload(Syntax& syntax, bool& reload);

// Take over what the command line gave; what it did not stays as it is.
void Take(const std::optional<LONG>& given, LONG& member);
void Take(const std::optional<std::string>& given, std::wstring& member);
/// @param given "on", "off", or nothing
void Take(const std::string& given, bool& member);

} // namespace quilletctl
