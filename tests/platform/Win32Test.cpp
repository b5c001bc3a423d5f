// Win32: registry, locks, last error, messages, clocks, environment, names, tokens, languages, text
// encodings.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

// --- Registry ------------------------------------------------------------------------------------------

constexpr wchar_t kRoot[] = L"Software\\QuilletPlatformTests";
constexpr DWORD kWin32Character = sizeof(wchar_t);

class RegistryTest : public testing::Test {
  protected:
    void SetUp() override {
        DWORD disposition = 0;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kRoot, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_ALL_ACCESS, nullptr, &m_key, &disposition),
                  ERROR_SUCCESS);
        EXPECT_EQ(disposition, DWORD{REG_CREATED_NEW_KEY});
    }
    void TearDown() override {
        EXPECT_EQ(RegCloseKey(m_key), ERROR_SUCCESS);
        EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, kRoot), ERROR_SUCCESS);
    }

    LSTATUS Set(const wchar_t* name, DWORD type, const void* data, DWORD size) {
        return RegSetValueExW(m_key, name, 0, type, static_cast<const BYTE*>(data), size);
    }
    LSTATUS SetText(const wchar_t* name, const std::wstring& text) {
        return Set(name, REG_SZ, text.c_str(), static_cast<DWORD>(text.size() + 1) * kWin32Character);
    }
    /// The bytes of a value; the type goes to m_type.
    std::vector<BYTE> Get(const wchar_t* name) {
        DWORD size = 0;
        EXPECT_EQ(RegQueryValueExW(m_key, name, nullptr, &m_type, nullptr, &size), ERROR_SUCCESS);
        std::vector<BYTE> data(size);
        EXPECT_EQ(RegQueryValueExW(m_key, name, nullptr, &m_type, data.data(), &size), ERROR_SUCCESS);
        return data;
    }

    HKEY m_key = nullptr;
    DWORD m_type = REG_NONE;
};

