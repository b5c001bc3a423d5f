// What differs between hosts: the arguments, the standard streams, and whether WMI is there at all. One
// implementation file per host.
#pragma once

#include "terminal/Terminal.h"

#include <memory>
#include <string>
#include <vector>

namespace quilletctl {

/// The process's arguments and standard streams as UTF-8, with the same bytes on every host.
class Console {
  public:
    /// @param argumentCount, arguments what main received.
    Console(int argumentCount, char** arguments);
    /// Flushes, and gives the console back as it was found.
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Without the program's name.
    const std::vector<std::string>& Arguments() const noexcept { return m_arguments; }
    Terminal& Screen() noexcept;

  private:
    struct State;
    std::vector<std::string> m_arguments;
    std::unique_ptr<State> m_state;
};

/// Whether this host has WMI, and so may have a provider. Where it has none, the simulator stands in.
bool HostHasWmi() noexcept;

} // namespace quilletctl
