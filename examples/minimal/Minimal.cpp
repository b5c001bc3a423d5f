// The smallest useful client: connects, lists the adapters, disconnects.
#include "../Simulation.h"
#include "../Text.h"

#include <quillet/Quillet.h>

#include <cstdio>

int main(int count, char** arguments) {
    // COM belongs to the thread; whoever starts the thread says how it is used.
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        return 1;
    }
    HRESULT result = S_OK;
    {
        const Simulation simulation(count, arguments);
        CQuillet quillet; // this computer
        CAdapters adapters;
        result = quillet.InitQuillet();
        if (SUCCEEDED(result)) {
            result = quillet.EnumerateAdapters(adapters);
        }
        for (const CAdapter* adapter : adapters.m_vecItems) {
            std::puts(Utf8(adapter->m_wsDisplayName).c_str());
        }
        quillet.UninitQuillet();
    }
    CoUninitialize();
    if (FAILED(result)) {
        std::fprintf(stderr, "the adapters cannot be listed: 0x%08X\n", static_cast<unsigned>(result));
        return 1;
    }
    return 0;
}