TEST_F(RegistryTest, ValuesComeBackAsTheyWereSet) {
    const std::wstring text = L"C:\\Program Files\\Marlo é";
    EXPECT_EQ(SetText(L"InstalledDir", text), ERROR_SUCCESS);
    std::vector<BYTE> data = Get(L"InstalledDir");
    EXPECT_EQ(m_type, DWORD{REG_SZ});
    ASSERT_EQ(data.size(), (text.size() + 1) * kWin32Character);
    EXPECT_EQ(std::memcmp(data.data(), text.c_str(), data.size()), 0);

    const DWORD number = 0x12345678;
    EXPECT_EQ(Set(L"TRACE", REG_DWORD, &number, sizeof number), ERROR_SUCCESS);
    DWORD read = 0;
    DWORD size = sizeof read;
    EXPECT_EQ(RegQueryValueExW(m_key, L"TRACE", nullptr, &m_type, reinterpret_cast<BYTE*>(&read), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(m_type, DWORD{REG_DWORD});
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(read, number);

    const BYTE bytes[] = {0, 1, 2, 255};
    EXPECT_EQ(Set(L"bytes", REG_BINARY, bytes, sizeof bytes), ERROR_SUCCESS);
    EXPECT_EQ(Get(L"bytes"), std::vector<BYTE>(bytes, bytes + sizeof bytes));
    EXPECT_EQ(m_type, DWORD{REG_BINARY});
    EXPECT_EQ(Set(L"nothing", REG_BINARY, nullptr, 0), ERROR_SUCCESS);
    EXPECT_TRUE(Get(L"nothing").empty());
}

TEST_F(RegistryTest, TheUnnamedValueIsAValueToo) {
    EXPECT_EQ(SetText(nullptr, L"default"), ERROR_SUCCESS);
    EXPECT_EQ(Get(L"").size(), 8 * kWin32Character);
    EXPECT_EQ(RegDeleteValueW(m_key, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(m_key, L"", nullptr, nullptr, nullptr, nullptr), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, NamesAreComparedWithoutRegardToCase) {
    EXPECT_EQ(SetText(L"Namespace", L"cimv2"), ERROR_SUCCESS);
    EXPECT_EQ(SetText(L"NAMESPACE", L"other"), ERROR_SUCCESS);
    EXPECT_EQ(Get(L"namespace").size(), 6 * kWin32Character);
    EXPECT_EQ(SetText(L"Größe", L"1"), ERROR_SUCCESS);
    EXPECT_EQ(Get(L"GRÖßE").size(), 2 * kWin32Character);
    HKEY sub = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\quilletPLATFORMtests", 0, KEY_READ, &sub),
              ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(sub), ERROR_SUCCESS);
}

TEST_F(RegistryTest, ShortBufferLearnsTheSize) {
    EXPECT_EQ(SetText(L"text", L"abc"), ERROR_SUCCESS);
    BYTE buffer[64] = {};
    DWORD size = kWin32Character;
    EXPECT_EQ(RegQueryValueExW(m_key, L"text", nullptr, nullptr, buffer, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 4 * kWin32Character);
    EXPECT_EQ(RegQueryValueExW(m_key, L"text", nullptr, nullptr, buffer, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExW(m_key, L"text", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
}

TEST_F(RegistryTest, WhatIsNotThereIsNotFound) {
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(m_key, L"missing", nullptr, nullptr, nullptr, &size), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteValueW(m_key, L"missing"), ERROR_FILE_NOT_FOUND);
    HKEY sub = nullptr;
    EXPECT_EQ(RegOpenKeyExW(m_key, L"missing", 0, KEY_READ, &sub), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegOpenKeyExW(m_key, L"missing\\deeper", 0, KEY_READ, &sub), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteKeyW(m_key, L"missing"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteTreeW(m_key, L"missing"), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, KeysAreMadeWithAllAboveThem) {
    HKEY sub = nullptr;
    DWORD disposition = 0;
    ASSERT_EQ(RegCreateKeyExW(m_key, L"one\\two\\three", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub,
                              &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, DWORD{REG_CREATED_NEW_KEY});
    EXPECT_EQ(RegCloseKey(sub), ERROR_SUCCESS);
    ASSERT_EQ(RegCreateKeyExW(m_key, L"one\\two", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, &disposition),
              ERROR_SUCCESS);
    EXPECT_EQ(disposition, DWORD{REG_OPENED_EXISTING_KEY});
    EXPECT_EQ(RegCloseKey(sub), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyW(m_key, L"one"), ERROR_ACCESS_DENIED) << "there are keys below";
    EXPECT_EQ(RegDeleteKeyW(m_key, L"one\\two\\three"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteTreeW(m_key, L"one"), ERROR_SUCCESS);
    EXPECT_EQ(RegOpenKeyExW(m_key, L"one", 0, KEY_READ, &sub), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryTest, SubKeysAreEnumerated) {
    for (const wchar_t* name : {L"Beta", L"alpha", L"Gamma"}) {
        HKEY sub = nullptr;
        ASSERT_EQ(RegCreateKeyExW(m_key, name, 0, nullptr, 0, KEY_READ, nullptr, &sub, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegCloseKey(sub), ERROR_SUCCESS);
    }
    std::vector<std::wstring> names;
    wchar_t name[16];
    DWORD length = 16;
    for (DWORD i = 0;
         RegEnumKeyExW(m_key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = 16) {
        EXPECT_EQ(length, std::wcslen(name));
        names.emplace_back(name);
    }
    EXPECT_EQ(names, (std::vector<std::wstring>{L"alpha", L"Beta", L"Gamma"}));
    length = 16;
    EXPECT_EQ(RegEnumKeyExW(m_key, 3, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_NO_MORE_ITEMS);
    length = 5;
    EXPECT_EQ(RegEnumKeyExW(m_key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA)
        << "no room for the terminator";
}

TEST_F(RegistryTest, AHandleAllowsWhatItWasOpenedFor) {
    EXPECT_EQ(SetText(L"text", L"abc"), ERROR_SUCCESS);
    HKEY reader = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kRoot, 0, KEY_READ, &reader), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(reader, L"text", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    const BYTE byte = 1;
    EXPECT_EQ(RegSetValueExW(reader, L"text", 0, REG_BINARY, &byte, 1), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueW(reader, L"text"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegCloseKey(reader), ERROR_SUCCESS);
    HKEY writer = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kRoot, 0, KEY_SET_VALUE, &writer), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(writer, L"text", nullptr, nullptr, nullptr, nullptr), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegSetValueExW(writer, L"text", 0, REG_BINARY, &byte, 1), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(writer), ERROR_SUCCESS);
}

TEST_F(RegistryTest, ADeletedKeyIsDeadForItsHandles) {
    HKEY sub = nullptr;
    ASSERT_EQ(RegCreateKeyExW(m_key, L"doomed", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyW(m_key, L"doomed"), ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExW(sub, L"x", nullptr, nullptr, nullptr, &size), ERROR_KEY_DELETED);
    EXPECT_EQ(RegCloseKey(sub), ERROR_SUCCESS);
}

TEST_F(RegistryTest, BadHandlesAndPathsAreRefused) {
    HKEY sub = nullptr;
    EXPECT_EQ(RegOpenKeyExW(nullptr, kRoot, 0, KEY_READ, &sub), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"\\Software", 0, KEY_READ, &sub), ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
    EXPECT_EQ(RegOpenKeyExW(m_key, nullptr, 0, KEY_READ, &sub), ERROR_SUCCESS) << "the key itself";
    EXPECT_EQ(RegCloseKey(sub), ERROR_SUCCESS);
}

// --- Locks ---------------------------------------------------------------------------------------------

TEST(CriticalSectionsTest, AreReentrantAndKeepOthersOut) {
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    EnterCriticalSection(&section);
    const auto othersGetIn = [&section] {
        bool entered = false;
        std::thread([&] {
            entered = TryEnterCriticalSection(&section) != FALSE;
            if (entered) {
                LeaveCriticalSection(&section);
            }
        }).join();
        return entered;
    };
    EXPECT_FALSE(othersGetIn());
    LeaveCriticalSection(&section);
    LeaveCriticalSection(&section);
    EXPECT_FALSE(othersGetIn()) << "entered three times, left twice";
    LeaveCriticalSection(&section);
    EXPECT_TRUE(othersGetIn());
    DeleteCriticalSection(&section);
}

TEST(CriticalSectionsTest, WithSpinCountAreTheSame) {
    CRITICAL_SECTION section;
    ASSERT_TRUE(InitializeCriticalSectionAndSpinCount(&section, 4000));
    EnterCriticalSection(&section);
    EnterCriticalSection(&section);
    LeaveCriticalSection(&section);
    LeaveCriticalSection(&section);
    DeleteCriticalSection(&section);
}

TEST(SharedLocksTest, LetReadersInTogetherAndWritersAlone) {
    SRWLOCK lock = SRWLOCK_INIT;
    AcquireSRWLockShared(&lock);
    std::thread([&lock] {
        AcquireSRWLockShared(&lock);
        ReleaseSRWLockShared(&lock);
    }).join(); // it would never end if readers kept each other out
    std::atomic<bool> wrote = false;
    std::thread writer([&] {
        AcquireSRWLockExclusive(&lock);
        wrote = true;
        ReleaseSRWLockExclusive(&lock);
    });
    Sleep(20);
    EXPECT_FALSE(wrote) << "beside a reader";
    ReleaseSRWLockShared(&lock);
    writer.join();
    EXPECT_TRUE(wrote);
}

TEST(InterlockedTest, CountersReturnTheNewValueAndExchangesTheOld) {
    LONG value = 5;
    EXPECT_EQ(InterlockedIncrement(&value), 6);
    EXPECT_EQ(InterlockedDecrement(&value), 5);
    EXPECT_EQ(InterlockedExchange(&value, 9), 5);
    EXPECT_EQ(InterlockedCompareExchange(&value, 1, 8), 9);
    EXPECT_EQ(value, 9);
    EXPECT_EQ(InterlockedCompareExchange(&value, 1, 9), 9);
    EXPECT_EQ(value, 1);
}

// --- Errors --------------------------------------------------------------------------------------------

TEST(LastErrorTest, IsEachThreadsOwn) {
    // Between the two steps the first thread calls nothing that could set an error of its own.
    std::atomic<int> step{0};
    std::thread other([&step] {
        while (step != 1) {
        }
        SetLastError(99);
        EXPECT_EQ(GetLastError(), 99u);
        step = 2;
    });
    SetLastError(1234);
    step = 1;
    while (step != 2) {
    }
    const DWORD mine = GetLastError();
    other.join();
    EXPECT_EQ(mine, 1234u);
}

TEST(FormatMessageTest, GivesTheTextOfACode) {
    for (const DWORD code :
         {DWORD{ERROR_FILE_NOT_FOUND}, DWORD{ERROR_ACCESS_DENIED}, static_cast<DWORD>(E_OUTOFMEMORY)}) {
        wchar_t* text = nullptr;
        const DWORD length = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                                FORMAT_MESSAGE_IGNORE_INSERTS,
                                            nullptr, code, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
        ASSERT_GT(length, 3u) << code;
        const std::wstring message(text, length);
        EXPECT_EQ(text[length], L'\0');
        EXPECT_EQ(message.substr(length - 2), L"\r\n");
        EXPECT_EQ(LocalFree(text), nullptr);

        wchar_t buffer[256];
        EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                 buffer, 256, nullptr),
                  length);
        EXPECT_EQ(buffer, message);
        EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                 buffer, 3, nullptr),
                  0u);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    }
}

TEST(FormatMessageTest, UnknownCodeHasNoText) {
    wchar_t buffer[64];
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, 0x8fff1234u,
                             0, buffer, 64, nullptr),
              0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MR_MID_NOT_FOUND});
}

TEST(LocalMemoryTest, IsZeroedWhenAsked) {
    auto* const memory = static_cast<BYTE*>(LocalAlloc(LPTR, 64));
    ASSERT_NE(memory, nullptr);
    EXPECT_EQ(std::count(memory, memory + 64, BYTE{0}), 64);
    EXPECT_EQ(LocalFree(memory), nullptr);
    EXPECT_EQ(LocalFree(nullptr), nullptr);
}

// --- Clocks --------------------------------------------------------------------------------------------

TEST(ClocksTest, LocalTimeIsACalendarTime) {
    SYSTEMTIME time = {};
    GetLocalTime(&time);
    EXPECT_GE(time.wYear, 2020);
    EXPECT_GE(time.wMonth, 1);
    EXPECT_LE(time.wMonth, 12);
    EXPECT_GE(time.wDay, 1);
    EXPECT_LE(time.wDay, 31);
    EXPECT_LE(time.wDayOfWeek, 6);
    EXPECT_LE(time.wHour, 23);
    EXPECT_LE(time.wMinute, 59);
    EXPECT_LE(time.wSecond, 60);
    EXPECT_LE(time.wMilliseconds, 999);
}

TEST(ClocksTest, CounterRunsForward) {
    LARGE_INTEGER frequency = {};
    LARGE_INTEGER before = {};
    LARGE_INTEGER after = {};
    ASSERT_TRUE(QueryPerformanceFrequency(&frequency));
    ASSERT_GT(frequency.QuadPart, 0);
    ASSERT_TRUE(QueryPerformanceCounter(&before));
    const ULONGLONG ticks = GetTickCount64();
    Sleep(20);
    ASSERT_TRUE(QueryPerformanceCounter(&after));
    const auto milliseconds = (after.QuadPart - before.QuadPart) * 1000 / frequency.QuadPart;
    EXPECT_GE(milliseconds, 15);
    EXPECT_LT(milliseconds, 60000);
    EXPECT_GE(GetTickCount64(), ticks);
}

// --- Environment and names -----------------------------------------------------------------------------

std::wstring Variable(const wchar_t* name) {
    wchar_t value[512];
    const DWORD length = GetEnvironmentVariableW(name, value, 512);
    return {value, length < 512 ? length : 0};
}

TEST(EnvironmentTest, VariablesAreSetReadAndTakenAway) {
    EXPECT_TRUE(SetEnvironmentVariableW(L"QuilletPlatformTest", L"wert é"));
    EXPECT_EQ(Variable(L"QuilletPlatformTest"), L"wert é");
    EXPECT_EQ(Variable(L"QUILLETPLATFORMTEST"), L"wert é") << "names have no case";
    wchar_t small[4];
    EXPECT_EQ(GetEnvironmentVariableW(L"QuilletPlatformTest", small, 4), 7u) << "room with the terminator";
    EXPECT_EQ(GetEnvironmentVariableW(L"QuilletPlatformTest", nullptr, 0), 7u);
    EXPECT_TRUE(SetEnvironmentVariableW(L"quilletplatformtest", L"changed"));
    EXPECT_EQ(Variable(L"QuilletPlatformTest"), L"changed");
    EXPECT_TRUE(SetEnvironmentVariableW(L"QuilletPlatformTest", nullptr));
    EXPECT_EQ(GetEnvironmentVariableW(L"QuilletPlatformTest", small, 4), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ENVVAR_NOT_FOUND});
}

TEST(EnvironmentTest, TempIsAlwaysSet) {
    EXPECT_FALSE(Variable(L"Temp").empty());
    EXPECT_FALSE(Variable(L"TMP").empty());
}

TEST(NamesTest, ProgramPathIsCutToTheBuffer) {
    wchar_t path[1024];
    const DWORD length = GetModuleFileNameW(nullptr, path, 1024);
    ASSERT_GT(length, 4u);
    ASSERT_LT(length, 1024u);
    EXPECT_EQ(path[length], L'\0');
    EXPECT_NE(std::wstring(path).find(L"platform_semantics_tests"), std::wstring::npos);
    wchar_t cut[6] = L"xxxxx";
    EXPECT_EQ(GetModuleFileNameW(nullptr, cut, 5), 5u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(std::wstring(cut, 4), std::wstring(path, 4));
}

TEST(NamesTest, ComputerNameIsShortAndInCapitals) {
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(name, &size));
    EXPECT_EQ(size, std::wcslen(name));
    ASSERT_GE(size, 1u);
    EXPECT_EQ(std::wstring(name).find_first_of(L"abcdefghijklmnopqrstuvwxyz."), std::wstring::npos);
    DWORD tooSmall = 1;
    EXPECT_FALSE(GetComputerNameW(name, &tooSmall));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BUFFER_OVERFLOW});
    EXPECT_EQ(tooSmall, size + 1);
}

TEST(NamesTest, VersionHasTwoForms) {
    OSVERSIONINFOEXW extended = {};
    extended.dwOSVersionInfoSize = sizeof extended;
    ASSERT_TRUE(GetVersionExW(reinterpret_cast<LPOSVERSIONINFOW>(&extended)));
    OSVERSIONINFOW basic = {};
    basic.dwOSVersionInfoSize = sizeof basic;
    ASSERT_TRUE(GetVersionExW(&basic));
    EXPECT_EQ(basic.dwMajorVersion, extended.dwMajorVersion);
    EXPECT_EQ(basic.dwMinorVersion, extended.dwMinorVersion);
    EXPECT_EQ(basic.dwPlatformId, DWORD{VER_PLATFORM_WIN32_NT});
    EXPECT_GE(basic.dwMajorVersion, 5u);
    EXPECT_NE(extended.wProductType, 0);
    basic.dwOSVersionInfoSize = 7;
    EXPECT_FALSE(GetVersionExW(&basic));
}

TEST(NamesTest, ProcessAndThreadHaveNumbers) {
    EXPECT_NE(GetCurrentProcessId(), 0u);
    const DWORD mine = GetCurrentThreadId();
    EXPECT_EQ(GetCurrentThreadId(), mine);
    DWORD other = mine;
    std::thread([&other] { other = GetCurrentThreadId(); }).join();
    EXPECT_NE(other, mine);
}

// --- Tokens --------------------------------------------------------------------------------------------

TEST(TokensTest, PrivilegesAreListedAndEnabled) {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_ADJUST_PRIVILEGES, &token));
    DWORD size = 0;
    EXPECT_FALSE(GetTokenInformation(token, TokenPrivileges, nullptr, 0, &size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    ASSERT_GT(size, sizeof(DWORD));
    std::vector<std::uint64_t> storage(size / sizeof(std::uint64_t) + 1);
    auto* const list = reinterpret_cast<PTOKEN_PRIVILEGES>(storage.data());
    ASSERT_TRUE(GetTokenInformation(token, TokenPrivileges, list, size, &size));
    ASSERT_GT(list->PrivilegeCount, 0u);
    EXPECT_EQ(size, sizeof(DWORD) + list->PrivilegeCount * sizeof(LUID_AND_ATTRIBUTES));
    LUID_AND_ATTRIBUTES* const entries = list->Privileges;
    for (DWORD i = 0; i < list->PrivilegeCount; ++i) {
        entries[i].Attributes = SE_PRIVILEGE_ENABLED;
    }
    ASSERT_TRUE(AdjustTokenPrivileges(token, FALSE, list, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(GetTokenInformation(token, TokenPrivileges, list, size, &size));
    for (DWORD i = 0; i < list->PrivilegeCount; ++i) {
        EXPECT_NE(entries[i].Attributes & SE_PRIVILEGE_ENABLED, 0u) << entries[i].Luid.LowPart;
    }
    EXPECT_TRUE(CloseHandle(token));
}

TEST(TokensTest, PrivilegeThatIsNotHeldIsReportedInTheLastError) {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token));
    TOKEN_PRIVILEGES unknown = {};
    unknown.PrivilegeCount = 1;
    unknown.Privileges[0].Luid.LowPart = 0x7777;
    unknown.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    SetLastError(0);
    EXPECT_TRUE(AdjustTokenPrivileges(token, FALSE, &unknown, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ALL_ASSIGNED});
    EXPECT_TRUE(CloseHandle(token));
}

TEST(TokensTest, AHandleAllowsWhatItWasOpenedFor) {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    TOKEN_PRIVILEGES none = {};
    EXPECT_FALSE(AdjustTokenPrivileges(token, FALSE, &none, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(CloseHandle(token));
}

// --- Languages and encodings ---------------------------------------------------------------------------

BOOL CALLBACK CollectLanguage(LPWSTR language, LONG_PTR parameter) {
    auto& languages = *reinterpret_cast<std::vector<std::wstring>*>(parameter);
    languages.emplace_back(language);
    return languages.size() < 1;
}

TEST(LanguagesTest, AreOfferedAsFourDigitsUntilTheCallerHasEnough) {
    std::vector<std::wstring> languages;
    EXPECT_TRUE(EnumUILanguagesW(CollectLanguage, 0, reinterpret_cast<LONG_PTR>(&languages)));
    ASSERT_EQ(languages.size(), 1u);
    EXPECT_EQ(languages[0].size(), 4u);
    EXPECT_EQ(languages[0].find_first_not_of(L"0123456789abcdefABCDEF"), std::wstring::npos);
}

TEST(LanguagesTest, BadArgumentsAreRefused) {
    std::vector<std::wstring> languages;
    EXPECT_FALSE(EnumUILanguagesW(nullptr, 0, 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_FALSE(EnumUILanguagesW(CollectLanguage, 0x8000, reinterpret_cast<LONG_PTR>(&languages)));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FLAGS});
    EXPECT_TRUE(languages.empty());
    EXPECT_NE(GetUserDefaultUILanguage(), 0);
}

TEST(EncodingsTest, Utf8GoesBothWays) {
    const std::string narrow = "a\xc3\xa9\xe2\x82\xac\xf0\x9f\x94\x8c";
    const std::wstring wide = L"a\u00e9\u20ac\U0001f50c";
    wchar_t buffer[16];
    const int bytes = static_cast<int>(narrow.size());
    int length = MultiByteToWideChar(CP_UTF8, 0, narrow.data(), bytes, nullptr, 0);
    EXPECT_EQ(length, static_cast<int>(wide.size()));
    length = MultiByteToWideChar(CP_UTF8, 0, narrow.data(), bytes, buffer, 16);
    EXPECT_EQ(std::wstring(buffer, static_cast<std::size_t>(length)), wide);
    char back[32];
    length = WideCharToMultiByte(CP_UTF8, 0, wide.c_str(), -1, back, 32, nullptr, nullptr);
    EXPECT_EQ(length, bytes + 1) << "the terminator counts";
    EXPECT_EQ(back, narrow);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, narrow.data(), bytes, buffer, 2), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST(EncodingsTest, IllFormedUtf8IsRefusedOnlyWhenAsked) {
    wchar_t buffer[16];
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xff", 2, buffer, 16), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_UNICODE_TRANSLATION});
    ASSERT_EQ(MultiByteToWideChar(CP_UTF8, 0, "a\xff", 2, buffer, 16), 2);
    EXPECT_EQ(buffer[1], L'\xfffd');
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "a", 0, buffer, 16), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(EncodingsTest, WideTextsCompare) {
    EXPECT_EQ(lstrlenW(L"four"), 4);
    EXPECT_EQ(lstrlenW(nullptr), 0);
    EXPECT_EQ(lstrcmpiW(L"Adapter", L"aDAPTER"), 0);
    EXPECT_EQ(lstrcmpW(L"a", L"a"), 0);
    EXPECT_NE(lstrcmpW(L"a", L"b"), 0);
}

TEST(EncodingsTest, WideTextsCompareByTheirCharacters) {
    EXPECT_EQ(CompareStringOrdinal(L"B\u00fcro", -1, L"b\u00dcRO", -1, TRUE), CSTR_EQUAL);
    EXPECT_NE(CompareStringOrdinal(L"B\u00fcro", -1, L"b\u00dcRO", -1, FALSE), CSTR_EQUAL);
    EXPECT_EQ(CompareStringOrdinal(L"a", -1, L"b", -1, TRUE), CSTR_LESS_THAN);
    EXPECT_EQ(CompareStringOrdinal(L"b", -1, L"a", -1, FALSE), CSTR_GREATER_THAN);
    EXPECT_EQ(CompareStringOrdinal(L"ab", -1, L"a", -1, FALSE), CSTR_GREATER_THAN);
    EXPECT_EQ(CompareStringOrdinal(L"abc", 2, L"abd", 2, FALSE), CSTR_EQUAL);
    EXPECT_EQ(CompareStringOrdinal(L"", 0, L"", -1, TRUE), CSTR_EQUAL);
    EXPECT_EQ(CompareStringOrdinal(nullptr, 0, L"", 0, TRUE), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

} // namespace
