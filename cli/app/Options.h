// The options that every command takes.
#pragma once

#include "remote/RemoteAccess.h"

#include <quillet-simulator/Faults.h>

#include <string>
#include <vector>

namespace quilletctl {

/// Texts are UTF-8; empty where the option was not given.
struct GlobalOptions {
    std::string machine;     ///< --machine: host name or address
    bool simulate = false;   ///< --simulate
    std::string machineFile; ///< the MOF file of --simulate; empty: the built-in machine
    std::string stateFile;   ///< --state
    std::vector<quillet::simulator::FaultRule> faults{}; ///< --fault
    bool json = false;                                   ///< --json
    bool journal = false;                                ///< --journal
    bool yes = false;                                    ///< --yes
    bool dryRun = false;                                 ///< --dry-run
    bool noColour = false;                               ///< --no-color
    RemoteAccess remote{}; ///< how --machine is reached where this host has no WMI
};

} // namespace quilletctl
