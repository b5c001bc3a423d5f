// Where WS-Management is not built, there is one way.
#include "DirectWay.h"

namespace quillet::tests {

std::unique_ptr<Way> WayTo(std::shared_ptr<simulator::Machine> machine) {
    return std::make_unique<DirectWay>(std::move(machine));
}

} // namespace quillet::tests
