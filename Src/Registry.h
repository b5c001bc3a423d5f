// Reading configuration values under HKEY_LOCAL_MACHINE.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

inline constexpr const wchar_t* REGISTRY_LUM2 = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2";
inline constexpr const wchar_t* REGISTRY_PROVIDERS =
    L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2\\WMI\\Providers";
inline constexpr const wchar_t* REGISTRY_ORBA = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\ORBA";

/// A key opened for reading; closed with the object.
class RegistryKey {
  public:
    explicit RegistryKey(const wchar_t* path);
    ~RegistryKey();
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    /// Whether there is a value of this name, of any type and size.
    bool Has(const wchar_t* value) const;
    /// A value of at most four bytes, of any type.
    std::optional<DWORD> Number(const wchar_t* value) const;
    /// A text of at most so many bytes; anything else than text counts as missing.
    std::optional<std::wstring> Text(const wchar_t* value, DWORD maximumBytes) const;

  private:
    HKEY m_key = nullptr;
};
