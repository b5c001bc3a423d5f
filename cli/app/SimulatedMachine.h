// When the simulator answers in place of WMI.
#pragma once

#include "app/Options.h"

namespace quilletctl {

/// Whether the command talks to the simulator: when asked to, and on a host without WMI always.
bool UsesSimulator(const GlobalOptions& options) noexcept;
/// Whether the command line asks for the simulator.
bool AsksForSimulator(const GlobalOptions& options) noexcept;

} // namespace quilletctl
