// A client as its author would write it: counts the adapters of the simulated machine.
#include <quillet-simulator/Machine.h>
#include <quillet/Quillet.h>

#include <cstdio>

int main() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        return 1;
    }
    int status = 1;
    {
        const quillet::simulator::Registration machine(quillet::simulator::Machine::BuiltIn());
        CQuillet quillet;
        CAdapters adapters;
        if (SUCCEEDED(quillet.InitQuillet()) && SUCCEEDED(quillet.EnumerateAdapters(adapters))) {
            std::printf("%u adapters\n", static_cast<unsigned>(adapters.m_vecItems.size()));
            status = 0;
        }
        quillet.UninitQuillet();
    }
    CoUninitialize();
    return status;
}
