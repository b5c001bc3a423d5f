// The verbs of "setting" that have files of their own.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

/// "set" and "reset".
void AddSettingSet(CommandTree::Noun& setting);

} // namespace quilletctl
