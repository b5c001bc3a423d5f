// The machine that the pages are about.
#include "model/MachineConnection.h"

namespace quillet::pages {

namespace {

class MachineConnection : public Connection {
  public:
    explicit MachineConnection(const WhichMachine& machine) : m_save(machine.save) {
        if (machine.simulated != nullptr) {
            m_registration.emplace(machine.simulated);
        }
        m_session.emplace(SessionOptions{machine.host});
    }

    Session& Machine() override { return *m_session; }
    void Save() override {
        if (m_save) {
            m_save();
        }
    }

  private:
    std::function<void()> m_save;
    std::optional<simulator::Registration> m_registration;
    std::optional<Session> m_session;
};

} // namespace

Connect ConnectTo(WhichMachine machine) {
    return [machine = std::move(machine)]() -> std::unique_ptr<Connection> {
        return std::make_unique<MachineConnection>(machine);
    };
}

} // namespace quillet::pages
