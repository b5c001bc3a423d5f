// The journal and the faults of a machine for the calls that stay with the client's objects.
#pragma once

#include <quillet-simulator/Machine.h>

#include <quillet-wmi/Observer.h>

namespace quillet::simulator {

/// Part of a machine's connections and of its host, which keep the machine.
class MachineObserver final : public CallObserver {
  public:
    explicit MachineObserver(Machine& machine) : m_machine(machine) {}

    bool Interferes() const noexcept override { return m_machine.Rules().Armed(); }
    Interference Before(const ObservedCall& call) override;
    bool Records(Operation operation) const noexcept override;
    void After(const ObservedCall& call, HRESULT result, std::vector<NamedValue> arguments,
               HRESULT status) override;

  private:
    Machine& m_machine;
};

} // namespace quillet::simulator
