// What may have been meant.
#include <texts/Nearest.h>

#include <gtest/gtest.h>

using namespace quilletctl;

namespace {

const std::vector<std::string> kWords{"Jumbo Packet", "Flow Control", "Größe", "RSS", ""};

TEST(NearestTest, FindsWhatWasNearlyTyped) {
    EXPECT_EQ(Nearest("jumbo packt", kWords), "Jumbo Packet");
    EXPECT_EQ(Nearest("Flwo Control", kWords), "Flow Control");
    EXPECT_EQ(Nearest("GRösse", kWords), "Größe");
    EXPECT_EQ(Nearest("RS", kWords), "RSS");
}

TEST(NearestTest, IsSilentWhereNothingIsLikeIt) {
    EXPECT_EQ(Nearest("", kWords), "");
    EXPECT_EQ(Nearest("x", kWords), "");
    EXPECT_EQ(Nearest("transmit buffers", kWords), "");
    EXPECT_EQ(Nearest("RSS", {}), "");
}

TEST(NearestTest, OfSeveral_TheNearest) {
    EXPECT_EQ(Nearest("packet", {"pocked", "packets", "racket"}), "packets");
    EXPECT_EQ(Nearest(std::string(100000, 'a'), {std::string(100000, 'b'), std::string(100000, 'a')}),
              std::string(100000, 'a'))
        << "and a long one takes no longer";
}

TEST(NearestTest, IsAQuestion) {
    EXPECT_EQ(DidYouMean("rsss", kWords), "; did you mean \"RSS\"?");
    EXPECT_EQ(DidYouMean("other", kWords), "");
}

} // namespace
