// The schema and the machines that ship with the simulator, packed and compiled in: a program needs no files.
#pragma once

#include <string_view>

namespace quillet::simulator {

/// What the machines stand on.
std::string_view PackedSchema() noexcept;
/// A machine with nothing but the network service.
std::string_view PackedEmptyMachine() noexcept;
/// The machine that ships with the simulator.
std::string_view PackedBuiltInMachine() noexcept;

} // namespace quillet::simulator
