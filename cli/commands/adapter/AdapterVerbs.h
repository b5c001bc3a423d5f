// The verbs of "adapter" that have files of their own.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

/// "show".
void AddAdapterShow(CommandTree::Noun& adapter);

} // namespace quilletctl
