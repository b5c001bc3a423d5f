// The verbs of "team" that have files of their own.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

void AddTeamList(CommandTree::Noun& team);
void AddTeamModes(CommandTree::Noun& team);
void AddTeamCreation(CommandTree::Noun& team);
/// "add" and "remove".
void AddMemberChanges(CommandTree::Noun& team);
/// "modify" and "delete".
void AddTeamModification(CommandTree::Noun& team);
void AddTeamPrimary(CommandTree::Noun& team);
void AddTeamSwitch(CommandTree::Noun& team);

} // namespace quilletctl
