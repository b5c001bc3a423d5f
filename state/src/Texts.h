// Comparing names and addresses as they stand in documents.
#pragma once

#include <quillet-state/Matching.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillet::state {

/// Whether two names (UTF-8) are the same; case does not count.
bool SameName(std::string_view left, std::string_view right);
bool SameName(std::wstring_view left, std::wstring_view right);
/// Whether a name fits a pattern with `*` and `?`; case does not count.
bool Fits(std::string_view name, std::string_view pattern);
/// "a, b and c".
std::string ListOf(const std::vector<std::string>& texts);

} // namespace quillet::state
