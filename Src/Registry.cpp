#include "Registry.h"

#include <vector>

RegistryKey::RegistryKey(const wchar_t* path) {
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &m_key) != ERROR_SUCCESS) {
        m_key = nullptr;
    }
}

RegistryKey::~RegistryKey() {
    if (m_key) {
        RegCloseKey(m_key);
    }
}

bool RegistryKey::Has(const wchar_t* value) const {
    return m_key && RegQueryValueExW(m_key, value, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

std::optional<DWORD> RegistryKey::Number(const wchar_t* value) const {
    DWORD number = 0;
    DWORD size = sizeof(number);
    if (!m_key || RegQueryValueExW(m_key, value, nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size) !=
                      ERROR_SUCCESS) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::wstring> RegistryKey::Text(const wchar_t* value, DWORD maximumBytes) const {
    std::vector<wchar_t> buffer(maximumBytes / sizeof(wchar_t) + 1);
    DWORD type = REG_NONE;
    DWORD size = maximumBytes;
    if (!m_key || RegQueryValueExW(m_key, value, nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()),
                                   &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    if (type != REG_SZ && type != REG_EXPAND_SZ) {
        return std::nullopt;
    }
    // The registry does not promise a terminator; the buffer's last character is one.
    return std::wstring(buffer.data());
}
