// quillet-properties: property pages and wizards for network adapters, teams and VLANs.
#include "model/MachineConnection.h"
#include "model/Options.h"
#include "window/Application.h"

#include "files/KeptMachine.h"

#include <quillet/client/Text.h>

#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>

namespace {

std::vector<std::string> Arguments() {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int number = 1; number < count; ++number) {
        arguments.push_back(quillet::ToUtf8(words[number]));
    }
    LocalFree(words);
    return arguments;
}

void UseCommonControls() {
    INITCOMMONCONTROLSEX wanted{};
    wanted.dwSize = sizeof(wanted);
    wanted.dwICC = ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES;
    InitCommonControlsEx(&wanted);
}

int Run(const quillet::pages::Options& options) {
    using namespace quillet::pages;
    WhichMachine machine{.host = quillet::FromUtf8(options.host)};
    std::optional<quilletctl::KeptMachine> kept;
    if (options.simulate) {
        const quillet::ComUsage com;
        kept.emplace(options.machineFile, options.stateFile, !options.stateFile.empty());
        machine.simulated = kept->Machine();
        machine.simulated->FollowRealTime(true);
        machine.save = [&kept] { kept->Save(); };
    }
    UseCommonControls();
    Application application(ConnectTo(machine));
    if (options.adapter.empty()) {
        application.ShowStart();
    } else {
        application.ShowAdapter(quillet::FromUtf8(options.adapter));
    }
    return application.Run();
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    using namespace quillet::pages;
    try {
        const Options options = ReadOptions(Arguments());
        Speak(options.language.value_or(UserLanguage()));
        if (!options.help.empty()) {
            Application::Tell(nullptr, quillet::FromUtf8(options.help));
            return 0;
        }
        return Run(options);
    } catch (const std::exception& failure) {
        Application::Tell(nullptr, quillet::FromUtf8(failure.what()));
        return 2;
    }
}
