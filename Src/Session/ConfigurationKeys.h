// The registry keys, below HKEY_LOCAL_MACHINE, that configure a session.
#pragma once

inline constexpr const wchar_t* REGISTRY_LUM2 = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2";
inline constexpr const wchar_t* REGISTRY_PROVIDERS =
    L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2\\WMI\\Providers";
inline constexpr const wchar_t* REGISTRY_ORBA = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\ORBA";
