// COM's initialisation, counted for each thread.
#include "Apartment.h"

#include <windows.h>
#include <objbase.h>

#include <atomic>

namespace {

struct ThreadState {
    ULONG initialisations = 0;
    bool singleThreaded = false;
};
thread_local ThreadState g_thread;

// As long as somebody asks for it there is a multithreaded apartment, and threads without one belong to it.
std::atomic<ULONG> g_multithreadedUses = 0;

} // namespace

namespace quillet::platform {

bool IsComInitialised() noexcept {
    return g_thread.initialisations != 0 || g_multithreadedUses != 0;
}

} // namespace quillet::platform

HRESULT WINAPI CoInitializeEx(void* reserved, DWORD model) {
    constexpr DWORD kNown =
        COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE | COINIT_SPEED_OVER_MEMORY | COINIT_MULTITHREADED;
    if (reserved || (model & ~kNown)) {
        return E_INVALIDARG;
    }
    const bool singleThreaded = (model & COINIT_APARTMENTTHREADED) != 0;
    if (g_thread.initialisations == 0) {
        g_thread.singleThreaded = singleThreaded;
        g_thread.initialisations = 1;
        return S_OK;
    }
    if (g_thread.singleThreaded != singleThreaded) {
        return RPC_E_CHANGED_MODE;
    }
    ++g_thread.initialisations;
    return S_FALSE;
}

HRESULT WINAPI CoInitialize(void* reserved) {
    return CoInitializeEx(reserved, COINIT_APARTMENTTHREADED);
}

void WINAPI CoUninitialize() {
    if (g_thread.initialisations) {
        --g_thread.initialisations;
    }
}

HRESULT WINAPI CoInitializeSecurity(void*, LONG, SOLE_AUTHENTICATION_SERVICE*, void*, DWORD, DWORD, void*,
                                    DWORD, void*) {
    // One process is all there is to secure.
    return quillet::platform::IsComInitialised() ? S_OK : CO_E_NOTINITIALIZED;
}

HRESULT WINAPI CoIncrementMTAUsage(CO_MTA_USAGE_COOKIE* cookie) {
    if (cookie == nullptr) {
        return E_INVALIDARG;
    }
    ++g_multithreadedUses;
    // Nothing is kept of one use but that there is one more.
    *cookie = reinterpret_cast<CO_MTA_USAGE_COOKIE>(&g_multithreadedUses);
    return S_OK;
}

HRESULT WINAPI CoDecrementMTAUsage(CO_MTA_USAGE_COOKIE cookie) {
    if (cookie != reinterpret_cast<CO_MTA_USAGE_COOKIE>(&g_multithreadedUses) || g_multithreadedUses == 0) {
        return E_INVALIDARG;
    }
    --g_multithreadedUses;
    return S_OK;
}
