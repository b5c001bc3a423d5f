// Lines as bash takes them apart, and what it is given back.
#include <completion/BashLine.h>

#include <gtest/gtest.h>

namespace {

using quilletctl::BashLine;
using Words = std::vector<std::string>;

constexpr const char* kBreaks = " \t\n\"'><=;|&(:";

TEST(BashLineTest, QuotesAreTakenAway) {
    const BashLine line(R"(quilletctl "a b" c\ d 'e f'g "h\"i\k\$" '' j)", kBreaks);
    EXPECT_EQ(line.Words(), (Words{"a b", "c d", "e fg", R"(h"i\k$)", ""}));
    EXPECT_EQ(line.Current(), "j");
}

TEST(BashLineTest, AnOpenQuoteBelongsToTheCurrentWord) {
    EXPECT_EQ(BashLine("quilletctl \"a b", kBreaks).Current(), "a b");
    EXPECT_EQ(BashLine("quilletctl 'a b", kBreaks).Current(), "a b");
    EXPECT_EQ(BashLine("quilletctl a ", kBreaks).Words(), Words{"a"});
    EXPECT_EQ(BashLine("quilletctl a ", kBreaks).Current(), "");
    EXPECT_EQ(BashLine("quilletctl a\\", kBreaks).Current(), "a");
    EXPECT_EQ(BashLine("", kBreaks).Words(), Words());
    EXPECT_EQ(BashLine("quilletctl", kBreaks).Words(), Words());
}

TEST(BashLineTest, WordsAreQuotedAsTheLineIs) {
    const std::string word = R"(a $b"c'd!e`f\g)";
    EXPECT_EQ(BashLine("q ", kBreaks).Completed(word), R"(a\ \$b\"c\'d\!e\`f\\g)");
    EXPECT_EQ(BashLine("q \"a", kBreaks).Completed(word), R"(a \$b\"c'd"\!"e\`f\\g)");
    EXPECT_EQ(BashLine("q 'a", kBreaks).Completed(word), R"(a $b"c'\''d!e`f\g)");
    EXPECT_EQ(BashLine("q ", kBreaks).Completed("Zürich-1_2"), "Zürich-1_2");
}

TEST(BashLineTest, AWordThatLooksAsIfTheQuotesWereClosed_ClosesThem) {
    EXPECT_EQ(BashLine("q \"a", kBreaks).Completed("a\""), R"(a\"")");
    EXPECT_EQ(BashLine("q 'a", kBreaks).Completed("a'"), R"(a'\''')");
    EXPECT_EQ(BashLine("q a", kBreaks).Completed("a'"), R"(a\')");
}

TEST(BashLineTest, WhatReadlineHasLeftOfItsWord_IsNotRepeated) {
    EXPECT_EQ(BashLine("q --of=te", kBreaks).Completed("--of=team"), "team");
    EXPECT_EQ(BashLine("q a:b", kBreaks).Completed("a:b c"), "b\\ c");
    EXPECT_EQ(BashLine("q a\\:b", kBreaks).Completed("a:b c"), "a:b\\ c");
    EXPECT_EQ(BashLine("q --of=\"te", kBreaks).Completed("--of=team"), "team");
    // Whoever takes "=" out of COMP_WORDBREAKS gets the whole word.
    EXPECT_EQ(BashLine("q --of=te", " \t\n").Completed("--of=team"), "--of=team");
    EXPECT_EQ(BashLine("q abc:", kBreaks).Completed("a"), "");
}

} // namespace
