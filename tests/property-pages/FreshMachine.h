// The built-in machine, for a test to change.
#pragma once

#include <quillet-simulator/Machine.h>

#include <memory>

namespace quillet::tests {

/// The built-in machine, anew. Its text is compiled once.
inline std::shared_ptr<simulator::Machine> FreshMachine() {
    static const std::shared_ptr<simulator::Machine> machine = simulator::Machine::BuiltIn();
    return machine->Copy();
}

} // namespace quillet::tests
