// The fixtures that all tests stand on.
#include "EnvironmentScope.h"
#include "LeakCheck.h"
#include "LumDebug.h"
#include "LumRegistry.h"
#include "RegistryScope.h"
#include "TemporaryDirectory.h"
#include "TraceFile.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <stdexcept>

using namespace quillet::tests;

namespace {

constexpr wchar_t kKey[] = L"SOFTWARE\\MARLO\\QuilletTest\\Scope";

TEST(RegistryScopeTest, NewKey_IsGoneAfterwards) {
    {
        RegistryScope registry;
        registry.SetDword(kKey, L"a", 1);
        EXPECT_EQ(LumRegistryKey(kKey).ReadDword(L"a"), DWORD{1});
    }
    EXPECT_FALSE(LumRegistryKey(kKey).IsOpen());
    EXPECT_FALSE(LumRegistryKey(L"SOFTWARE\\MARLO\\QuilletTest").IsOpen());
}

TEST(RegistryScopeTest, ChangedValues_ComeBack) {
    RegistryScope outer;
    outer.SetDword(kKey, L"a", 1);
    outer.SetString(kKey, L"b", L"text");
    {
        RegistryScope registry;
        registry.SetString(kKey, L"a", L"other type");
        registry.SetDword(kKey, L"a", 2);
        registry.RemoveValue(kKey, L"b");
        registry.SetDword(kKey, L"c", 3);
        registry.RemoveValue(kKey, L"none");
        EXPECT_EQ(LumRegistryKey(kKey).ReadDword(L"a"), DWORD{2});
        EXPECT_EQ(LumRegistryKey(kKey).ReadString(L"b", 16), std::nullopt);
    }
    const LumRegistryKey key(kKey);
    EXPECT_EQ(key.ReadDword(L"a"), DWORD{1});
    EXPECT_EQ(key.ReadString(L"b", 16), L"text");
    EXPECT_EQ(key.ReadDword(L"c"), std::nullopt);
}

TEST(RegistryScopeTest, RemovedTree_ComesBackWithTheKnownValues) {
    RegistryScope outer;
    const std::wstring below = std::wstring(kKey) + L"\\WMI\\Providers";
    outer.SetDword(kKey, L"TRACE", 5);
    outer.SetString(below, L"Namespace", L"custom");
    {
        RegistryScope registry;
        registry.RemoveKey(kKey);
        EXPECT_FALSE(LumRegistryKey(kKey).IsOpen());
        registry.SetDword(kKey, L"TRACE", 0);
        registry.RemoveKey(L"SOFTWARE\\MARLO\\QuilletTest\\None");
    }
    EXPECT_EQ(LumRegistryKey(kKey).ReadDword(L"TRACE"), DWORD{5});
    EXPECT_EQ(LumRegistryKey(below.c_str()).ReadString(L"Namespace", 16), L"custom");
}

TEST(EnvironmentScopeTest, Variable_ComesBack) {
    const EnvironmentScope outer(L"QUILLET_TEST_VARIABLE", L"outer");
    wchar_t value[16];
    {
        const EnvironmentScope inner(L"QUILLET_TEST_VARIABLE", std::nullopt);
        EXPECT_EQ(GetEnvironmentVariableW(L"QUILLET_TEST_VARIABLE", value, 16), 0u);
    }
    EXPECT_EQ(GetEnvironmentVariableW(L"QUILLET_TEST_VARIABLE", value, 16), 5u);
    EXPECT_STREQ(value, L"outer");
}

TEST(TemporaryDirectoryTest, IsGoneWithItsContents) {
    std::filesystem::path path;
    {
        const TemporaryDirectory directory;
        path = directory.Path();
        std::ofstream(directory.File(L"file")) << "x";
        create_directory(directory.File(L"below"));
        std::ofstream(directory.File(L"below") / "file") << "x";
        EXPECT_EQ(ReadFile(directory.File(L"file")), "x");
        EXPECT_EQ(ReadFile(directory.File(L"none")), "");
    }
    EXPECT_FALSE(exists(path));
}

TEST(TraceFileTest, NewTexts_AreThoseSinceTheLastCall) {
    TraceFile trace;
    EXPECT_TRUE(trace.NewTexts().empty());
    LumTrace().PrintText(L"one");
    LumTrace().PrintText(L"two\nand more");
    EXPECT_THAT(trace.NewTexts(), testing::ElementsAre(L"one", L"two\nand more"));
    LumTrace().PrintText(L"three");
    EXPECT_THAT(trace.NewTexts(), testing::ElementsAre(L"three"));
}

TEST(TraceFileTest, WhenItGoes_TheLogIsOff) {
    { const TraceFile trace; }
    EXPECT_EQ(LumTrace().GetCurrentLogLevel(), 0u);
    EXPECT_FALSE(LumTrace().IsConfigured());
}

TEST(TraceFileTest, FileThatIsNoTrace_IsRefused) {
    const TemporaryDirectory directory;
    const auto parse = [&](const std::string& bytes) {
        std::ofstream(directory.File(L"f"), std::ios::binary) << bytes;
        return ParseTraceFile(directory.File(L"f"));
    };
    const std::string head = "Q\tPID:1f\tTID:2\t01:02:03.004\t(ABC)\t";
    const auto lines = parse(head + "text\r\n");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].pid, 0x1fu);
    EXPECT_EQ(lines[0].time, L"01:02:03.004");
    EXPECT_EQ(lines[0].counter, 0xABCu);
    EXPECT_EQ(lines[0].text, L"text");
    EXPECT_TRUE(parse("").empty());
    EXPECT_THROW(parse("no head\n"), std::runtime_error);
    EXPECT_THROW(parse(head + "no end"), std::runtime_error);
    EXPECT_THROW(parse(head + "\xFF\n"), std::runtime_error);
}

/// Everything that can be left behind in one listener, away from the one that watches this program.
TEST(LeakListenerTest, LeftOverCount_FailsTheTest) {
    static long alive = 0;
    static bool registered = false;
    if (!registered) {
        RegisterLeakCounter("test objects", [] { return alive; });
        registered = true;
    }
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    LeakListener listener;
    listener.OnTestStart(test);
    alive = 2;
    EXPECT_NONFATAL_FAILURE(listener.OnTestEnd(test), "test objects");
    alive = 0;
    listener.OnTestEnd(test);
}

TEST(LeakListenerTest, WhatTheHostHandsOut_IsCounted) {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    LeakListener listener;
    listener.OnTestStart(test);
    const BSTR text = SysAllocString(L"left behind");
    EXPECT_NONFATAL_FAILURE(listener.OnTestEnd(test), "leaves");
    SysFreeString(text);
    listener.OnTestEnd(test);

    SAFEARRAY* const array = SafeArrayCreateVector(VT_I4, 0, 4);
    EXPECT_NONFATAL_FAILURE(listener.OnTestEnd(test), "leaves");
    SafeArrayDestroy(array);

    RegistryScope registry;
    registry.CreateKey(kKey);
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_NONFATAL_FAILURE(listener.OnTestEnd(test), "leaves");
    RegCloseKey(key);

    {
        const TemporaryDirectory directory;
        const std::ofstream file(directory.File(L"file"));
        EXPECT_NONFATAL_FAILURE(listener.OnTestEnd(test), "leaves");
    }
    listener.OnTestEnd(test);
}

} // namespace
