// Arrays of bytes, folded while they come in.
#include <soap/ByteRuns.h>

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

std::string Folded(const std::string& text, std::size_t piece = std::string::npos) {
    wsman::ByteRuns runs({"Data"});
    std::string kept;
    for (std::size_t place = 0; place < text.size(); place += std::min(piece, text.size())) {
        runs.Append(std::string_view(text).substr(place, piece), kept);
    }
    runs.Finish(kept);
    return kept;
}

TEST(ByteRunsTest, RunsBecomeOneElement_HoweverTheyComeIn) {
    const std::string text =
        "<s:Envelope><p:O_OUTPUT x='<'><p:Size>3</p:Size><p:Data>0</p:Data><p:Data>255</p:Data>\n "
        "<p:Data>7</p:Data><p:ReturnValue>0</p:ReturnValue></p:O_OUTPUT></s:Envelope>";
    const std::string folded =
        "<s:Envelope><p:O_OUTPUT x='<'><p:Size>3</p:Size><p:Data quillet-run=\"00ff07\"/>"
        "<p:ReturnValue>0</p:ReturnValue></p:O_OUTPUT></s:Envelope>";
    for (std::size_t piece = 1; piece <= text.size(); ++piece) {
        ASSERT_EQ(Folded(text, piece), folded) << piece;
    }
}

TEST(ByteRunsTest, WhatIsNoByte_StaysAsItIs) {
    for (const char* text :
         {"<Data>256</Data>", "<Data>-1</Data>", "<Data> 1</Data>", "<Data>1000</Data>", "<Data/>",
          "<Data></Data>", "<Data a=\"1\">1</Data>", "<Data>1</Date>", "<Other>1</Other>",
          "<Data>1<x/></Data>", "<Data", "<Data>1", "<Data>1</Dat", "<!--<Data>1</Data>-->",
          "<![CDATA[<Data>1</Data>]]>", "", "<", "Data>1</Data>"}) {
        for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, std::string::npos}) {
            EXPECT_EQ(Folded(text, piece), text);
        }
    }
    const std::string wide("<\0D\0a\0t\0a\0>\0001\0", 14);
    EXPECT_EQ(Folded(wide), wide);
    EXPECT_EQ(Folded("<Data>1</Data><Data>x</Data>"), "<Data quillet-run=\"01\"/><Data>x</Data>");
}

TEST(ByteRunsTest, ARunIsReadAsItsBytes) {
    std::vector<unsigned char> bytes{9};
    EXPECT_TRUE(wsman::DecodeRun("00ff07", bytes));
    EXPECT_EQ(bytes, (std::vector<unsigned char>{9, 0, 255, 7}));
    EXPECT_FALSE(wsman::DecodeRun("0", bytes));
    EXPECT_FALSE(wsman::DecodeRun("0g", bytes));
}

} // namespace

} // namespace quillet::tests
