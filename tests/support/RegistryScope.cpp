// The same calls on both hosts; natively they reach the process's own registry.
#include "RegistryScope.h"

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <utility>

namespace quillet::tests {

namespace {

/// Every value that this system reads, wherever it is.
constexpr std::array kKnownValues = {L"TRACE", L"InstalledDir", L"LCID", L"Namespace", L"ForcedLanguage"};

struct Value {
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

/// A key that closes itself.
class Key {
  public:
    Key() = default;
    Key(Key&& other) noexcept : m_key(std::exchange(other.m_key, nullptr)) {}
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    Key& operator=(Key&&) = delete;
    ~Key() {
        if (m_key != nullptr) {
            RegCloseKey(m_key);
        }
    }
    static Key Open(const std::wstring& subKey) {
        Key key;
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, subKey.c_str(), 0, KEY_ALL_ACCESS, &key.m_key) !=
            ERROR_SUCCESS) {
            key.m_key = nullptr;
        }
        return key;
    }
    HKEY Get() const noexcept { return m_key; }
    explicit operator bool() const noexcept { return m_key != nullptr; }

  private:
    HKEY m_key = nullptr;
};

void Require(LSTATUS status, const char* operation) {
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error(std::string(operation) + ": error " + std::to_string(status));
    }
}

std::optional<Value> Read(const Key& key, const std::wstring& name) {
    Value value;
    DWORD size = 0;
    if (!key ||
        RegQueryValueExW(key.Get(), name.c_str(), nullptr, &value.type, nullptr, &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    value.data.resize(size);
    Require(RegQueryValueExW(key.Get(), name.c_str(), nullptr, &value.type, value.data.data(), &size),
            "RegQueryValueEx");
    return value;
}

void Write(const std::wstring& subKey, const std::wstring& name, const Value& value) {
    Require(RegSetValueExW(Key::Open(subKey).Get(), name.c_str(), 0, value.type, value.data.data(),
                           static_cast<DWORD>(value.data.size())),
            "RegSetValueEx");
}

std::vector<std::wstring> SubKeys(const Key& key) {
    std::vector<std::wstring> names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[256];
        DWORD length = 256;
        if (RegEnumKeyExW(key.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

void CreateEmptyKey(const std::wstring& subKey) {
    HKEY key = nullptr;
    Require(RegCreateKeyExW(HKEY_LOCAL_MACHINE, subKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                            nullptr),
            "RegCreateKeyEx");
    RegCloseKey(key);
}

} // namespace

RegistryScope::~RegistryScope() {
    for (auto undo = m_undo.rbegin(); undo != m_undo.rend(); ++undo) {
        (*undo)();
    }
}

void RegistryScope::SetString(const std::wstring& subKey, const std::wstring& name,
                              const std::wstring& value) {
    SetValue(subKey, name, REG_SZ, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
}

void RegistryScope::SetDword(const std::wstring& subKey, const std::wstring& name, DWORD value) {
    SetValue(subKey, name, REG_DWORD, &value, sizeof value);
}

void RegistryScope::SetValue(const std::wstring& subKey, const std::wstring& name, DWORD type,
                             const void* data, std::size_t bytes) {
    CreateKey(subKey);
    RestoreLater(subKey, name);
    const BYTE* first = static_cast<const BYTE*>(data);
    Write(subKey, name, {type, std::vector<BYTE>(first, first + bytes)});
}

void RegistryScope::CreateKey(const std::wstring& subKey) {
    // The topmost key that is missing is the one to remove in the end, with all below it.
    std::size_t end = 0;
    do {
        end = subKey.find(L'\\', end + 1);
        const std::wstring ancestor = subKey.substr(0, end);
        if (!Key::Open(ancestor)) {
            CreateEmptyKey(subKey);
            m_undo.emplace_back([ancestor] { RegDeleteTreeW(HKEY_LOCAL_MACHINE, ancestor.c_str()); });
            return;
        }
    } while (end != std::wstring::npos);
}

void RegistryScope::RemoveValue(const std::wstring& subKey, const std::wstring& name) {
    const Key key = Key::Open(subKey);
    if (Read(key, name)) {
        RestoreLater(subKey, name);
        Require(RegDeleteValueW(key.Get(), name.c_str()), "RegDeleteValue");
    }
}

void RegistryScope::RemoveKey(const std::wstring& subKey) {
    if (Key::Open(subKey)) {
        SaveTree(subKey);
        Require(RegDeleteTreeW(HKEY_LOCAL_MACHINE, subKey.c_str()), "RegDeleteTree");
    }
}

void RegistryScope::RestoreLater(const std::wstring& subKey, const std::wstring& name) {
    const Key key = Key::Open(subKey);
    if (const std::optional<Value> before = Read(key, name)) {
        m_undo.emplace_back([subKey, name, value = *before] { Write(subKey, name, value); });
    } else {
        m_undo.emplace_back([subKey, name] {
            if (const Key restored = Key::Open(subKey)) {
                RegDeleteValueW(restored.Get(), name.c_str());
            }
        });
    }
}

void RegistryScope::SaveTree(const std::wstring& subKey) {
    const Key key = Key::Open(subKey);
    // Undone last to first: the values and the keys below are entered before the key that must exist for
    // them.
    for (const std::wstring& name : SubKeys(key)) {
        SaveTree(subKey + L'\\' + name);
    }
    for (const wchar_t* name : kKnownValues) {
        if (const std::optional<Value> value = Read(key, name)) {
            m_undo.emplace_back([subKey, name, saved = *value] { Write(subKey, name, saved); });
        }
    }
    m_undo.emplace_back([subKey] { CreateEmptyKey(subKey); });
}

} // namespace quillet::tests
