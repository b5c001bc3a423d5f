// What a test may ask of this platform layer and set in it: live objects, allocation failures, and the
// parts of Windows that a host without it does not have. Nothing outside tests includes this.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace quillet::platform {

/// What is alive in the process now.
struct LiveCounts {
    long bstrs = 0;
    long safeArrays = 0;
    long interfaceTableEntries = 0;
    long registryKeys = 0;
    long tokens = 0; ///< open process-token handles
    friend bool operator==(const LiveCounts&, const LiveCounts&) = default;
};
LiveCounts Live() noexcept;

/// BSTR allocations of the calling thread so far, failed ones included.
unsigned long BstrAllocations() noexcept;
/// Makes the nth BSTR allocation of the calling thread from now on fail (1: the next); 0 disarms.
void FailBstrAllocation(unsigned long nth) noexcept;

/// Makes the n-th SAFEARRAY that the calling thread creates from now on fail for want of memory; 0 makes none
/// fail.
void FailArrayAllocation(unsigned long nth) noexcept;

/// Shows every BSTR, of any thread, just before it is freed: its text as it then is, terminator excluded.
/// Null shows them to nobody (the default).
using FreedBstrObserver = void (*)(const void* text, std::size_t bytes);
void ObserveFreedBstrs(FreedBstrObserver observer) noexcept;

/// Defaults: 6.1 on the NT platform (VER_PLATFORM_WIN32_NT).
void SetOsVersion(DWORD major, DWORD minor, DWORD platformId = VER_PLATFORM_WIN32_NT);
/// Makes the extended form of GetVersionExW fail, so that callers fall back to the basic one.
void FailExtendedVersion(bool fail);
/// What EnumUILanguagesW offers (default: one, L"0409") and GetUserDefaultUILanguage answers (0x0409).
void SetUiLanguages(std::vector<std::wstring> offered, LANGID userDefault);
void FailEnumUiLanguages(bool fail);
/// Which step of the process-token calls fails.
enum class TokenStep { None, Open, Query, Adjust };
void FailToken(TokenStep step);
/// The privileges enabled by AdjustTokenPrivileges so far, by LUID low part.
std::vector<DWORD> EnabledPrivileges();
/// Makes GetComputerNameW fail.
void FailComputerName(bool fail);
/// Receives every OutputDebugStringW text; an empty function drops them (the default).
void SetDebugOutput(std::function<void(const std::wstring&)> sink);
/// Overrides GetModuleFileNameW(nullptr); empty restores the real one.
void SetModuleFileName(std::wstring path);
/// Empties the registry and, if a file is named, fills it from that .reg file.
void ResetRegistry(const std::string& file = {});
/// Puts everything above back to its default (the registry is left alone).
void ResetHooks();

} // namespace quillet::platform
