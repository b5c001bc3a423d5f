// Evaluating the conditions of a query; the repository lends it its knowledge of object identity.
#pragma once

#include <quillet-wmi/Wql.h>

#include <functional>

namespace quillet::simulator {

/// A text that is the same for all paths of one object.
using ObjectIdentity = std::function<std::wstring(std::wstring_view path)>;

bool Matches(const WqlCondition& condition, const Instance& instance, const ObjectIdentity& identity);

/// Whether a text fits a LIKE pattern (%, _, [a-f], [^a-f]), without regard to case.
bool MatchesPattern(std::wstring_view text, std::wstring_view pattern) noexcept;

/// Under what a value of an indexable type is found in an index. Nothing for null and for types where equal
/// values have several forms that a key does not bring together.
std::optional<std::wstring> IndexKey(const Value& value, CIMTYPE type, const ObjectIdentity& identity);
/// The keys under which values equal to a condition's literal are found; nothing when the comparison must
/// look at the values themselves.
std::optional<std::vector<std::wstring>> IndexKeys(const WqlCondition& condition, CIMTYPE type,
                                                   const ObjectIdentity& identity);

} // namespace quillet::simulator
