// A simulated machine as a connection, with its journal and its faults around what its provider answers.
#pragma once

#include "calls/MachineObserver.h"

namespace quillet::simulator {

class ProviderCall;

class MachineConnection final : public Connection {
  public:
    explicit MachineConnection(std::shared_ptr<Machine> machine)
        : m_machine(std::move(machine)), m_observer(*m_machine) {}

    const std::wstring& ServerName() const noexcept override { return m_machine->Store().ServerName(); }
    const std::wstring& NamespaceName() const noexcept override { return m_machine->Store().NamespaceName(); }
    Outcome OpenNamespace(const CallContext& context, std::wstring_view path,
                          std::shared_ptr<Connection>& opened) override;
    Outcome GetObject(const CallContext& context, std::wstring_view path, Object& found) override;
    Outcome Instances(const CallContext& context, std::wstring_view className, Depth depth,
                      std::unique_ptr<ObjectStream>& found) override;
    Outcome Classes(const CallContext& context, std::wstring_view superclass, Depth depth,
                    std::unique_ptr<ObjectStream>& found) override;
    Outcome Query(const CallContext& context, std::wstring_view wql,
                  std::unique_ptr<ObjectStream>& found) override;
    Outcome ExecMethod(const CallContext& context, std::wstring_view path, std::wstring_view method,
                       const Filled* in, InstancePtr& out) override;
    Outcome PutInstance(const CallContext& context, const Filled& instance, WriteMode mode) override;
    Outcome DeleteInstance(const CallContext& context, std::wstring_view path) override;
    std::wstring WholePath(std::wstring_view reference) const override {
        return m_machine->Store().ReferenceText(reference);
    }
    CallObserver* Observer() noexcept override { return &m_observer; }

  private:
    template <class Find>
    Outcome Enumerate(ProviderCall& call, const CallContext& context, std::wstring_view target,
                      std::unique_ptr<ObjectStream>& found, Find find);

    const std::shared_ptr<Machine> m_machine;
    MachineObserver m_observer;
};

/// A machine as a host whose only namespace is the machine's.
class MachineHost final : public Host {
  public:
    explicit MachineHost(std::shared_ptr<Machine> machine)
        : m_machine(std::move(machine)), m_observer(*m_machine) {}

    Outcome Connect(const CallContext& context, const ConnectArguments& arguments,
                    std::shared_ptr<Connection>& connection) override;
    CallObserver* Observer() noexcept override { return &m_observer; }

  private:
    const std::shared_ptr<Machine> m_machine;
    MachineObserver m_observer;
};

} // namespace quillet::simulator
