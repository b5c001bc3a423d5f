// Programs on Windows.
#include "RunProgram.h"

#include <windows.h>

int RunProgram(const std::filesystem::path& program) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.wstring().c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process)) {
        return -1;
    }
    DWORD status = 0;
    const bool ended = WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return ended ? static_cast<int>(status) : -1;
}
