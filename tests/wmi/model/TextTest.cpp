// Case folding, UTF-8 and numbers as text.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

TEST(FoldCase, CoversTheScriptsOfAdapterNames) {
    EXPECT_EQ(Folded(L"AZaz09_[`@{"), L"azaz09_[`@{");
    EXPECT_EQ(Folded(L"ÄÖÜÉß×÷"), L"äöüéß×÷");
    EXPECT_EQ(Folded(L"ĀĿŁŃŇŊŸŹŻŽ"), L"āŀłńňŋÿźżž");
    EXPECT_EQ(Folded(L"ΑΩΆΈΊΌΎΏςσ"), L"αωάέίόύώςσ");
    EXPECT_EQ(Folded(L"АЯЁЀЏ"), L"аяёѐџ");
    EXPECT_EQ(Folded(L"ＡＺ漢字"), L"ａｚ漢字");
}

TEST(FoldCase, LeavesLowerCaseAndTheOddLettersAlone) {
    for (const wchar_t c : std::wstring(L"äöüÿāŀłńňŉŋźżžſıİĸαωςаяё")) {
        EXPECT_EQ(FoldCase(c), c) << static_cast<unsigned>(c);
    }
}

TEST(CompareFolded, OrdersByFoldedCharactersThenByLength) {
    EXPECT_EQ(CompareFolded(L"abc", L"ABC"), 0);
    EXPECT_EQ(CompareFolded(L"Größe", L"GRÖße"), 0);
    EXPECT_LT(CompareFolded(L"ab", L"ABC"), 0);
    EXPECT_GT(CompareFolded(L"b", L"ABC"), 0);
    EXPECT_LT(CompareFolded(L"", L"a"), 0);
    EXPECT_GT(CompareFolded(L"\xFFFD", L"a"), 0);
}

TEST(Utf8, RoundTripsOneToFourBytes) {
    const std::string text = "A\xC3\xA4\xE6\xBC\xA2\xF0\x9F\x98\x80";
    const std::optional<std::wstring> wide = FromUtf8(text);
    ASSERT_TRUE(wide);
    EXPECT_EQ(*wide, L"Aä漢😀");
    EXPECT_EQ(ToUtf8(*wide), text);
}

TEST(Utf8, RefusesMalformedBytes) {
    for (const char* text : {"\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                             "\xF8\x88\x80\x80\x80", "\xC3(", "\xE6\xBC", "ok\xFF"}) {
        EXPECT_FALSE(FromUtf8(text)) << ::testing::PrintToString(text);
    }
}

TEST(Utf8, WritesLoneSurrogatesAsReplacement) {
    const std::wstring lone{L'a', static_cast<wchar_t>(0xD83D), L'b', static_cast<wchar_t>(0xDE00)};
    EXPECT_EQ(ToUtf8(lone), "a\xEF\xBF\xBD"
                            "b\xEF\xBF\xBD");
}

TEST(JoinSurrogates, MakesOneCharacterOfAPair) {
    std::wstring text{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00), L'x',
                      static_cast<wchar_t>(0xD83D)};
    JoinSurrogates(text);
    EXPECT_EQ(text, std::wstring(L"😀x") + static_cast<wchar_t>(0xD83D));
}

TEST(ToUtf8, JoinsSurrogatesOnEveryHost) {
    // Where a wchar_t has 32 bits, such a pair comes from a client that counts in 16.
    EXPECT_EQ(ToUtf8(std::wstring{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)}),
              "\xF0\x9F\x98\x80");
}

TEST(ParseDecimal, TakesWhatFits64BitsAndNothingElse) {
    EXPECT_EQ(ParseDecimal(L"18446744073709551615")->magnitude, UINT64_MAX);
    EXPECT_EQ(ParseDecimal(L"-9223372036854775808")->magnitude, std::uint64_t{1} << 63);
    EXPECT_TRUE(ParseDecimal(L"-5")->negative);
    EXPECT_FALSE(ParseDecimal(L"-0")->negative);
    for (const wchar_t* text : {L"", L"-", L"+1", L" 1", L"1 ", L"1.0", L"0x1", L"18446744073709551616",
                                L"-9223372036854775809", L"99999999999999999999999"}) {
        EXPECT_FALSE(ParseDecimal(text)) << ToUtf8(text);
    }
}

TEST(RealText, ReadsBackAsTheSameNumberAndAlwaysHasAPoint) {
    for (const double number : {0.0, 1.0, -2.5, 0.1, 1e300, 1e-300, 5e-324, 123456789.123456789, 1e21}) {
        const std::wstring text = RealText(number);
        EXPECT_NE(text.find(L'.'), std::wstring::npos) << ToUtf8(text);
        EXPECT_EQ(ParseReal(text), number) << ToUtf8(text);
    }
}

TEST(ParseReal, RefusesWhatIsNoNumber) {
    for (const wchar_t* text : {L"", L"inf", L"nan", L"1e999", L"1.2.3", L"--1", L"1e", L"e5", L"1,5"}) {
        EXPECT_FALSE(ParseReal(text)) << ToUtf8(text);
    }
    EXPECT_EQ(ParseReal(L"2"), 2.0);
    EXPECT_EQ(ParseReal(L"-1.5e2"), -150.0);
}

} // namespace
} // namespace quillet::tests
