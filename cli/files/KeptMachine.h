// A simulated machine between the runs of a program.
#pragma once

#include "files/FileLock.h"

#include <quillet-simulator/Machine.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace quilletctl {

/// A machine, and the state file that it may live in between runs.
class KeptMachine {
  public:
    /// Loads the machine of the state file if that exists, else of the machine file, else the built-in one. A
    /// program that may change it has the state file for itself from now on: it waits until others are done.
    /// Throws UsageError, with the position where a file is not well formed.
    /// @param machineFile empty: none @param stateFile empty: none
    KeptMachine(const std::string& machineFile, const std::string& stateFile, bool mayChange);

    const std::shared_ptr<quillet::simulator::Machine>& Machine() const noexcept { return m_machine; }

    /// Whether the state file has been written since it was read, by somebody else.
    bool IsOutdated() const;

    /// Writes it into the state file, as a whole or not at all, where it has changed since it was last there,
    /// and where it is the first one. Throws UsageError.
    void Save();

  private:
    /// When a file was written; nothing where there is none.
    using Written = std::optional<std::filesystem::file_time_type>;

    std::string m_readFile;  ///< the state file; empty: there is none
    Written m_written;       ///< before it was read
    std::string m_stateFile; ///< empty: there is none, or it is only read
    std::optional<FileLock> m_lock;
    std::shared_ptr<quillet::simulator::Machine> m_machine;
    std::string m_comments;                    ///< at the head of the state file
    std::optional<std::uint64_t> m_generation; ///< of the machine as it is in the state file
};

} // namespace quilletctl
