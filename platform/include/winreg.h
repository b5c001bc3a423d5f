// The registry calls, over a hive in memory that is filled once from the export file named by the
// environment variable QUILLET_REGISTRY.
#pragma once

#include <windef.h>
#include <winnt.h>

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000000u)))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000001u)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000002u)))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000003u)))
#define HKEY_CURRENT_CONFIG (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000005u)))

using REGSAM = DWORD;
struct SECURITY_ATTRIBUTES;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

#pragma GCC visibility push(default)

/// Opens an existing key; names are compared without regard to case.
/// @return ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, ERROR_INVALID_HANDLE, ERROR_KEY_DELETED or
///         ERROR_BAD_PATHNAME (a leading backslash).
LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options,
                               REGSAM access, LPSECURITY_ATTRIBUTES attributes, PHKEY result,
                               LPDWORD disposition);
/// Reads a value. Sizes are in bytes; text is the host's wchar_t, so one character is sizeof(wchar_t) bytes.
/// A null buffer learns the size; one too small gives ERROR_MORE_DATA and the size.
LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size);
LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size);
LSTATUS WINAPI RegDeleteValueW(HKEY key, LPCWSTR name);
/// Deletes a key without sub-keys; one with sub-keys gives ERROR_ACCESS_DENIED.
LSTATUS WINAPI RegDeleteKeyW(HKEY key, LPCWSTR subKey);
/// Deletes a key with all below it; with a null sub-key only what is below the key itself, and its values.
LSTATUS WINAPI RegDeleteTreeW(HKEY key, LPCWSTR subKey);
LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved,
                             LPWSTR keyClass, LPDWORD classLength, FILETIME* lastWrite);
LSTATUS WINAPI RegCloseKey(HKEY key);

#pragma GCC visibility pop
