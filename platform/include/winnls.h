// Languages and character conversion.
#pragma once

#include <windef.h>
#include <winnt.h>

#define CP_ACP 0u ///< UTF-8 on this host
#define CP_UTF8 65001u
#define MB_PRECOMPOSED 0x01u
#define MB_ERR_INVALID_CHARS 0x08u
#define WC_ERR_INVALID_CHARS 0x80u

#define MUI_LANGUAGE_ID 0x4u
#define MUI_LANGUAGE_NAME 0x8u

#define CSTR_LESS_THAN 1
#define CSTR_EQUAL 2
#define CSTR_GREATER_THAN 3

using UILANGUAGE_ENUMPROCW = BOOL(CALLBACK*)(LPWSTR language, LONG_PTR parameter);

#pragma GCC visibility push(default)

/// Calls `callback` with each language identifier as four hexadecimal digits, until it returns FALSE.
BOOL WINAPI EnumUILanguagesW(UILANGUAGE_ENUMPROCW callback, DWORD flags, LONG_PTR parameter);
LANGID WINAPI GetUserDefaultUILanguage() noexcept;
LANGID WINAPI GetSystemDefaultUILanguage() noexcept;
LCID WINAPI GetUserDefaultLCID() noexcept;

/// UTF-8 to wide text, for CP_UTF8 and CP_ACP. A length of -1 takes (and writes) the terminator; a size of 0
/// asks for the size.
int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int length, LPWSTR buffer, int size);
/// Wide text to UTF-8; `defaultChar` and `usedDefault` must be null, as Windows demands for UTF-8.
int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length, LPSTR buffer, int size,
                               LPCSTR defaultChar, LPBOOL usedDefault);

#define CSTR_LESS_THAN 1
#define CSTR_EQUAL 2
#define CSTR_GREATER_THAN 3
/// Compares by characters, in no language's order. A length of -1 takes the text up to its terminator.
/// @return one of the above; 0, with the last error set, for a null text or another negative length.
int WINAPI CompareStringOrdinal(LPCWSTR left, int leftLength, LPCWSTR right, int rightLength,
                                BOOL ignoreCase);
int WINAPI lstrcmpW(LPCWSTR left, LPCWSTR right);
int WINAPI lstrcmpiW(LPCWSTR left, LPCWSTR right);
int WINAPI lstrlenW(LPCWSTR text);

#pragma GCC visibility pop
