// Which pages the sheet of an object has.
#pragma once

#include "model/MachineTree.h"
#include "window/PageView.h"

#include <memory>
#include <vector>

namespace quillet::pages {

/// The pages of an adapter, a team or a VLAN, in the order of their tabs.
std::vector<std::unique_ptr<PageView>> PagesOf(SheetWindow& sheet, const Node& node);

} // namespace quillet::pages
