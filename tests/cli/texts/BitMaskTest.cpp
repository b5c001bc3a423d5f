// Bit masks as people read them.
#include <texts/BitMask.h>

#include <gtest/gtest.h>

using namespace quilletctl;

namespace {

TEST(BitMaskTest, SetBits_FromTheLowest) {
    EXPECT_EQ(SetBits(0), std::vector<unsigned>());
    EXPECT_EQ(SetBits(0x8000000000000005ULL), (std::vector<unsigned>{0, 2, 63}));
}

TEST(BitMaskTest, HexMask_KeepsAll64Bits) {
    EXPECT_EQ(HexMask(0), "0x0000000000000000");
    EXPECT_EQ(HexMask(0x8000000100000005ULL), "0x8000000100000005");
}

} // namespace
