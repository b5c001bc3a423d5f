// The basic Windows types and calling-convention words, with their Windows sizes on any host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#define WINAPI
#define CALLBACK
#define APIENTRY
#define STDMETHODCALLTYPE
#define STDMETHODVCALLTYPE
#define STDAPICALLTYPE
#define __stdcall
#define __cdecl
#define CONST const
#define VOID void

#define __int64 long long
#define __int32 int

// LONG and DWORD stay 32 bits wide where `long` is not: code that keeps to these names behaves the same on
// every host, code that says `long` does not.
using BYTE = unsigned char;
using UCHAR = unsigned char;
using CHAR = char;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using INT32 = std::int32_t;
using UINT32 = std::uint32_t;
using LONG32 = std::int32_t;
using ULONG32 = std::uint32_t;
using INT64 = long long;
using UINT64 = unsigned long long;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using LONG64 = long long;
using ULONG64 = unsigned long long;
using DWORD64 = unsigned long long;
using DWORDLONG = unsigned long long;
using FLOAT = float;
using DOUBLE = double;
using BOOL = int;
using BOOLEAN = BYTE;
using WCHAR = wchar_t; ///< four bytes on this host, two on Windows
using TCHAR = wchar_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using SSIZE_T = std::ptrdiff_t;
using HRESULT = LONG;
using LSTATUS = LONG;
using LCID = DWORD;
using LANGID = WORD;
using ATOM = WORD;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;

using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using PBYTE = BYTE*;
using LPBYTE = BYTE*;
using LPCBYTE = const BYTE*;
using PWORD = WORD*;
using LPWORD = WORD*;
using PDWORD = DWORD*;
using LPDWORD = DWORD*;
using PLONG = LONG*;
using LPLONG = LONG*;
using PULONG = ULONG*;
using PBOOL = BOOL*;
using LPBOOL = BOOL*;
using PUINT = UINT*;
using PSTR = char*;
using LPSTR = char*;
using PCSTR = const char*;
using LPCSTR = const char*;
using PWSTR = WCHAR*;
using LPWSTR = WCHAR*;
using PWCHAR = WCHAR*;
using PCWSTR = const WCHAR*;
using LPCWSTR = const WCHAR*;
using LPTSTR = TCHAR*;
using LPCTSTR = const TCHAR*;

using HANDLE = void*;
using PHANDLE = HANDLE*;
using LPHANDLE = HANDLE*;
using HLOCAL = HANDLE;
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;
struct HWND__;
using HWND = HWND__*;
struct HKEY__;
using HKEY = HKEY__*;
using PHKEY = HKEY*;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif
#define MAX_PATH 260
#define TEXT(text) L##text
#define _T(text) L##text

#define LOWORD(value) (static_cast<WORD>(static_cast<DWORD_PTR>(value) & 0xffffu))
#define HIWORD(value) (static_cast<WORD>((static_cast<DWORD_PTR>(value) >> 16) & 0xffffu))
#define LOBYTE(value) (static_cast<BYTE>(static_cast<DWORD_PTR>(value) & 0xffu))
#define HIBYTE(value) (static_cast<BYTE>((static_cast<DWORD_PTR>(value) >> 8) & 0xffu))
#define MAKEWORD(low, high) (static_cast<WORD>(LOBYTE(low) | (static_cast<DWORD>(LOBYTE(high)) << 8)))
#define MAKELONG(low, high) (static_cast<LONG>(LOWORD(low) | (static_cast<DWORD>(LOWORD(high)) << 16)))

#define UNREFERENCED_PARAMETER(parameter) (static_cast<void>(parameter))

/// Element count of an array object; a pointer does not compile.
template <class T, std::size_t N>
constexpr std::size_t QuilletArrayCount(const T (&)[N]) noexcept {
    return N;
}
#define ARRAYSIZE(array) (QuilletArrayCount(array))
#define _countof(array) (QuilletArrayCount(array))

union LARGE_INTEGER {
    __extension__ struct {
        DWORD LowPart;
        LONG HighPart;
    };
    LONGLONG QuadPart;
};
using PLARGE_INTEGER = LARGE_INTEGER*;

union ULARGE_INTEGER {
    __extension__ struct {
        DWORD LowPart;
        DWORD HighPart;
    };
    ULONGLONG QuadPart;
};

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
