// Teams in words, and in the order that helps to choose.
#pragma once

#include "model/Words.h"

namespace quillet::pages {

/// What a team mode does, and what it asks of the switch.
std::wstring AboutMode(TeamMode mode);
/// Modes without repetitions, those first that suit most: traffic is shared, and the switch need not help.
std::vector<TeamMode> BestFirst(const std::vector<OfferedTeamMode>& offered);
/// Without those bits.
Flags<TeamProblem> Without(Flags<TeamProblem> problems, std::initializer_list<TeamProblem> others);
/// Problems as sentences, a line each.
std::wstring TextsOf(Flags<TeamProblem> problems);

} // namespace quillet::pages
