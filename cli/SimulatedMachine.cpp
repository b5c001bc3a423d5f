// Loading and saving the simulated machine.
#include "SimulatedMachine.h"

#include "Console.h"
#include "Failure.h"
#include "Files.h"

namespace quilletctl {

namespace {

using quillet::simulator::Machine;
using quillet::simulator::MofError;

std::shared_ptr<Machine> FromFile(const std::string& file) {
    CheckReadable(file);
    try {
        return Machine::FromFile(FilePath(file));
    } catch (const MofError& mistake) {
        throw UsageError(mistake.what());
    }
}

} // namespace

bool UsesSimulator(const GlobalOptions& options) noexcept {
    return options.simulate || !options.stateFile.empty() || !HostHasWmi();
}

std::shared_ptr<Machine> LoadMachine(const GlobalOptions& options) {
    const bool goesOn = !options.stateFile.empty() && FileExists(options.stateFile);
    const std::string& file = goesOn ? options.stateFile : options.machineFile;
    auto machine = file.empty() ? Machine::BuiltIn() : FromFile(file);
    // Whoever sits before it waits for tests and flash memories as before a real one.
    machine->FollowRealTime(true);
    return machine;
}

void SaveMachine(const Machine& machine, const std::string& stateFile) {
    // A machine holds credentials (iSCSI, link security), so the file is its owner's alone.
    ReplaceFile(stateFile, machine.Save(), Access::OwnerOnly);
}

} // namespace quilletctl
