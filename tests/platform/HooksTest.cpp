// What stands for the parts of Windows that the host lacks, and the hooks that set it.
#include <quillet-platform/TestHooks.h>

#include "EnvironmentScope.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace quillet::platform;
using quillet::tests::EnvironmentScope;

class HooksTest : public testing::Test {
  protected:
    void SetUp() override { ResetHooks(); }
    void TearDown() override { ResetHooks(); }
};

// --- Strings -------------------------------------------------------------------------------------------

std::wstring lastFreed;
int freedBstrs = 0;

TEST_F(HooksTest, BstrsAreShownAsTheyAreWhenTheyAreFreed) {
    const auto look = [](const void* text, std::size_t bytes) {
        ++freedBstrs;
        lastFreed.assign(static_cast<const wchar_t*>(text), bytes / sizeof(wchar_t));
    };
    freedBstrs = 0;
    ObserveFreedBstrs(look);
    BSTR text = SysAllocString(L"secret");
    text[0] = L'S';
    SysFreeString(text);
    EXPECT_EQ(lastFreed, L"Secret");
    VARIANT variant;
    VariantInit(&variant);
    V_VT(&variant) = VT_BSTR;
    V_BSTR(&variant) = SysAllocStringLen(L"a\0b", 3);
    VariantClear(&variant);
    EXPECT_EQ(lastFreed.size(), 3u);
    SysFreeString(nullptr);
    EXPECT_EQ(freedBstrs, 2);
    ResetHooks();
    SysFreeString(SysAllocString(L"unseen"));
    EXPECT_EQ(freedBstrs, 2);
}

// --- Version -------------------------------------------------------------------------------------------

OSVERSIONINFOW BasicVersion() {
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    EXPECT_TRUE(GetVersionExW(&version));
    return version;
}

BOOL ExtendedVersion(OSVERSIONINFOEXW& version) {
    version = {};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExW(reinterpret_cast<LPOSVERSIONINFOW>(&version));
}

TEST_F(HooksTest, VersionIsSixOneUntilSet) {
    const OSVERSIONINFOW version = BasicVersion();
    EXPECT_EQ(version.dwMajorVersion, 6u);
    EXPECT_EQ(version.dwMinorVersion, 1u);
    EXPECT_EQ(version.dwPlatformId, DWORD{VER_PLATFORM_WIN32_NT});
    OSVERSIONINFOEXW extended;
    ASSERT_TRUE(ExtendedVersion(extended));
    EXPECT_EQ(extended.dwMajorVersion, 6u);
    EXPECT_EQ(extended.wProductType, VER_NT_WORKSTATION);
}

TEST_F(HooksTest, VersionCanBeAnOlderOne) {
    SetOsVersion(4, 10, VER_PLATFORM_WIN32_WINDOWS);
    const OSVERSIONINFOW version = BasicVersion();
    EXPECT_EQ(version.dwMajorVersion, 4u);
    EXPECT_EQ(version.dwMinorVersion, 10u);
    EXPECT_EQ(version.dwPlatformId, DWORD{VER_PLATFORM_WIN32_WINDOWS});
    ResetHooks();
    EXPECT_EQ(BasicVersion().dwMajorVersion, 6u);
}

TEST_F(HooksTest, ExtendedVersionCanFailAndTheBasicOneStay) {
    FailExtendedVersion(true);
    OSVERSIONINFOEXW extended;
    EXPECT_FALSE(ExtendedVersion(extended));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(BasicVersion().dwMajorVersion, 6u);
    FailExtendedVersion(false);
    EXPECT_TRUE(ExtendedVersion(extended));
}

