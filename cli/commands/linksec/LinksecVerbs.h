// The verbs of "linksec" that have files of their own.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

/// "set-keys".
void AddLinksecKeys(CommandTree::Noun& linksec);
/// "set-auth".
void AddLinksecAuthentication(CommandTree::Noun& linksec);
/// "pmk".
void AddLinksecMasterKey(CommandTree::Noun& linksec);
/// The verbs about PAC files.
void AddLinksecPac(CommandTree::Noun& linksec);

} // namespace quilletctl
