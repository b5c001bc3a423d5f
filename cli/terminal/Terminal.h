// Where a command writes, what the reader at the other end can take, and where answers come from.
#pragma once

#include <cstddef>
#include <istream>
#include <ostream>

namespace quilletctl {

/// The streams (UTF-8, lines end with a line feed alone) and their properties.
struct Terminal {
    std::ostream& out;
    std::ostream& err;
    bool outIsTerminal = false; ///< a person reads the output, not a file or a program
    bool errIsTerminal = false;
    bool outColour = false; ///< escape sequences are understood, and wanted
    bool errColour = false;
    std::size_t width = 80;      ///< columns, where the output is a terminal
    std::istream* in = nullptr;  ///< where a person answers; null when nobody does
    bool errIsForEngine = false; ///< errors are JSON objects, one a line
};

} // namespace quilletctl
