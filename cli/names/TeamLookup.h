// The machine's teams, and finding the one that the command line names.
#pragma once

#include "names/NameLookup.h"

#include <quillet/Quillet.h>

#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// All teams, in the provider's order. Throws Refusal.
CTeams ReadTeams(CQuillet& session);

/// The team that a text names: by object path, object ID, or display name. A path of a team that is not among
/// the machine's is taken as it is. Throws UsageError where nothing, or more than one team, is named, and
/// Refusal.
CTeam FindTeam(CQuillet& session, const std::string& text);

/// The teams as things with names.
std::vector<Named> NamesOf(const CTeams& teams);
/// The team of an object path; nothing where the text is no path of a team. Throws Refusal.
std::optional<CTeam> TeamAtPath(CQuillet& session, const CTeams& teams, const std::string& path);

/// What messages call a team (UTF-8): its display name, or what there is of one.
std::string Called(const CTeam& team);

} // namespace quilletctl
