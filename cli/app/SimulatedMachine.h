// The machine that the simulator plays for one command, and the file it may live in between commands.
#pragma once

#include "app/Options.h"
#include "files/FileLock.h"

#include <quillet-simulator/Machine.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quilletctl {

/// Whether the command talks to the simulator: when asked to, and on a host without WMI always.
bool UsesSimulator(const GlobalOptions& options) noexcept;
/// Whether the command line asks for the simulator.
bool AsksForSimulator(const GlobalOptions& options) noexcept;

class SimulatedMachine {
  public:
    /// Loads the machine of the state file if that exists, else of the machine file, else the built-in one. A
    /// command that may change it has the state file for itself from now on: it waits until others are done.
    /// Throws UsageError, with the position where a file is not well formed.
    SimulatedMachine(const GlobalOptions& options, bool mayChange);

    const std::shared_ptr<quillet::simulator::Machine>& Machine() const noexcept { return m_machine; }

    /// Writes it into the state file, as a whole or not at all, where the command may have changed it and
    /// did, or where it is the first one. Throws UsageError.
    void Save() const;

  private:
    std::string m_stateFile; ///< empty: there is none, or it is only read
    std::optional<FileLock> m_lock;
    std::shared_ptr<quillet::simulator::Machine> m_machine;
    std::string m_comments;                    ///< at the head of the state file
    std::optional<std::uint64_t> m_generation; ///< of the machine as it is in the state file
};

} // namespace quilletctl
