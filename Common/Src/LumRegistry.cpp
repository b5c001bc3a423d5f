// Registry reads that trust nothing about the value.
#include "LumRegistry.h"

#include <algorithm>

LumRegistryKey::LumRegistryKey(const wchar_t* path) noexcept {
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &m_key) != ERROR_SUCCESS) {
        m_key = nullptr;
    }
}

LumRegistryKey::~LumRegistryKey() {
    if (m_key != nullptr) {
        RegCloseKey(m_key);
    }
}

bool LumRegistryKey::Has(const wchar_t* name) const noexcept {
    return m_key != nullptr &&
           RegQueryValueExW(m_key, name, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

std::optional<DWORD> LumRegistryKey::ReadFourBytes(const wchar_t* name) const noexcept {
    DWORD value = 0;
    DWORD size = sizeof value;
    if (m_key == nullptr || RegQueryValueExW(m_key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&value),
                                             &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    return value;
}

std::optional<DWORD> LumRegistryKey::ReadDword(const wchar_t* name) const noexcept {
    DWORD value = 0;
    DWORD type = 0;
    DWORD size = sizeof value;
    if (m_key == nullptr ||
        RegQueryValueExW(m_key, name, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size) !=
            ERROR_SUCCESS ||
        type != REG_DWORD || size != sizeof value) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::wstring> LumRegistryKey::ReadString(const wchar_t* name, std::size_t capacity) const {
    std::wstring text(capacity, L'\0');
    DWORD type = 0;
    auto size = static_cast<DWORD>(capacity * sizeof(wchar_t));
    if (m_key == nullptr ||
        RegQueryValueExW(m_key, name, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size) !=
            ERROR_SUCCESS ||
        (type != REG_SZ && type != REG_EXPAND_SZ)) {
        return std::nullopt;
    }
    // The stored terminator is not certain to be there, and may not be the only one.
    text.resize(size / sizeof(wchar_t));
    text.resize(std::min(text.size(), text.find(L'\0')));
    return text;
}