TEST_F(HooksTest, VersionOfAnotherSizeIsRefused) {
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = 7;
    EXPECT_FALSE(GetVersionExW(&version));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

// --- Languages -----------------------------------------------------------------------------------------

struct Languages {
    std::vector<std::wstring> seen;
    std::size_t most = 100;
};

BOOL CALLBACK Collect(LPWSTR language, LONG_PTR parameter) {
    auto& languages = *reinterpret_cast<Languages*>(parameter);
    languages.seen.emplace_back(language);
    return languages.seen.size() < languages.most;
}

TEST_F(HooksTest, OneLanguageIsOfferedUntilSet) {
    Languages languages;
    EXPECT_TRUE(EnumUILanguagesW(Collect, MUI_LANGUAGE_ID, reinterpret_cast<LONG_PTR>(&languages)));
    EXPECT_EQ(languages.seen, std::vector<std::wstring>{L"0409"});
    EXPECT_EQ(GetUserDefaultUILanguage(), 0x0409);
    EXPECT_EQ(GetSystemDefaultUILanguage(), 0x0409);
    EXPECT_EQ(GetUserDefaultLCID(), 0x0409u);
}

TEST_F(HooksTest, LanguagesCanBeSetAndTheCallbackStopsThem) {
    SetUiLanguages({L"0407", L"0409", L"0411"}, 0x0411);
    Languages languages;
    EXPECT_TRUE(EnumUILanguagesW(Collect, 0, reinterpret_cast<LONG_PTR>(&languages)));
    EXPECT_EQ(languages.seen, (std::vector<std::wstring>{L"0407", L"0409", L"0411"}));
    EXPECT_EQ(GetUserDefaultUILanguage(), 0x0411);
    languages = {{}, 2};
    EXPECT_TRUE(EnumUILanguagesW(Collect, 0, reinterpret_cast<LONG_PTR>(&languages)));
    EXPECT_EQ(languages.seen.size(), 2u);
    SetUiLanguages({}, 0x0407);
    languages = {};
    EXPECT_TRUE(EnumUILanguagesW(Collect, 0, reinterpret_cast<LONG_PTR>(&languages)));
    EXPECT_TRUE(languages.seen.empty());
}

TEST_F(HooksTest, EnumerationOfLanguagesCanFail) {
    FailEnumUiLanguages(true);
    Languages languages;
    EXPECT_FALSE(EnumUILanguagesW(Collect, 0, reinterpret_cast<LONG_PTR>(&languages)));
    EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(languages.seen.empty());
}

// --- Tokens --------------------------------------------------------------------------------------------

std::vector<std::uint64_t> Privileges(HANDLE token) {
    DWORD size = 0;
    EXPECT_FALSE(GetTokenInformation(token, TokenPrivileges, nullptr, 0, &size));
    std::vector<std::uint64_t> storage(size / sizeof(std::uint64_t) + 1);
    EXPECT_TRUE(GetTokenInformation(token, TokenPrivileges, storage.data(), size, &size));
    return storage;
}

TEST_F(HooksTest, EnabledPrivilegesAreSeen) {
    EXPECT_TRUE(EnabledPrivileges().empty());
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_ADJUST_PRIVILEGES, &token));
    TOKEN_PRIVILEGES wanted = {};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0] = {{20, 0}, SE_PRIVILEGE_ENABLED};
    TOKEN_PRIVILEGES previous = {};
    DWORD size = 0;
    ASSERT_TRUE(AdjustTokenPrivileges(token, FALSE, &wanted, sizeof previous, &previous, &size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(EnabledPrivileges(), std::vector<DWORD>{20});
    EXPECT_EQ(previous.PrivilegeCount, 1u);
    EXPECT_EQ(previous.Privileges[0].Luid.LowPart, 20u);
    EXPECT_EQ(previous.Privileges[0].Attributes, 0u);
    ASSERT_TRUE(AdjustTokenPrivileges(token, FALSE, &previous, 0, nullptr, nullptr));
    EXPECT_TRUE(EnabledPrivileges().empty());
    ASSERT_TRUE(AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr));
    ASSERT_TRUE(AdjustTokenPrivileges(token, TRUE, nullptr, 0, nullptr, nullptr));
    EXPECT_TRUE(EnabledPrivileges().empty());
    EXPECT_TRUE(CloseHandle(token));
}

TEST_F(HooksTest, AllListedPrivilegesCanBeEnabledAtOnce) {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_ADJUST_PRIVILEGES, &token));
    std::vector<std::uint64_t> storage = Privileges(token);
    auto* const list = reinterpret_cast<PTOKEN_PRIVILEGES>(storage.data());
    LUID_AND_ATTRIBUTES* const entries = list->Privileges;
    for (DWORD i = 0; i < list->PrivilegeCount; ++i) {
        entries[i].Attributes |= SE_PRIVILEGE_ENABLED;
    }
    ASSERT_TRUE(AdjustTokenPrivileges(token, FALSE, list, 0, nullptr, nullptr));
    EXPECT_EQ(EnabledPrivileges().size(), list->PrivilegeCount);
    EXPECT_TRUE(CloseHandle(token));
}

