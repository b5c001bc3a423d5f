// The report as one page of HTML.
#pragma once

#include "commands/report/MachineFacts.h"

#include <string>

namespace quilletctl {

/// A whole document (UTF-8) that needs nothing from elsewhere, and no script.
/// @param made when, as it is shown
std::string PageOf(const MachineFacts& facts, const std::string& made);

} // namespace quilletctl
