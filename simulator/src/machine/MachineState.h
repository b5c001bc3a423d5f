// The parts of a machine, for the simulator's own sources.
#pragma once

#include "machine/BlinkingLights.h"
#include "machine/BriefMutex.h"
#include "machine/ClientSets.h"
#include "machine/DiagnosticRuns.h"
#include "machine/SimulatedClock.h"
#include "machine/SwitchTests.h"
#include "providers/ClassProvider.h"

namespace quillet::simulator {

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): what is read and what is written lie apart
struct Machine::State {
    /// @param content what the store holds at first
    State(Repository content, bool isStrict);
    /// Takes over what the machine's own instances say about its behaviour and its faults.
    void Configure();
    /// The provider for a class: its own, or that of the nearest class above it.
    ClassProvider& ProviderOf(const ClassDefinition& definition);

    /// Brings the instances up to what has happened in the meantime.
    void CatchUp();

    // What every call reads is not next to what some write: between them stands what is seldom read.
    Repository store;
    Journal journal;
    Faults faults;
    DiagnosticRuns diagnostics;
    ClassProviders providers;
    ClassProvider plain;
    std::map<std::wstring, LONG, NameLess> followUps; ///< what changes of a class ask for
    bool strict = false;
    ClientSets sets;
    BlinkingLights blinking;
    SwitchTests switchTests;
    SimulatedClock clock;
    BriefMutex changes; ///< held by a call that may change the machine: what it looks up stays true meanwhile
};

} // namespace quillet::simulator
