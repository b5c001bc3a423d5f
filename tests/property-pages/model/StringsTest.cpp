// Texts in three languages.
#include "model/Strings.h"
#include "model/Words.h"

#include <gtest/gtest.h>

#include <set>

namespace quillet::tests {

namespace {

using namespace pages;

constexpr TextId kTexts[] = {
#define QUILLET_TEXT(name, english, german, french) TextId::name,
#include "resources/Strings.inc"
#undef QUILLET_TEXT
};

class StringsTest : public testing::Test {
  protected:
    ~StringsTest() override { Speak(Language::English); }

    static std::wstring In(Language language, TextId id) {
        Speak(language);
        return Say(id);
    }
    static std::multiset<wchar_t> Arguments(const std::wstring& text) {
        std::multiset<wchar_t> numbers;
        for (std::size_t place = 0; place + 1 < text.size(); ++place) {
            if (text[place] == L'%') {
                numbers.insert(text[place + 1]);
            }
        }
        return numbers;
    }
};

TEST_F(StringsTest, EachTextIsThereInEachLanguageWithTheSameArguments) {
    for (const TextId id : kTexts) {
        const std::wstring english = In(Language::English, id);
        const std::wstring german = In(Language::German, id);
        const std::wstring french = In(Language::French, id);
        EXPECT_FALSE(english.empty()) << "line " << static_cast<unsigned>(id);
        EXPECT_FALSE(german.empty()) << "line " << static_cast<unsigned>(id);
        EXPECT_FALSE(french.empty()) << "line " << static_cast<unsigned>(id);
        EXPECT_EQ(Arguments(english), Arguments(german)) << "line " << static_cast<unsigned>(id);
        EXPECT_EQ(Arguments(english), Arguments(french)) << "line " << static_cast<unsigned>(id);
    }
}

TEST_F(StringsTest, LettersBeyondAsciiArrive) {
    EXPECT_EQ(In(Language::French, TextId::Teams), L"\u00C9quipes");
    EXPECT_EQ(In(Language::German, TextId::RestartNeeded).substr(0, 24), L"Der Rechner muss neu ges");
}

TEST_F(StringsTest, ArgumentsStandWhereTheyBelong) {
    EXPECT_EQ(Say(TextId::RangeWithStep, {L"0", L"8", L"2"}), L"From 0 to 8, in steps of 2.");
    EXPECT_EQ(Say(TextId::Range, {L"%2", L"8"}), L"From %2 to 8.") << "an argument is not looked into";
    EXPECT_EQ(Say(TextId::Range, {L"0"}), L"From 0 to %2.");
}

TEST_F(StringsTest, WordsOfTheLibraryAreTranslatedWhereTheyCan) {
    Speak(Language::German);
    EXPECT_EQ(InOwnLanguage(Text(Duplex::Full)), L"Vollduplex");
    EXPECT_EQ(InOwnLanguage(L"code 7 (unknown)"), L"code 7 (unknown)");
}

} // namespace

} // namespace quillet::tests
