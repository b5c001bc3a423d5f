// The machine that the pages are about: this one, another one, or a simulated one.
#pragma once

#include "model/Worker.h"

#include <quillet-simulator/Machine.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quillet::pages {

/// Which machine.
struct WhichMachine {
    std::wstring host{};                             ///< its name; empty: this machine
    std::shared_ptr<simulator::Machine> simulated{}; ///< in its place; null: none
    std::function<void()> save{};                    ///< keeps a simulated machine after each change
};

/// Connects to a machine, on the thread that calls it.
Connect ConnectTo(WhichMachine machine);

} // namespace quillet::pages
