// UTF-8 and names.
#include "LumText.h"

#include <gtest/gtest.h>

namespace {

TEST(LumTextTest, ToUtf8_EncodesEveryLength) {
    EXPECT_EQ(ToUtf8(L""), "");
    EXPECT_EQ(ToUtf8(L"A\u007F"), "A\x7F");
    EXPECT_EQ(ToUtf8(L"\u0080\u07FF"), "\xC2\x80\xDF\xBF");
    EXPECT_EQ(ToUtf8(L"\u0800\uFFFF"), "\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(ToUtf8(L"\U00010000\U0010FFFF"), "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(LumTextTest, ToUtf8_ReplacesWhatIsNoCharacter) {
    const auto unit = [](unsigned value) { return static_cast<wchar_t>(value); };
    EXPECT_EQ(ToUtf8(std::wstring{unit(0xD800)}), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::wstring{unit(0xDC00), L'x'}), "\xEF\xBF\xBDx");
    EXPECT_EQ(ToUtf8(std::wstring{unit(0xDC00), unit(0xD800)}), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::wstring{unit(0xD800), L'x'}), "\xEF\xBF\xBDx");
}

TEST(LumTextTest, ToUtf8_KeepsZeros) {
    EXPECT_EQ(ToUtf8(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(LumTextTest, EqualsIgnoringCase_TakesAsciiLettersAsOne) {
    EXPECT_TRUE(EqualsIgnoringCase(L"LUM2Prov", L"lum2PROV"));
    EXPECT_TRUE(EqualsIgnoringCase(L"", L""));
    EXPECT_FALSE(EqualsIgnoringCase(L"LUM2Prov", L"LUM2Pro"));
    EXPECT_FALSE(EqualsIgnoringCase(L"LUM2Pro", L"LUM2Prov"));
    EXPECT_FALSE(EqualsIgnoringCase(L"[", L"{"));
    EXPECT_FALSE(EqualsIgnoringCase(L"ä", L"Ä"));
}

} // namespace
