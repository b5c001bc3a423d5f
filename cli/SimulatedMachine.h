// The machine that the simulator plays for one command, and the file it may live in between commands.
#pragma once

#include "Options.h"

#include <quillet-simulator/Machine.h>

#include <memory>
#include <string>

namespace quilletctl {

/// Whether the command talks to the simulator: when asked to, and on a host without WMI always.
bool UsesSimulator(const GlobalOptions& options) noexcept;

/// The machine of the state file if that exists, else of the machine file, else the built-in one. Throws
/// UsageError, with the position where a file is not well formed.
std::shared_ptr<quillet::simulator::Machine> LoadMachine(const GlobalOptions& options);

/// Writes a machine into the state file. The file is replaced as a whole or not at all. Throws UsageError.
void SaveMachine(const quillet::simulator::Machine& machine, const std::string& stateFile);

} // namespace quilletctl
