// Linked around the main() of a program in the documents (--wrap=main): what it connects to is the machine
// that ships with the simulator.
#include <quillet-simulator/Machine.h>

#include <cstdio>

extern "C" {
int __real_main(int count, char** arguments);
int __wrap_main(int count, char** arguments);
}

int __wrap_main(int count, char** arguments) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        std::fputs("COM cannot be initialised\n", stderr);
        return 1;
    }
    int status = 0;
    {
        const quillet::simulator::Registration registration(quillet::simulator::Machine::BuiltIn());
        status = __real_main(count, arguments);
    }
    CoUninitialize();
    return status;
}
