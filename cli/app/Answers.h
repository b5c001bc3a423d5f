// How a command answers that only tells one thing: for programs as JSON, for people as a sheet. Lists are in
// List.h.
#pragma once

#include "app/Invocation.h"
#include "terminal/Sheet.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

ExitStatus AnswerSheet(Invocation& run, const Json& answer, const Sheet& sheet);

} // namespace quilletctl
