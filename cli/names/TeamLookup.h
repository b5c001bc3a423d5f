// The machine's teams, and finding the one that the command line names.
#pragma once

#include "names/NameLookup.h"

#include <quillet/client/Session.h>

#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// All teams, in the provider's order. Throws Refusal.
std::vector<quillet::Team> ReadTeams(quillet::Session& session);

/// The team that a text names: by object path, object ID, or display name. A path of a team that is not among
/// the machine's is taken as it is. Throws UsageError where nothing, or more than one team, is named, and
/// Refusal.
quillet::Team FindTeam(quillet::Session& session, const std::string& text);

/// The teams as things with names.
std::vector<Named> NamesOf(const std::vector<quillet::Team>& teams);
/// The team of an object path; nothing where the text is no path of a team. Throws Refusal.
std::optional<quillet::Team> TeamAtPath(quillet::Session& session, const std::vector<quillet::Team>& teams,
                                        const std::string& path);

/// What messages call a team (UTF-8): its display name, or what there is of one.
std::string Called(const quillet::Team& team);

} // namespace quilletctl
