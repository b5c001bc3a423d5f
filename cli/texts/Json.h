// JSON as every answer has it.
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace quilletctl {

/// Keys stay in the order in which a command names them.
using Json = nlohmann::ordered_json;

} // namespace quilletctl
