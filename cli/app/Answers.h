// How a command answers that only tells something: for programs as JSON, for people as a table or a sheet.
#pragma once

#include "app/Invocation.h"
#include "terminal/Sheet.h"
#include "terminal/Table.h"

#include <nlohmann/json.hpp>

namespace quilletctl {

/// A list. @param none what people are told when it is empty
ExitStatus AnswerList(Invocation& run, const Json& answer, const Table& table, const char* none);
/// One thing.
ExitStatus AnswerSheet(Invocation& run, const Json& answer, const Sheet& sheet);

} // namespace quilletctl
