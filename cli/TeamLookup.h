// The machine's teams, and finding the one that the command line names.
#pragma once

#include <quillet/Quillet.h>

#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// All teams, in the provider's order. Throws Refusal.
CTeams ReadTeams(CQuillet& session);

/// The team that a text names: by object path, object ID (with or without its braces), or display name; case
/// does not count. A path of a team that is not among the machine's is taken as it is. Throws UsageError
/// where nothing, or more than one team, is named, and Refusal.
CTeam FindTeam(CQuillet& session, const std::string& text);
/// The same, but nothing where no team is named.
std::optional<CTeam> LookForTeam(CQuillet& session, const std::string& text);

/// What messages call a team (UTF-8): its display name, or what there is of one.
std::string Called(const CTeam& team);

} // namespace quilletctl
