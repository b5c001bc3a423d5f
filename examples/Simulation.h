// "--simulate" for the examples: the machine that ships with the simulator instead of this computer's
// provider.
#pragma once

#include <quillet-simulator/Machine.h>

#include <memory>
#include <string_view>

class Simulation {
  public:
    Simulation(int count, char** arguments) {
        if (count > 1 && std::string_view(arguments[1]) == "--simulate") {
            machine = quillet::simulator::Machine::BuiltIn();
            m_registration = std::make_unique<quillet::simulator::Registration>(machine);
        }
    }

    /// Null without "--simulate".
    std::shared_ptr<quillet::simulator::Machine> machine;

  private:
    std::unique_ptr<quillet::simulator::Registration> m_registration;
};
