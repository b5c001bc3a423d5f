// The program's command line.
#pragma once

#include "model/Strings.h"

#include <optional>
#include <string>
#include <vector>

namespace quillet::pages {

/// What the command line asks for.
struct Options {
    bool simulate = false;     ///< a simulated machine in the place of this one
    std::string machineFile{}; ///< its machine file; empty: the built-in machine
    std::string stateFile{};   ///< where it is kept from one run to the next; empty: nowhere
    std::string host{};        ///< another machine
    std::string adapter{};     ///< the sheet of one adapter, and nothing else
    std::optional<Language> language{};
    std::string help{}; ///< what is to be told instead; empty: nothing
};

/// Reads a command line, as UTF-8 and without the program. Throws std::runtime_error with what is wrong with
/// it.
Options ReadOptions(std::vector<std::string> arguments);

} // namespace quillet::pages
