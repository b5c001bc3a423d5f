// The rule by which the trace log is switched on when the library is loaded.
#include "TraceAtLoad.h"

#include "LumText.h"

namespace {

/// The name of a program: without directory and extension. A slash separates as well, as on POSIX hosts.
std::wstring ProgramName(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    std::wstring name = separator == std::wstring::npos ? path : path.substr(separator + 1);
    if (const std::size_t extension = name.find_last_of(L'.'); extension != std::wstring::npos) {
        name.resize(extension);
    }
    return name;
}

} // namespace

bool IsSilentTraceHost(const std::wstring& hostExecutablePath) {
    const std::wstring name = ProgramName(hostExecutablePath);
    return EqualsIgnoringCase(name, L"LUM2Prov") || EqualsIgnoringCase(name, L"Services");
}

LONG ConfigureTraceAtLoad(const std::wstring& hostExecutablePath) noexcept {
    try {
        if (!IsSilentTraceHost(hostExecutablePath)) {
            return LumTrace().Configure(L"Quillet", L"Gui_Quillet.txt", CLumDebug::LevelAll, false, 0);
        }
    } catch (...) {
        // Only memory can be missing. A library that can not trace is still one that loads.
    }
    return -1;
}

std::wstring HostExecutablePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const auto capacity = static_cast<DWORD>(path.size());
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), capacity);
        if (length < capacity) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}
