// The verbs of "boot" that have files of their own.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

/// "inspect" and "verify".
void AddImageVerbs(CommandTree::Noun& boot);
/// "write".
void AddFlashWriting(CommandTree::Noun& boot);

} // namespace quilletctl
