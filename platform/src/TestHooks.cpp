// The hooks that set and count what this layer holds.
#include "Counters.h"
#include "HostSettings.h"

#include <utility>

namespace quillet::platform {

LiveCounts Live() noexcept {
    LiveCounts live;
    live.bstrs = g_counters.bstrs.Value();
    live.safeArrays = g_counters.safeArrays.Value();
    live.interfaceTableEntries = g_counters.interfaceTableEntries.Value();
    live.registryKeys = g_counters.registryKeys.Value();
    live.tokens = g_counters.tokens.Value();
    return live;
}

void SetOsVersion(DWORD major, DWORD minor, DWORD platformId) {
    WithSettings([=](HostSettings& settings) {
        settings.osMajor = major;
        settings.osMinor = minor;
        settings.osPlatform = platformId;
    });
}

void FailExtendedVersion(bool fail) {
    WithSettings([=](HostSettings& settings) { settings.failExtendedVersion = fail; });
}

void SetUiLanguages(std::vector<std::wstring> offered, LANGID userDefault) {
    WithSettings([&](HostSettings& settings) {
        settings.uiLanguages = std::move(offered);
        settings.userLanguage = userDefault;
    });
}

void FailEnumUiLanguages(bool fail) {
    WithSettings([=](HostSettings& settings) { settings.failEnumUiLanguages = fail; });
}

void FailToken(TokenStep step) {
    WithSettings([=](HostSettings& settings) { settings.failingTokenStep = step; });
}

std::vector<DWORD> EnabledPrivileges() {
    return WithSettings([](const HostSettings& settings) {
        return std::vector<DWORD>(settings.enabledPrivileges.begin(), settings.enabledPrivileges.end());
    });
}

void FailComputerName(bool fail) {
    WithSettings([=](HostSettings& settings) { settings.failComputerName = fail; });
}

void SetDebugOutput(std::function<void(const std::wstring&)> sink) {
    WithSettings([&](HostSettings& settings) { settings.debugOutput.swap(sink); });
}

void SetModuleFileName(std::wstring path) {
    WithSettings([&](HostSettings& settings) { settings.moduleFileName = std::move(path); });
}

void ResetHooks() {
    HostSettings defaults;
    WithSettings([&](HostSettings& settings) { std::swap(settings, defaults); });
    FailBstrAllocation(0);
    ObserveFreedBstrs(nullptr);
}

} // namespace quillet::platform
