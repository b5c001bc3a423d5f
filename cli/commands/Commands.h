// Every command of quilletctl: one function per noun, in the file of that noun.
#pragma once

#include "app/CommandTree.h"

namespace quilletctl {

void AddAdapterCommands(CommandTree& tree);
void AddBootCommands(CommandTree& tree);
void AddCompletionCommand(CommandTree& tree);
void AddDiagCommands(CommandTree& tree);
void AddISCSICommands(CommandTree& tree);
void AddSettingCommands(CommandTree& tree);
void AddProfileCommands(CommandTree& tree);
/// "power" and "wol".
void AddPowerCommands(CommandTree& tree);
void AddTeamCommands(CommandTree& tree);
void AddLinksecCommands(CommandTree& tree);
void AddVlanCommands(CommandTree& tree);
void AddConfigCommands(CommandTree& tree);
/// A whole machine: recording it.
void AddMachineCommands(CommandTree& tree);
/// What changes, as it happens.
void AddMonitorCommand(CommandTree& tree);
/// A whole machine on one page.
void AddReportCommand(CommandTree& tree);
void AddDscCommands(CommandTree& tree);
void AddWarningsCommand(CommandTree& tree);
void AddTraceCommand(CommandTree& tree);
void AddTransactionCommands(CommandTree& tree);
void AddVersionCommand(CommandTree& tree);
/// Needs the tree to live as long as its commands do.
void AddHelpCommand(CommandTree& tree);

/// All of them, in the order of the help.
void AddAllCommands(CommandTree& tree);

} // namespace quilletctl
