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
    AddTraceCommand(tree);
    AddTransactionCommands(tree);
    AddVersionCommand(tree);
    AddHelpCommand(tree);
}

} // namespace quilletctl
