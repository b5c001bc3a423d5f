// Decimal texts and comparison without regard to case.
#include "Records/Text.h"

#include <gtest/gtest.h>

#include <limits>

using quillet::EqualsIgnoringCase;
using quillet::FormatDecimal;
using quillet::ParseDecimal;

namespace {

TEST(ParseDecimal, ReadsSignedNumbers) {
    EXPECT_EQ(ParseDecimal(L"0"), 0);
    EXPECT_EQ(ParseDecimal(L"9014"), 9014);
    EXPECT_EQ(ParseDecimal(L"-1"), -1);
    EXPECT_EQ(ParseDecimal(L"+7"), 7);
    EXPECT_EQ(ParseDecimal(L"007"), 7);
}

TEST(ParseDecimal, SkipsLeadingWhiteSpaceAndIgnoresTheRest) {
    EXPECT_EQ(ParseDecimal(L" \t\r\n\v\f42"), 42);
    EXPECT_EQ(ParseDecimal(L"42 frames"), 42);
    EXPECT_EQ(ParseDecimal(L"12.9"), 12);
    EXPECT_EQ(ParseDecimal(std::wstring(L"1\0002", 3)), 1);
}

TEST(ParseDecimal, TextThatIsNoNumberGivesZero) {
    EXPECT_EQ(ParseDecimal(L""), 0);
    EXPECT_EQ(ParseDecimal(L"   "), 0);
    EXPECT_EQ(ParseDecimal(L"abc"), 0);
    EXPECT_EQ(ParseDecimal(L"-"), 0);
    EXPECT_EQ(ParseDecimal(L"+-1"), 0);
    EXPECT_EQ(ParseDecimal(L"- 1"), 0);
    EXPECT_EQ(ParseDecimal(L"0x10"), 0);
}

TEST(ParseDecimal, NumbersBeyondTheRangeGiveTheNearest) {
    constexpr LONG lowest = std::numeric_limits<LONG>::min();
    constexpr LONG highest = std::numeric_limits<LONG>::max();
    EXPECT_EQ(ParseDecimal(L"2147483647"), highest);
    EXPECT_EQ(ParseDecimal(L"2147483648"), highest);
    EXPECT_EQ(ParseDecimal(L"4294967296"), highest);
    EXPECT_EQ(ParseDecimal(L"-2147483648"), lowest);
    EXPECT_EQ(ParseDecimal(L"-2147483649"), lowest);
    EXPECT_EQ(ParseDecimal(std::wstring(100000, L'9')), highest);
    EXPECT_EQ(ParseDecimal(L"-" + std::wstring(100000, L'9')), lowest);
}

TEST(FormatDecimal, CoversTheWholeRange) {
    EXPECT_EQ(FormatDecimal(0), L"0");
    EXPECT_EQ(FormatDecimal(std::numeric_limits<LONG>::max()), L"2147483647");
    EXPECT_EQ(FormatDecimal(std::numeric_limits<LONG>::min()), L"-2147483648");
}

TEST(EqualsIgnoringCase, FoldsAsciiLettersAndNothingElse) {
    EXPECT_TRUE(EqualsIgnoringCase(L"*JumboPacket", L"*jUMBOpACKET"));
    EXPECT_TRUE(EqualsIgnoringCase(L"", L""));
    EXPECT_FALSE(EqualsIgnoringCase(L"*RSS", L"RSS"));
    EXPECT_FALSE(EqualsIgnoringCase(L"*RSS", L"*RSSx"));
    EXPECT_FALSE(EqualsIgnoringCase(L"[", L"{"));
    EXPECT_FALSE(EqualsIgnoringCase(L"@", L"`"));
    EXPECT_TRUE(EqualsIgnoringCase(L"Übertragung", L"ÜBERTRAGUNG"));
    EXPECT_FALSE(EqualsIgnoringCase(L"Übertragung", L"übertragung"));
    EXPECT_FALSE(EqualsIgnoringCase(L"é", L"e"));
}

} // namespace
