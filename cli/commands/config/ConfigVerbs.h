// The verbs of `quilletctl config`, a file for those that go together.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

void AddConfigApply(CommandTree::Noun& config);

} // namespace quilletctl
