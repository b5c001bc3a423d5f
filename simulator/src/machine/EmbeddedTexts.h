// The schema and machine files that ship with the simulator, compiled in so that a program needs no files.
#pragma once

#include <span>
#include <string_view>

namespace quillet::simulator {

struct EmbeddedText {
    const char* fileName;
    std::string_view text;
};

/// The schema in the order in which its files compile.
std::span<const EmbeddedText> EmbeddedSchema() noexcept;
/// A machine with nothing but the network service.
const EmbeddedText& EmbeddedEmptyMachine() noexcept;
/// The machine that ships with the simulator.
const EmbeddedText& EmbeddedBuiltInMachine() noexcept;

} // namespace quillet::simulator
