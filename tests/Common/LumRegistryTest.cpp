// Registry values of every shape.
#include "LumRegistry.h"
#include "RegistryScope.h"

#include <gtest/gtest.h>

using namespace quillet::tests;

namespace {

constexpr wchar_t kKey[] = L"SOFTWARE\\MARLO\\QuilletTest\\Values";

TEST(LumRegistryKeyTest, MissingKey_HasNoValues) {
    const LumRegistryKey key(kKey);
    EXPECT_FALSE(key.IsOpen());
    EXPECT_EQ(key.ReadDword(L"any"), std::nullopt);
    EXPECT_EQ(key.ReadString(L"any", 16), std::nullopt);
}

TEST(LumRegistryKeyTest, Dword_IsReadOnlyFromADword) {
    RegistryScope registry;
    registry.SetDword(kKey, L"value", 0xFFFFFFFF);
    registry.SetString(kKey, L"text", L"5");
    const LumRegistryKey key(kKey);
    EXPECT_TRUE(key.IsOpen());
    EXPECT_EQ(key.ReadDword(L"value"), DWORD{0xFFFFFFFF});
    EXPECT_EQ(key.ReadDword(L"VALUE"), DWORD{0xFFFFFFFF});
    EXPECT_EQ(key.ReadDword(L"text"), std::nullopt);
    EXPECT_EQ(key.ReadDword(L"none"), std::nullopt);
}

TEST(LumRegistryKeyTest, DwordOfTwoBytes_IsNone) {
    RegistryScope registry;
    const unsigned short half = 1;
    registry.SetValue(kKey, L"value", REG_DWORD, &half, sizeof half);
    EXPECT_EQ(LumRegistryKey(kKey).ReadDword(L"value"), std::nullopt);
}

TEST(LumRegistryKeyTest, String_MustFitWithItsTerminator) {
    RegistryScope registry;
    registry.SetString(kKey, L"value", L"1234");
    const LumRegistryKey key(kKey);
    EXPECT_EQ(key.ReadString(L"value", 5), L"1234");
    EXPECT_EQ(key.ReadString(L"value", 4), std::nullopt);
    EXPECT_EQ(key.ReadString(L"value", 0), std::nullopt);
}

TEST(LumRegistryKeyTest, StringOfAnotherType_IsNone) {
    RegistryScope registry;
    registry.SetDword(kKey, L"number", 5);
    registry.SetValue(kKey, L"bytes", REG_BINARY, L"ab", 2 * sizeof(wchar_t));
    registry.SetValue(kKey, L"expanded", REG_EXPAND_SZ, L"%x%", 4 * sizeof(wchar_t));
    const LumRegistryKey key(kKey);
    EXPECT_EQ(key.ReadString(L"number", 16), std::nullopt);
    EXPECT_EQ(key.ReadString(L"bytes", 16), std::nullopt);
    EXPECT_EQ(key.ReadString(L"expanded", 16), L"%x%");
}

TEST(LumRegistryKeyTest, StringWithoutOrWithInnerTerminator_EndsWhereItEnds) {
    RegistryScope registry;
    registry.SetValue(kKey, L"none", REG_SZ, L"abc", 3 * sizeof(wchar_t));
    registry.SetValue(kKey, L"inner", REG_SZ, L"a\0c", 4 * sizeof(wchar_t));
    registry.SetValue(kKey, L"empty", REG_SZ, L"", 0);
    registry.SetValue(kKey, L"odd", REG_SZ, L"abc", 2 * sizeof(wchar_t) + 1);
    const LumRegistryKey key(kKey);
    EXPECT_EQ(key.ReadString(L"none", 16), L"abc");
    EXPECT_EQ(key.ReadString(L"inner", 16), L"a");
    EXPECT_EQ(key.ReadString(L"empty", 16), L"");
    EXPECT_EQ(key.ReadString(L"odd", 16), L"ab");
}

} // namespace
