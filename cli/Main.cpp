// quilletctl: manages the network adapters of a machine from the command line.
#include "Application.h"
#include "terminal/Console.h"

int main(int argumentCount, char** arguments) {
    quilletctl::Console console(argumentCount, arguments);
    return static_cast<int>(quilletctl::RunCommandLine(console.Arguments(), console.Screen()));
}
