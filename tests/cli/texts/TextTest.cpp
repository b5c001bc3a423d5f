// UTF-8, column widths, and texts that are safe to print.
#include <texts/Text.h>

#include <gtest/gtest.h>

using namespace quilletctl;

namespace {

TEST(TextTest, ToUtf8_EncodesEveryLength) {
    EXPECT_EQ(ToUtf8(L"aé東"), "a\xC3\xA9\xE6\x9D\xB1");
    EXPECT_EQ(ToUtf8(L"\U0001F310"), "\xF0\x9F\x8C\x90");
    EXPECT_EQ(ToUtf8(L""), "");
}

TEST(TextTest, ToUtf8_JoinsSurrogatePairs) {
    const wchar_t pair[] = {static_cast<wchar_t>(0xD83C), static_cast<wchar_t>(0xDF10), 0};
    EXPECT_EQ(ToUtf8(pair), "\xF0\x9F\x8C\x90");
}

TEST(TextTest, ToUtf8_LoneSurrogatesBecomeTheReplacementCharacter) {
    const wchar_t high[] = {static_cast<wchar_t>(0xD83C), L'x', 0};
    EXPECT_EQ(ToUtf8(high), "\xEF\xBF\xBDx");
    const wchar_t low[] = {L'x', static_cast<wchar_t>(0xDF10), 0};
    EXPECT_EQ(ToUtf8(low), "x\xEF\xBF\xBD");
}

TEST(TextTest, ToUtf8_KeepsEmbeddedZeros) {
    EXPECT_EQ(ToUtf8(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(TextTest, ToWide_IsTheInverse) {
    for (const std::wstring text : {L"", L"plain", L"Gerät 東京", L"\U0001F310!"}) {
        EXPECT_EQ(ToWide(ToUtf8(text)), text);
    }
}

TEST(TextTest, IsUtf8_TellsWhatIsMalformedFromTheCharacterThatStandsForIt) {
    for (const char* text : {"", "a", "\xC2\x80", "\xE0\xA0\x80", "\xEF\xBF\xBD", "\xED\x9F\xBF",
                             "\xEE\x80\x80", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(IsUtf8(text)) << text;
    }
    for (const char* text :
         {"\x80", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF",
          "\xF4\x90\x80\x80", "\xFE", "\xC3", "\xE6\x9D", "\xF0\x9F\x8C", "\xC3(", "\xEF\xBF"}) {
        EXPECT_FALSE(IsUtf8(text)) << text;
        EXPECT_FALSE(IsUtf8(std::string("before") + text + "behind")) << text;
    }
    EXPECT_TRUE(IsUtf8(std::string_view("a\0b", 3)));
}

TEST(TextTest, IsWellFormed_KnowsPairsOfSurrogates) {
    EXPECT_TRUE(IsWellFormed(L""));
    EXPECT_TRUE(IsWellFormed(L"Gerät 東京 \U0001F310"));
    const wchar_t high[] = {L'x', static_cast<wchar_t>(0xD83C), L'x', 0};
    const wchar_t low[] = {static_cast<wchar_t>(0xDF10), 0};
    EXPECT_FALSE(IsWellFormed(high));
    EXPECT_FALSE(IsWellFormed(std::wstring_view(high, 2)));
    EXPECT_FALSE(IsWellFormed(low));
}

TEST(TextTest, Characters_MalformedBytesAreReplacedOneByOne) {
    EXPECT_EQ(Characters("\x80z"), U"\xFFFDz");
    EXPECT_EQ(Characters("\xC3"), U"\xFFFD");
    EXPECT_EQ(Characters("\xE6\x9D"), U"\xFFFD\xFFFD");
    EXPECT_EQ(Characters("\xC0\x80"), U"\xFFFD\xFFFD") << "an overlong zero";
    EXPECT_EQ(Characters("\xED\xA0\x80"), U"\xFFFD\xFFFD\xFFFD") << "a surrogate";
    EXPECT_EQ(Characters("\xF4\x90\x80\x80"), U"\xFFFD\xFFFD\xFFFD\xFFFD") << "above U+10FFFF";
    EXPECT_EQ(Characters("\xFF"), U"\xFFFD");
}

TEST(TextTest, DisplayWidth_CountsColumns) {
    EXPECT_EQ(DisplayWidth("abc"), 3u);
    EXPECT_EQ(DisplayWidth("Gerät"), 5u);
    EXPECT_EQ(DisplayWidth("東京"), 4u);
    EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1u) << "a combining accent";
    EXPECT_EQ(DisplayWidth("ﾊﾟ"), 2u) << "half-width katakana";
    EXPECT_EQ(DisplayWidth("한글"), 4u);
    EXPECT_EQ(DisplayWidth("\xF0\x9F\x8C\x90"), 2u);
    EXPECT_EQ(DisplayWidth("a\xE2\x80\x8B"
                           "b"),
              2u)
        << "a zero-width space";
    EXPECT_EQ(DisplayWidth(""), 0u);
}

TEST(TextTest, Shortened_CutsAtColumnsAndMarksTheCut) {
    EXPECT_EQ(Shortened("abcdef", 6), "abcdef");
    EXPECT_EQ(Shortened("abcdef", 5), "ab…ef") << "what tells names apart is often their end";
    EXPECT_EQ(Shortened("abcdef", 4), "ab…f");
    EXPECT_EQ(Shortened("abcdef", 1), "…");
    EXPECT_EQ(Shortened("東京都", 5), "東…都");
    EXPECT_EQ(Shortened("東京都", 4), "東…") << "half of a wide character is no character";
    EXPECT_EQ(Shortened("abce\xCC\x81", 3), "a…e\xCC\x81") << "an accent stays with its letter";
    EXPECT_EQ(Shortened("ab東\xCC\x81", 3), "a…") << "and goes with it";
}

TEST(TextTest, Printable_ReplacesWhatSteersATerminal) {
    EXPECT_EQ(Printable("a\x1B[31mb"), "a\xEF\xBF\xBD[31mb");
    EXPECT_EQ(Printable("a\nb\r\tc"), "a\xEF\xBF\xBD"
                                      "b\xEF\xBF\xBD\xEF\xBF\xBD"
                                      "c");
    EXPECT_EQ(Printable("\x7F"), "\xEF\xBF\xBD");
    EXPECT_EQ(Printable("\xC2\x9B"), "\xEF\xBF\xBD") << "the one-character form of an escape";
    EXPECT_EQ(Printable("a\xE2\x80\xAE"
                        "b"),
              "a\xEF\xBF\xBD"
              "b")
        << "right-to-left override";
    EXPECT_EQ(Printable("Gerät 東京"), "Gerät 東京");
}

} // namespace
