// Waiting for somebody's yes, for so long and no longer.
#pragma once

#include "app/Invocation.h"

#include <chrono>

namespace quilletctl {

/// Asks whether what was changed is to stay, and waits for a line with "y" or "yes": at the terminal, else on
/// standard input. No line in time, any other one, and a request to end all mean no: whoever changed the link
/// that they came by cannot answer any more.
bool IsConfirmed(Invocation& run, std::chrono::seconds patience);

} // namespace quilletctl
