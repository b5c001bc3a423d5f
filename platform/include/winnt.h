// Access rights, languages, process tokens and version structures.
#pragma once

#include <windef.h>

#define DELETE_ACCESS_RIGHT 0x00010000u
#define READ_CONTROL 0x00020000u
#define SYNCHRONIZE 0x00100000u
#define STANDARD_RIGHTS_REQUIRED 0x000f0000u
#define STANDARD_RIGHTS_READ READ_CONTROL
#define STANDARD_RIGHTS_WRITE READ_CONTROL
#define STANDARD_RIGHTS_ALL 0x001f0000u
#define MAXIMUM_ALLOWED 0x02000000u

// --- Registry rights and value types -------------------------------------------------------------------
#define KEY_QUERY_VALUE 0x0001u
#define KEY_SET_VALUE 0x0002u
#define KEY_CREATE_SUB_KEY 0x0004u
#define KEY_ENUMERATE_SUB_KEYS 0x0008u
#define KEY_NOTIFY 0x0010u
#define KEY_CREATE_LINK 0x0020u
#define KEY_WOW64_64KEY 0x0100u
#define KEY_WOW64_32KEY 0x0200u
#define KEY_READ 0x20019u
#define KEY_WRITE 0x20006u
#define KEY_EXECUTE KEY_READ
#define KEY_ALL_ACCESS 0xf003fu

#define REG_NONE 0u
#define REG_SZ 1u
#define REG_EXPAND_SZ 2u
#define REG_BINARY 3u
#define REG_DWORD 4u
#define REG_DWORD_LITTLE_ENDIAN 4u
#define REG_DWORD_BIG_ENDIAN 5u
#define REG_LINK 6u
#define REG_MULTI_SZ 7u
#define REG_QWORD 11u

#define REG_OPTION_NON_VOLATILE 0u
#define REG_OPTION_VOLATILE 1u
#define REG_CREATED_NEW_KEY 1u
#define REG_OPENED_EXISTING_KEY 2u

// --- Languages -----------------------------------------------------------------------------------------
#define MAKELANGID(primary, sub)                                                                             \
    (static_cast<WORD>((static_cast<DWORD>(sub) << 10) | static_cast<WORD>(primary)))
#define PRIMARYLANGID(language) (static_cast<WORD>(static_cast<WORD>(language) & 0x3ffu))
#define SUBLANGID(language) (static_cast<WORD>(static_cast<WORD>(language) >> 10))
#define MAKELCID(language, sort)                                                                             \
    (static_cast<DWORD>((static_cast<DWORD>(sort) << 16) | static_cast<WORD>(language)))
#define LANGIDFROMLCID(locale) (static_cast<WORD>(locale))

#define LANG_NEUTRAL 0x00
#define LANG_CHINESE 0x04
#define LANG_GERMAN 0x07
#define LANG_ENGLISH 0x09
#define LANG_SPANISH 0x0a
#define LANG_FRENCH 0x0c
#define LANG_ITALIAN 0x10
#define LANG_JAPANESE 0x11
#define LANG_KOREAN 0x12
#define LANG_PORTUGUESE 0x16
#define SUBLANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define SUBLANG_SYS_DEFAULT 0x02
#define SUBLANG_CHINESE_TRADITIONAL 0x01
#define SUBLANG_CHINESE_SIMPLIFIED 0x02
#define SUBLANG_CHINESE_HONGKONG 0x03
#define SUBLANG_ENGLISH_US 0x01
#define SUBLANG_PORTUGUESE_BRAZILIAN 0x01

#define LOCALE_NEUTRAL 0x0000u
#define LOCALE_INVARIANT 0x007fu
#define LOCALE_USER_DEFAULT 0x0400u
#define LOCALE_SYSTEM_DEFAULT 0x0800u

// --- Tokens --------------------------------------------------------------------------------------------
#define TOKEN_ASSIGN_PRIMARY 0x0001u
#define TOKEN_DUPLICATE 0x0002u
#define TOKEN_IMPERSONATE 0x0004u
#define TOKEN_QUERY 0x0008u
#define TOKEN_QUERY_SOURCE 0x0010u
#define TOKEN_ADJUST_PRIVILEGES 0x0020u
#define TOKEN_ADJUST_GROUPS 0x0040u
#define TOKEN_ADJUST_DEFAULT 0x0080u
#define TOKEN_ALL_ACCESS 0xf01ffu

#define SE_PRIVILEGE_ENABLED_BY_DEFAULT 0x00000001u
#define SE_PRIVILEGE_ENABLED 0x00000002u
#define SE_PRIVILEGE_REMOVED 0x00000004u

struct LUID {
    DWORD LowPart;
    LONG HighPart;
};
using PLUID = LUID*;

struct LUID_AND_ATTRIBUTES {
    LUID Luid;
    DWORD Attributes;
};
using PLUID_AND_ATTRIBUTES = LUID_AND_ATTRIBUTES*;

#define ANYSIZE_ARRAY 1
struct TOKEN_PRIVILEGES {
    DWORD PrivilegeCount;
    LUID_AND_ATTRIBUTES Privileges[ANYSIZE_ARRAY];
};
using PTOKEN_PRIVILEGES = TOKEN_PRIVILEGES*;

enum TOKEN_INFORMATION_CLASS {
    TokenUser = 1,
    TokenGroups = 2,
    TokenPrivileges = 3,
    TokenOwner = 4,
    TokenElevation = 20,
};

// --- Versions ------------------------------------------------------------------------------------------
#define VER_PLATFORM_WIN32s 0u
#define VER_PLATFORM_WIN32_WINDOWS 1u
#define VER_PLATFORM_WIN32_NT 2u
#define VER_NT_WORKSTATION 0x01
#define VER_NT_DOMAIN_CONTROLLER 0x02
#define VER_NT_SERVER 0x03

struct OSVERSIONINFOW {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
};
using POSVERSIONINFOW = OSVERSIONINFOW*;
using LPOSVERSIONINFOW = OSVERSIONINFOW*;
using OSVERSIONINFO = OSVERSIONINFOW;

struct OSVERSIONINFOEXW {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
    WORD wServicePackMajor;
    WORD wServicePackMinor;
    WORD wSuiteMask;
    BYTE wProductType;
    BYTE wReserved;
};
using POSVERSIONINFOEXW = OSVERSIONINFOEXW*;
using LPOSVERSIONINFOEXW = OSVERSIONINFOEXW*;
using OSVERSIONINFOEX = OSVERSIONINFOEXW;
