// When the simulator answers in place of WMI.
#include "app/SimulatedMachine.h"

#include "terminal/Console.h"

namespace quilletctl {

bool AsksForSimulator(const GlobalOptions& options) noexcept {
    return options.simulate || !options.stateFile.empty();
}

bool UsesSimulator(const GlobalOptions& options) noexcept {
    return AsksForSimulator(options) || (!HostHasWmi() && options.machine.empty());
}

} // namespace quilletctl
