// Values below HKEY_LOCAL_MACHINE for the length of one test.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace quillet::tests {

inline constexpr wchar_t kLum2Key[] = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2";
inline constexpr wchar_t kProvidersKey[] = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2\\WMI\\Providers";
inline constexpr wchar_t kOrbaKey[] = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\ORBA";

/// Changes the registry and puts everything back, in reverse order, when it goes. Each operation raises
/// std::runtime_error when the registry refuses it.
class RegistryScope {
  public:
    RegistryScope() = default;
    ~RegistryScope();
    RegistryScope(const RegistryScope&) = delete;
    RegistryScope& operator=(const RegistryScope&) = delete;

    void SetString(const std::wstring& subKey, const std::wstring& name, const std::wstring& value);
    void SetDword(const std::wstring& subKey, const std::wstring& name, DWORD value);
    /// Any type and any bytes, for values that are not as they should be.
    void SetValue(const std::wstring& subKey, const std::wstring& name, DWORD type, const void* data,
                  std::size_t bytes);
    /// Makes sure that the key is there.
    void CreateKey(const std::wstring& subKey);
    void RemoveValue(const std::wstring& subKey, const std::wstring& name);
    /// Removes a key and all below it. Of its values, those that this system reads come back in the end.
    void RemoveKey(const std::wstring& subKey);

  private:
    void RestoreLater(const std::wstring& subKey, const std::wstring& name);
    void SaveTree(const std::wstring& subKey);

    std::vector<std::function<void()>> m_undo;
};

} // namespace quillet::tests
