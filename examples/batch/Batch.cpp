// Sets one setting on every adapter that has it, in one client set, and says whether the machine needs a
// restart. Usage: batch [--simulate] CAPTION NUMBER
#include "../Simulation.h"

#include <quillet/Quillet.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

/// Writes the number where the setting exists, can be written and is another one. The first failure ends it.
HRESULT SetEverywhere(CQuillet& quillet, const std::wstring& caption, LONG number, unsigned& written) {
    CAdapters adapters;
    HRESULT result = quillet.EnumerateAdapters(adapters);
    for (const CAdapter* adapter : adapters.m_vecItems) {
        if (FAILED(result)) {
            break;
        }
        CSettings settings;
        result = quillet.GetAdapterSettings(adapter->m_wsAdapterID, settings);
        CSetting* setting = SUCCEEDED(result) ? settings.GetSettingByCaption(caption) : nullptr;
        LONG current = number;
        if (setting == nullptr || !setting->m_bWritable || !setting->GetCurrentVal(current) ||
            current == number) {
            continue;
        }
        setting->SetCurrentValue(std::to_wstring(number));
        result = quillet.SetSetting(setting->m_wsPath, *setting);
        written += SUCCEEDED(result) ? 1 : 0;
    }
    return result;
}

int Run(CQuillet& quillet, const std::wstring& caption, LONG number) {
    // Whatever happens in between, a set that was opened is closed: until then the provider keeps others out.
    HRESULT result = quillet.BeginApply();
    unsigned written = 0;
    bool restartNeeded = false;
    if (SUCCEEDED(result)) {
        result = SetEverywhere(quillet, caption, number, written);
        const HRESULT closed = quillet.ApplyDone(restartNeeded);
        result = SUCCEEDED(result) ? closed : result;
    }
    std::printf("%u adapters changed; %s\n", written,
                restartNeeded ? "the machine must be restarted" : "no restart is needed");
    if (FAILED(result)) {
        std::fprintf(stderr, "stopped: 0x%08X\n", static_cast<unsigned>(result));
        return 1;
    }
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 3 || FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        return 1;
    }
    int status = 1;
    {
        const Simulation simulation(count, arguments);
        const std::string caption = arguments[count - 2];
        CQuillet quillet;
        if (SUCCEEDED(quillet.InitQuillet())) {
            status = Run(quillet, std::wstring(caption.begin(), caption.end()),
                         static_cast<LONG>(std::strtol(arguments[count - 1], nullptr, 10)));
        }
        quillet.UninitQuillet();
    }
    CoUninitialize();
    return status;
}
