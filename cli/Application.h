// quilletctl without its process: arguments in, text and exit status out.
#pragma once

#include "ending/Failure.h"
#include "terminal/Terminal.h"

#include <string>
#include <vector>

namespace quilletctl {

/// Runs one command line (UTF-8, without the program's name). Throws nothing; every failure is one line on
/// the error stream.
ExitStatus RunCommandLine(const std::vector<std::string>& arguments, Terminal terminal) noexcept;

} // namespace quilletctl