TEST_F(HooksTest, EachTokenStepCanFail) {
    HANDLE token = nullptr;
    FailToken(TokenStep::Open);
    EXPECT_FALSE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(Live().tokens, 0);
    FailToken(TokenStep::Query);
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_ADJUST_PRIVILEGES, &token));
    DWORD size = 99;
    EXPECT_FALSE(GetTokenInformation(token, TokenPrivileges, nullptr, 0, &size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(size, 0u);
    FailToken(TokenStep::Adjust);
    EXPECT_FALSE(Privileges(token).empty());
    TOKEN_PRIVILEGES none = {};
    EXPECT_FALSE(AdjustTokenPrivileges(token, FALSE, &none, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    FailToken(TokenStep::None);
    EXPECT_TRUE(AdjustTokenPrivileges(token, FALSE, &none, 0, nullptr, nullptr));
    EXPECT_TRUE(CloseHandle(token));
}

TEST_F(HooksTest, TokensOfOtherHandlesAreRefused) {
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenProcessToken(nullptr, TOKEN_QUERY, &token));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    DWORD size = 0;
    EXPECT_FALSE(GetTokenInformation(nullptr, TokenPrivileges, nullptr, 0, &size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_FALSE(CloseHandle(nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_TRUE(CloseHandle(GetCurrentProcess())) << "it stands for the process and is no handle to close";
}

// --- Names and debugger --------------------------------------------------------------------------------

TEST_F(HooksTest, ComputerNameCanFail) {
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
    FailComputerName(true);
    EXPECT_FALSE(GetComputerNameW(name, &size));
    EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS});
    FailComputerName(false);
    EXPECT_TRUE(GetComputerNameW(name, &size));
    EXPECT_FALSE(GetComputerNameW(name, nullptr));
}

TEST_F(HooksTest, DebugOutputIsHeardOnlyBySomeoneWhoListens) {
    OutputDebugStringW(L"into the void");
    std::vector<std::wstring> heard;
    SetDebugOutput([&heard](const std::wstring& text) {
        heard.push_back(text);
        if (text == L"first") {
            OutputDebugStringW(L"second");
        }
    });
    OutputDebugStringW(L"first");
    OutputDebugStringW(nullptr);
    SetDebugOutput({});
    OutputDebugStringW(L"third");
    EXPECT_EQ(heard, (std::vector<std::wstring>{L"first", L"second"}));
}

TEST_F(HooksTest, ModuleFileNameCanBeAnyPath) {
    wchar_t path[64];
    SetModuleFileName(L"C:\\Windows\\System32\\Services.exe");
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 64), 32u);
    EXPECT_STREQ(path, L"C:\\Windows\\System32\\Services.exe");
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 33), 32u) << "just enough";
    wchar_t cut[6] = L"xxxxx";
    EXPECT_EQ(GetModuleFileNameW(nullptr, cut, 5), 5u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_STREQ(cut, L"C:\\W");
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 0), 0u);
    SetModuleFileName({});
    wchar_t real[1024];
    ASSERT_GT(GetModuleFileNameW(nullptr, real, 1024), 0u);
    EXPECT_NE(std::wstring(real).find(L"platform_native_tests"), std::wstring::npos);
    EXPECT_EQ(GetModuleFileNameW(reinterpret_cast<HMODULE>(&path), real, 1024), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

// --- Environment ---------------------------------------------------------------------------------------

std::wstring Variable(const wchar_t* name) {
    wchar_t value[512] = L"";
    GetEnvironmentVariableW(name, value, 512);
    return value;
}

TEST_F(HooksTest, TempFallsBackToTheHostsOwnVariableAndDirectory) {
    const EnvironmentScope temp(L"TEMP", std::nullopt);
    const EnvironmentScope tmp(L"TMP", std::nullopt);
    {
        const EnvironmentScope host(L"TMPDIR", L"/somewhere/else");
        EXPECT_EQ(Variable(L"Temp"), L"/somewhere/else");
        EXPECT_TRUE(SetEnvironmentVariableW(L"Temp", L"/its/own"));
        EXPECT_EQ(Variable(L"TEMP"), L"/its/own");
        EXPECT_EQ(Variable(L"TMP"), L"/somewhere/else");
        EXPECT_TRUE(SetEnvironmentVariableW(L"TEMP", nullptr));
    }
    const EnvironmentScope host(L"TMPDIR", std::nullopt);
    EXPECT_EQ(Variable(L"Temp"), L"/tmp");
    EXPECT_EQ(Variable(L"tmp"), L"/tmp");
}

TEST_F(HooksTest, VariablesAreTheHostsInUtf8) {
    const EnvironmentScope scope(L"QUILLET_PLATFORM_TEST", L"Gr\u00f6\u00dfe");
    EXPECT_STREQ(std::getenv("QUILLET_PLATFORM_TEST"), "Gr\xc3\xb6\xc3\x9f"
                                                       "e");
    EXPECT_FALSE(SetEnvironmentVariableW(L"with=sign", L"x"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_FALSE(SetEnvironmentVariableW(L"", L"x"));
    EXPECT_FALSE(SetEnvironmentVariableW(nullptr, L"x"));
    EXPECT_EQ(GetEnvironmentVariableW(nullptr, nullptr, 0), 0u);
}

// --- Messages ------------------------------------------------------------------------------------------

TEST_F(HooksTest, MessagesHaveOneSource) {
    wchar_t buffer[64];
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_STRING, L"text", 0, 0, buffer, 64, nullptr), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, ERROR_ACCESS_DENIED, 0, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 0x80041010u, 0, buffer, 64, nullptr), 16u);
    EXPECT_STREQ(buffer, L"Invalid class.\r\n");
    EXPECT_GT(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, 0x80070002u, 0, buffer, 64, nullptr), 0u)
        << "a wrapped error has the text of what it wraps";
}

} // namespace
