// Teams as people and programs read them, and modes as people type them.
#pragma once

#include "texts/InWords.h"

#include <quillet/client/Team.h>

#include <string>
#include <vector>

namespace quilletctl {

/// What is proposed for a mode; its name does as well.
const std::vector<std::string>& TeamModeNumbers();
/// The mode that a word of the command line names, by its number or its text, which may have "team" behind
/// it, as in the provider's own descriptions. Throws UsageError.
quillet::TeamMode TeamModeFrom(const std::string& word);

/// What every answer about a team begins with.
Json AsJson(const quillet::Team& team);

} // namespace quilletctl
