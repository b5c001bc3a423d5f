// The list of the commands.
#include "commands/Commands.h"

namespace quilletctl {

void AddAllCommands(CommandTree& tree) {
    AddAdapterCommands(tree);
    AddSettingCommands(tree);
    AddProfileCommands(tree);
    AddPowerCommands(tree);
    AddTeamCommands(tree);
    AddLinksecCommands(tree);
    AddVlanCommands(tree);
    AddDiagCommands(tree);
    AddBootCommands(tree);
    AddISCSICommands(tree);
    AddConfigCommands(tree);
    AddDscCommands(tree);
    AddWarningsCommand(tree);
    AddMachineCommands(tree);
    AddReportCommand(tree);
    AddMonitorCommand(tree);
    AddTraceCommand(tree);
    AddTransactionCommands(tree);
    AddCompletionCommand(tree);
    AddVersionCommand(tree);
    AddHelpCommand(tree);
}

} // namespace quilletctl
