// COM's task memory and the text form of GUIDs.
#include "Text.h"

#include <windows.h>
#include <objbase.h>

#include <cstdio>
#include <cstdlib>
#include <random>

void* WINAPI CoTaskMemAlloc(SIZE_T bytes) noexcept {
    return std::malloc(bytes ? bytes : 1);
}

void* WINAPI CoTaskMemRealloc(void* memory, SIZE_T bytes) noexcept {
    if (memory && bytes == 0) {
        std::free(memory);
        return nullptr;
    }
    return std::realloc(memory, bytes ? bytes : 1);
}

void WINAPI CoTaskMemFree(void* memory) noexcept {
    std::free(memory);
}

HRESULT WINAPI CoCreateGuid(GUID* guid) {
    if (!guid) {
        return E_INVALIDARG;
    }
    thread_local std::random_device random;
    guid->Data1 = random();
    guid->Data2 = static_cast<std::uint16_t>(random());
    // Version 4, variant 1: a random one.
    guid->Data3 = static_cast<std::uint16_t>((random() & 0x0fffu) | 0x4000u);
    for (std::uint8_t& byte : guid->Data4) {
        byte = static_cast<std::uint8_t>(random());
    }
    guid->Data4[0] = static_cast<std::uint8_t>((guid->Data4[0] & 0x3fu) | 0x80u);
    return S_OK;
}

int WINAPI StringFromGUID2(REFGUID guid, LPOLESTR buffer, int size) {
    constexpr int kLength = 39;
    if (!buffer || size < kLength) {
        return 0;
    }
    char text[kLength];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1,
                  static_cast<unsigned>(guid.Data2), static_cast<unsigned>(guid.Data3), guid.Data4[0],
                  guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6],
                  guid.Data4[7]);
    for (int i = 0; i < kLength; ++i) {
        buffer[i] = static_cast<wchar_t>(text[i]);
    }
    return kLength;
}

namespace {

bool ParseGuid(LPCOLESTR text, GUID& guid) {
    constexpr std::wstring_view kForm = L"{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    std::uint8_t bytes[16] = {};
    std::size_t digits = 0;
    std::size_t i = 0;
    for (; i < kForm.size(); ++i) {
        const wchar_t c = quillet::platform::FoldCase(text[i]);
        if (kForm[i] != L'x') {
            if (c != kForm[i]) {
                return false;
            }
            continue;
        }
        unsigned digit = 0;
        if (c >= L'0' && c <= L'9') {
            digit = static_cast<unsigned>(c - L'0');
        } else if (c >= L'a' && c <= L'f') {
            digit = static_cast<unsigned>(c - L'a') + 10;
        } else {
            return false;
        }
        const unsigned high = bytes[digits / 2];
        bytes[digits / 2] = static_cast<std::uint8_t>(high << 4 | digit);
        ++digits;
    }
    if (text[i] != L'\0') {
        return false;
    }
    guid.Data1 = static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
                 static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
    guid.Data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    guid.Data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    for (int b = 0; b < 8; ++b) {
        guid.Data4[b] = bytes[8 + b];
    }
    return true;
}

} // namespace

HRESULT WINAPI CLSIDFromString(LPCOLESTR text, CLSID* clsid) {
    if (!clsid) {
        return E_INVALIDARG;
    }
    *clsid = GUID_NULL;
    if (!text) {
        return S_OK;
    }
    return ParseGuid(text, *clsid) ? S_OK : CO_E_CLASSSTRING;
}

HRESULT WINAPI IIDFromString(LPCOLESTR text, IID* iid) {
    if (!iid) {
        return E_INVALIDARG;
    }
    *iid = GUID_NULL;
    if (!text) {
        return S_OK;
    }
    return ParseGuid(text, *iid) ? S_OK : CO_E_IIDSTRING;
}
