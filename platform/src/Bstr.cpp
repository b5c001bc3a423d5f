// BSTR: the length in bytes stands in the four bytes before the text, a terminator behind it.
#include "Counters.h"

#include <windows.h>
#include <quillet-platform/TestHooks.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

// As long as what malloc aligns to, so that the text behind it is aligned too.
constexpr UINT kHeaderBytes = 16;
constexpr UINT kCharacterBytes = sizeof(OLECHAR);

struct ThreadAllocations {
    unsigned long made = 0;
    unsigned long failIn = 0;
};
thread_local ThreadAllocations g_allocations;
std::atomic<quillet::platform::FreedBstrObserver> g_freedObserver{nullptr};

bool MustFail() noexcept {
    ++g_allocations.made;
    return g_allocations.failIn != 0 && --g_allocations.failIn == 0;
}

char* BlockOf(BSTR text) noexcept {
    return reinterpret_cast<char*>(text) - kHeaderBytes;
}

void SetByteLength(char* block, UINT bytes) noexcept {
    std::memcpy(block + kHeaderBytes - sizeof bytes, &bytes, sizeof bytes);
}

bool TooLong(UINT length) noexcept {
    return length >= (~0u - kHeaderBytes - kCharacterBytes) / kCharacterBytes;
}

/// Bytes rounded up to whole characters.
std::size_t WholeCharacters(UINT bytes) noexcept {
    return (std::size_t{bytes} + sizeof(OLECHAR) - 1) / sizeof(OLECHAR) * sizeof(OLECHAR);
}

} // namespace

namespace quillet::platform {

unsigned long BstrAllocations() noexcept {
    return g_allocations.made;
}

void FailBstrAllocation(unsigned long nth) noexcept {
    g_allocations.failIn = nth;
}

void ObserveFreedBstrs(FreedBstrObserver observer) noexcept {
    g_freedObserver = observer;
}

} // namespace quillet::platform

BSTR WINAPI SysAllocStringByteLen(LPCSTR text, UINT bytes) {
    if (MustFail() || TooLong(bytes / kCharacterBytes)) {
        return nullptr;
    }
    // The last byte need not end a character. The terminator is a whole one all the same, so that those who
    // look for it find it within the block.
    const std::size_t contentBytes = WholeCharacters(bytes) + sizeof(OLECHAR);
    auto* const block = static_cast<char*>(std::malloc(kHeaderBytes + contentBytes));
    if (!block) {
        return nullptr;
    }
    std::memset(block, 0, kHeaderBytes);
    SetByteLength(block, bytes);
    char* const content = block + kHeaderBytes;
    if (text && bytes) {
        std::memcpy(content, text, bytes);
    }
    std::memset(content + bytes, 0, contentBytes - bytes);
    quillet::platform::g_counters.bstrs.Add(1);
    return reinterpret_cast<BSTR>(content);
}

BSTR WINAPI SysAllocStringLen(const OLECHAR* text, UINT length) {
    if (TooLong(length)) {
        MustFail();
        return nullptr;
    }
    return SysAllocStringByteLen(reinterpret_cast<LPCSTR>(text), length * kCharacterBytes);
}

BSTR WINAPI SysAllocString(const OLECHAR* text) {
    if (!text) {
        return nullptr;
    }
    const std::size_t length = std::wcslen(text);
    return SysAllocStringLen(text, length > ~0u ? ~0u : static_cast<UINT>(length));
}

INT WINAPI SysReAllocStringLen(BSTR* text, const OLECHAR* newText, UINT length) {
    if (!text) {
        return FALSE;
    }
    // The new text may be a part of the old one, which therefore goes last.
    const BSTR made = SysAllocStringLen(newText, length);
    if (!made) {
        return FALSE;
    }
    if (!newText && *text) {
        const UINT kept = SysStringLen(*text) < length ? SysStringLen(*text) : length;
        std::memcpy(made, *text, kept * sizeof(OLECHAR));
    }
    SysFreeString(*text);
    *text = made;
    return TRUE;
}

INT WINAPI SysReAllocString(BSTR* text, const OLECHAR* newText) {
    if (!text) {
        return FALSE;
    }
    if (!newText) {
        SysFreeString(*text);
        *text = nullptr;
        return TRUE;
    }
    const BSTR made = SysAllocString(newText);
    if (!made) {
        return FALSE;
    }
    SysFreeString(*text);
    *text = made;
    return TRUE;
}

void WINAPI SysFreeString(BSTR text) {
    if (!text) {
        return;
    }
    quillet::platform::g_counters.bstrs.Add(-1);
    if (const auto observer = g_freedObserver.load(std::memory_order_acquire)) {
        observer(text, SysStringByteLen(text));
    }
    std::free(BlockOf(text));
}

UINT WINAPI SysStringByteLen(BSTR text) {
    if (!text) {
        return 0;
    }
    UINT bytes = 0;
    std::memcpy(&bytes, BlockOf(text) + kHeaderBytes - sizeof bytes, sizeof bytes);
    return bytes;
}

UINT WINAPI SysStringLen(BSTR text) {
    return SysStringByteLen(text) / kCharacterBytes;
}
