// The registry keys, below HKEY_LOCAL_MACHINE, that configure a session.
#pragma once

inline constexpr const wchar_t* kRegistryLum2 = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2";
inline constexpr const wchar_t* kRegistryProviders =
    L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\LUM2\\WMI\\Providers";
inline constexpr const wchar_t* kRegistryOrba = L"SOFTWARE\\MARLO\\NETWORK_SERVICES\\ORBA";
