// Reads packed machines.
#pragma once

#include <quillet-wmi/Mof.h>

namespace quillet::simulator {

/// Tells a target what a compiler told the writer. Throws std::runtime_error for bytes that no writer wrote,
/// as far as they do not mean something else, and for what the target does not take.
void ReadPacked(wmi::MofTarget& target, std::string_view bytes);

} // namespace quillet::simulator
