// The process token: a list of privileges that can be enabled, and nothing else.
#include "Token.h"
#include "Counters.h"
#include "HostSettings.h"

#include <cstddef>
#include <map>
#include <mutex>

namespace quillet::platform {
namespace {

// What an administrator's token holds, by LUID; only the change-notify privilege is on from the start.
constexpr DWORD kPrivileges[] = {5,  8,  9,  10, 11, 12, 13, 14, 15, 17, 18, 19,
                                 20, 22, 23, 24, 25, 28, 29, 30, 33, 34, 35};
constexpr DWORD kChangeNotify = 23;
constexpr auto kPrivilegeCount = static_cast<DWORD>(std::size(kPrivileges));

struct Tokens {
    std::mutex lock;
    std::map<HANDLE, DWORD> access;
    std::uintptr_t lastHandle = 0x100;
};

Tokens& OpenTokens() {
    static Tokens tokens;
    return tokens;
}

bool Holds(DWORD luid) {
    for (const DWORD held : kPrivileges) {
        if (held == luid) {
            return true;
        }
    }
    return false;
}

bool Fails(TokenStep step) {
    return WithSettings([step](const HostSettings& settings) { return settings.failingTokenStep == step; });
}

BOOL Failure(DWORD error) {
    SetLastError(error);
    return FALSE;
}

/// ERROR_SUCCESS if the handle is open with the right.
DWORD Check(HANDLE token, DWORD right) {
    Tokens& tokens = OpenTokens();
    const std::lock_guard guard(tokens.lock);
    const auto found = tokens.access.find(token);
    if (found == tokens.access.end()) {
        return ERROR_INVALID_HANDLE;
    }
    return (found->second & right) == right ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

DWORD ListSize(DWORD count) {
    return static_cast<DWORD>(offsetof(TOKEN_PRIVILEGES, Privileges) + count * sizeof(LUID_AND_ATTRIBUTES));
}

LUID_AND_ATTRIBUTES Describe(DWORD luid, bool enabled) {
    DWORD attributes = luid == kChangeNotify ? SE_PRIVILEGE_ENABLED_BY_DEFAULT | SE_PRIVILEGE_ENABLED : 0;
    if (enabled) {
        attributes |= SE_PRIVILEGE_ENABLED;
    }
    return {{luid, 0}, attributes};
}

} // namespace

bool CloseToken(HANDLE handle) noexcept {
    Tokens& tokens = OpenTokens();
    const std::lock_guard guard(tokens.lock);
    if (tokens.access.erase(handle) == 0) {
        return false;
    }
    g_counters.tokens.Add(-1);
    return true;
}

} // namespace quillet::platform

using namespace quillet::platform;

BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token) {
    if (Fails(TokenStep::Open)) {
        return Failure(ERROR_ACCESS_DENIED);
    }
    if (process != GetCurrentProcess()) {
        return Failure(ERROR_INVALID_HANDLE);
    }
    if (!token) {
        return Failure(ERROR_INVALID_PARAMETER);
    }
    Tokens& tokens = OpenTokens();
    const std::lock_guard guard(tokens.lock);
    tokens.lastHandle += 4;
    *token = reinterpret_cast<HANDLE>(tokens.lastHandle);
    tokens.access.emplace(*token, access);
    g_counters.tokens.Add(1);
    return TRUE;
}

BOOL WINAPI GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS which, LPVOID buffer, DWORD size,
                                PDWORD needed) {
    if (!needed || which != TokenPrivileges) {
        return Failure(ERROR_INVALID_PARAMETER);
    }
    *needed = 0;
    if (Fails(TokenStep::Query)) {
        return Failure(ERROR_ACCESS_DENIED);
    }
    const DWORD error = Check(token, TOKEN_QUERY);
    if (error != ERROR_SUCCESS) {
        return Failure(error);
    }
    *needed = ListSize(kPrivilegeCount);
    if (size < *needed || !buffer) {
        return Failure(ERROR_INSUFFICIENT_BUFFER);
    }
    auto* const list = static_cast<PTOKEN_PRIVILEGES>(buffer);
    list->PrivilegeCount = kPrivilegeCount;
    // The array of the structure has as many elements as the caller's buffer has room for.
    PLUID_AND_ATTRIBUTES entry = list->Privileges;
    WithSettings([&entry](const HostSettings& settings) {
        for (const DWORD luid : kPrivileges) {
            *entry++ = Describe(luid, settings.enabledPrivileges.count(luid) != 0);
        }
    });
    return TRUE;
}

BOOL WINAPI AdjustTokenPrivileges(HANDLE token, BOOL disableAll, PTOKEN_PRIVILEGES newState, DWORD size,
                                  PTOKEN_PRIVILEGES previousState, PDWORD needed) {
    if (Fails(TokenStep::Adjust)) {
        return Failure(ERROR_ACCESS_DENIED);
    }
    const DWORD error = Check(token, TOKEN_ADJUST_PRIVILEGES | (previousState ? TOKEN_QUERY : 0u));
    if (error != ERROR_SUCCESS) {
        return Failure(error);
    }
    if ((!disableAll && !newState) || (previousState && !needed)) {
        return Failure(ERROR_INVALID_PARAMETER);
    }
    if (previousState) {
        *needed = ListSize(disableAll ? kPrivilegeCount : newState->PrivilegeCount);
        if (size < *needed) {
            return Failure(ERROR_INSUFFICIENT_BUFFER);
        }
    }
    bool allHeld = true;
    WithSettings([&](HostSettings& settings) {
        DWORD changed = 0;
        PLUID_AND_ATTRIBUTES previous = previousState ? previousState->Privileges : nullptr;
        const auto set = [&](DWORD luid, bool enable) {
            const bool enabled = settings.enabledPrivileges.count(luid) != 0;
            if (enabled == enable) {
                return;
            }
            if (previous) {
                *previous++ = Describe(luid, enabled);
            }
            ++changed;
            if (enable) {
                settings.enabledPrivileges.insert(luid);
            } else {
                settings.enabledPrivileges.erase(luid);
            }
        };
        if (disableAll) {
            for (const DWORD luid : kPrivileges) {
                set(luid, false);
            }
        } else {
            const LUID_AND_ATTRIBUTES* const entries = newState->Privileges;
            for (DWORD i = 0; i < newState->PrivilegeCount; ++i) {
                if (entries[i].Luid.HighPart == 0 && Holds(entries[i].Luid.LowPart)) {
                    set(entries[i].Luid.LowPart, (entries[i].Attributes & SE_PRIVILEGE_ENABLED) != 0);
                } else {
                    allHeld = false;
                }
            }
        }
        if (previousState) {
            previousState->PrivilegeCount = changed;
        }
    });
    SetLastError(allHeld ? ERROR_SUCCESS : ERROR_NOT_ALL_ASSIGNED);
    return TRUE;
}
