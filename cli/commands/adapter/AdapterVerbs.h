// The verbs of "adapter" that have files of their own.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

/// "list".
void AddAdapterList(CommandTree::Noun& adapter);
/// "show".
void AddAdapterShow(CommandTree::Noun& adapter);

} // namespace quilletctl
