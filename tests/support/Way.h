// How the clients of the tests reach a machine: in their own process or, where the environment's
// QUILLET_TEST_WAY is "wsman", over WS-Management, through a server and a client on this computer.
#pragma once

#include <quillet-simulator/Machine.h>

#include <memory>
#include <vector>

namespace quillet::tests {

class Way {
  public:
    virtual ~Way() = default;

    /// Where connections to the machine come from.
    virtual std::shared_ptr<wmi::Host> Host() = 0;
    /// The calls since they were forgotten last, as the machine and its clients saw them.
    virtual std::vector<simulator::JournalEntry> Calls() = 0;
    virtual void ForgetCalls() = 0;
};

/// The way that the environment asks for.
std::unique_ptr<Way> WayTo(std::shared_ptr<simulator::Machine> machine);

} // namespace quillet::tests
