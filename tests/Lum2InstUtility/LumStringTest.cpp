// CLumString: a text, and its formats.
#include "LumString.h"

#include <gtest/gtest.h>
#include <string>

namespace {

std::wstring Plain(const wchar_t* text) {
    return text;
}

TEST(LumStringTest, Text_IsHeldAndGivenBack) {
    const CLumString text(L"abc");
    EXPECT_EQ(text.Length(), 3u);
    EXPECT_FALSE(text.IsEmpty());
    EXPECT_EQ(Plain(text), L"abc");
    EXPECT_EQ(text.ToString(), L"abc");
    EXPECT_EQ(CLumString(std::wstring(L"abc")), text);
}

TEST(LumStringTest, NullAndDefault_AreTheEmptyText) {
    const wchar_t* const null = nullptr;
    EXPECT_TRUE(CLumString(null).IsEmpty());
    EXPECT_TRUE(CLumString().IsEmpty());
    EXPECT_EQ(Plain(CLumString()), L"");
}

TEST(LumStringTest, Comparisons_AreThoseOfTexts) {
    const CLumString a(L"a");
    const CLumString same(L"a");
    const CLumString b(L"b");
    EXPECT_TRUE(a == same);
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_TRUE(a == L"a");
    EXPECT_TRUE(L"a" == a);
    EXPECT_TRUE(a != L"A");
    EXPECT_TRUE(L"b" != a);
    EXPECT_TRUE(a < L"b");
    EXPECT_TRUE(L"a" < b);
}

TEST(LumStringTest, Copies_AreTheirOwn) {
    CLumString first(L"first");
    CLumString second = first;
    second += L"+";
    EXPECT_EQ(first, L"first");
    EXPECT_EQ(second, L"first+");
    first = std::move(second);
    EXPECT_EQ(first, L"first+");
    first = L"plain";
    EXPECT_EQ(first, L"plain");
}

TEST(LumStringTest, FormatString_FormatsAsWindowsDoes) {
    CLumString text(L"before");
    const int length = text.FormatString(
        L"Zorel_AdapterSettingEnum.Caption='%s',ParentId='%s',ParentType='NIC'", L"*SpeedDuplex", L"{1}");
    EXPECT_EQ(text, L"Zorel_AdapterSettingEnum.Caption='*SpeedDuplex',ParentId='{1}',ParentType='NIC'");
    EXPECT_EQ(length, static_cast<int>(text.Length()));
    EXPECT_EQ(text.FormatString(L"%S %d %04X %I64u %c%%", "narrow", -5, 0xABu, 18446744073709551615ull, L'x'),
              38);
    EXPECT_EQ(text, L"narrow -5 00AB 18446744073709551615 x%");
}

TEST(LumStringTest, FormatString_OfNothingIsEmpty) {
    CLumString text(L"before");
    EXPECT_EQ(text.FormatString(L""), 0);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(LumStringTest, FormatString_HasNoLimit) {
    CLumString text;
    const std::wstring part(300'000, L'p');
    EXPECT_EQ(text.FormatString(L"%s%s", part.c_str(), part.c_str()), 600'000);
    EXPECT_EQ(text.ToString(), part + part);
}

TEST(LumStringTest, FormatString_MayUseItsOwnText) {
    CLumString text(L"own");
    EXPECT_EQ(
        text.FormatString(L"%s and %s", static_cast<const wchar_t*>(text), static_cast<const wchar_t*>(text)),
        11);
    EXPECT_EQ(text, L"own and own");
}

TEST(LumStringTest, FormatString_OfNoFormatLeavesTheText) {
    CLumString text(L"before");
    EXPECT_EQ(text.FormatString(nullptr), -1);
    EXPECT_EQ(text, L"before");
}

TEST(LumStringTest, FormatString_TakesNonAsciiArguments) {
    CLumString text;
    text.FormatString(L"%s|", L"網路卡 \U0001F600");
    EXPECT_EQ(text, L"網路卡 \U0001F600|");
}

} // namespace
