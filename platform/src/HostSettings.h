// What stands for the parts of Windows that the host does not have; TestHooks sets it.
#pragma once

#include <quillet-platform/TestHooks.h>

#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace quillet::platform {

struct HostSettings {
    DWORD osMajor = 6;
    DWORD osMinor = 1;
    DWORD osPlatform = VER_PLATFORM_WIN32_NT;
    bool failExtendedVersion = false;
    std::vector<std::wstring> uiLanguages{L"0409"};
    LANGID userLanguage = 0x0409;
    bool failEnumUiLanguages = false;
    TokenStep failingTokenStep = TokenStep::None;
    std::set<DWORD> enabledPrivileges;
    bool failComputerName = false;
    std::function<void(const std::wstring&)> debugOutput;
    std::wstring moduleFileName;
};

struct LockedSettings {
    std::mutex lock;
    HostSettings settings;
};

/// The one copy for the process.
inline LockedSettings& SharedSettings() {
    static LockedSettings shared;
    return shared;
}

/// Calls `use(settings)` under the lock; `use` must not call out.
template <class Use>
auto WithSettings(Use use) {
    LockedSettings& shared = SharedSettings();
    const std::lock_guard guard(shared.lock);
    return use(shared.settings);
}

} // namespace quillet::platform
