// What only the machine knows: its adapters, teams, VLANs, settings and their values, tests, profiles.
#pragma once

#include "completion/CompletedLine.h"

#include <quillet/client/Session.h>

#include <vector>

namespace quilletctl {

/// The machine's names that may stand at the cursor. Every one is printable and finds its thing again: a name
/// that several have gives way to their object IDs. Throws Refusal and UsageError.
std::vector<Proposal> NamesOfMachine(quillet::Session& session, const CompletedLine& line);

} // namespace quilletctl
