// The end of a command that changed a team.
#pragma once

#include "app/Invocation.h"
#include "changes/Verification.h"
#include "texts/Field.h"

#include <quillet/client/Session.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// Name and mode of a team, to be compared.
std::vector<Field> FieldsOf(const quillet::Team& team);
/// The team as it is now. Throws Refusal.
quillet::Team ReadTeam(quillet::Session& session, const quillet::Team& team);

/// Tells what became of a change; `more` stands behind what the answer of every such command holds. Throws
/// NotTaken or Refusal.
/// @param asked completes "could not …"; `done` says what was done where it took
ExitStatus EndTeamChange(Invocation& run, const quillet::Team& team, const std::string& asked,
                         const std::string& done, std::optional<bool> restartNeeded,
                         const Verification& taken, const Json& more = Json::object());

} // namespace quilletctl
