// What a process holds.
#include "window/Counts.h"

#include <windows.h>
#include <winternl.h>

#include <cstdint>
#include <vector>

namespace quillet::tests {

namespace {

struct HandleEntry {
    ULONG processId;
    BYTE type;
    BYTE flags;
    USHORT handle;
    void* object;
    ULONG access;
};

struct DrawingEntry {
    std::uint64_t object;
    USHORT processId;
    USHORT uses;
    USHORT generation;
    BYTE type;
    BYTE flags;
    std::uint64_t user;
};

BOOL CALLBACK CountOne(HWND, LPARAM count) {
    ++*reinterpret_cast<std::size_t*>(count);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM count) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == GetCurrentProcessId()) {
        CountOne(window, count);
        EnumChildWindows(window, CountOne, count);
    }
    return TRUE;
}

} // namespace

std::size_t CountHandles() {
    constexpr auto kAllHandles = SYSTEM_INFORMATION_CLASS(16);
    constexpr std::size_t kMost = 1U << 26;
    std::vector<BYTE> bytes(1U << 20);
    ULONG length = 0;
    while (NtQuerySystemInformation(kAllHandles, bytes.data(), ULONG(bytes.size()), &length) < 0) {
        if (bytes.size() >= kMost) {
            return 0;
        }
        bytes.resize(2 * bytes.size());
    }
    const ULONG count = *reinterpret_cast<const ULONG*>(bytes.data());
    const auto* entry = reinterpret_cast<const HandleEntry*>(bytes.data() + sizeof(void*));
    std::size_t ours = 0;
    for (ULONG number = 0; number < count; ++number, ++entry) {
        ours += entry->processId == GetCurrentProcessId() ? 1U : 0U;
    }
    return ours;
}

std::size_t CountDrawingObjects() {
    constexpr std::size_t kTable = 0xF8; // of the process environment block on 64 bits
    constexpr std::size_t kEntries = 0x10000;
    const auto* block = reinterpret_cast<const BYTE*>(NtCurrentTeb()->ProcessEnvironmentBlock);
    const auto* entry = *reinterpret_cast<const DrawingEntry* const*>(block + kTable);
    std::size_t ours = 0;
    for (std::size_t number = 0; entry != nullptr && number < kEntries; ++number, ++entry) {
        ours += entry->type != 0 ? 1U : 0U;
    }
    return ours;
}

std::size_t CountWindows() {
    std::size_t count = 0;
    EnumWindows(CountWithChildren, reinterpret_cast<LPARAM>(&count));
    return count;
}

} // namespace quillet::tests
