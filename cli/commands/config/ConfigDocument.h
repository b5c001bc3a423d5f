// The document of a command line, and the parts of answers about it.
#pragma once

#include "app/Invocation.h"

#include <quillet-state/State.h>

#include <string>

namespace quilletctl {

/// The document of a file, or of standard input where that is "-". Throws UsageError.
quillet::state::Document ReadConfig(const std::string& file);

/// Compares the machine with a document. Throws Refusal.
quillet::state::Plan PlanOf(Invocation& run, const quillet::state::Document& document);

/// "changes", "problems", "warnings" and "losses".
Json AsJson(const quillet::state::Plan& plan);
/// Each sentence on a line of its own.
/// @param label before each: "warning"; empty: none
void PrintLines(Invocation& run, const std::string& label, const std::vector<std::string>& sentences);
/// The differences, with "-" before what is and "+" before what is wanted.
void PrintDifferences(Invocation& run, const quillet::state::Plan& plan);

} // namespace quilletctl
