// Teams as people and programs read them, and modes as people type them.
#pragma once

#include "texts/Json.h"

#include <quillet/Quillet.h>

#include <string>
#include <vector>

namespace quilletctl {

/// A number of the provider's in words, or as itself where it has none.
std::string NumberInWords(LONG number, const std::wstring& text);
std::string TeamModeText(LONG mode);
std::string MemberRoleText(LONG role);
std::string MemberStatusText(LONG status);

/// What is proposed for a mode; its name does as well.
const std::vector<std::string>& TeamModeNumbers();
/// The mode that a word of the command line names, by its number or its text, which may have "team" behind
/// it, as in the provider's own descriptions. Throws UsageError.
CTeam::TeamMode TeamModeFrom(const std::string& word);

/// What every answer about a team begins with.
Json AsJson(const CTeam& team);

} // namespace quilletctl
