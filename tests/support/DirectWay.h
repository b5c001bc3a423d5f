// A machine in the process of its client.
#pragma once

#include "Way.h"

namespace quillet::tests {

class DirectWay final : public Way {
  public:
    explicit DirectWay(std::shared_ptr<simulator::Machine> machine) : m_machine(std::move(machine)) {}

    std::shared_ptr<wmi::Host> Host() override { return simulator::HostOf(m_machine); }
    std::vector<simulator::JournalEntry> Calls() override { return m_machine->Calls().All(); }
    void ForgetCalls() override { m_machine->Calls().Clear(); }

  private:
    const std::shared_ptr<simulator::Machine> m_machine;
};

} // namespace quillet::tests
