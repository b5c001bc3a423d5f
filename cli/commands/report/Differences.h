// Settings that are not as they were delivered.
#pragma once

#include "commands/report/MachineFacts.h"

#include <string>
#include <vector>

namespace quilletctl {

/// Texts are UTF-8.
struct Difference {
    std::string owner;
    std::string setting;
    std::string value;
    std::string standard;
};

/// Those of adapters, teams and boot agents, in their order.
std::vector<Difference> DifferencesFromDefaults(const MachineFacts& facts);

} // namespace quilletctl
