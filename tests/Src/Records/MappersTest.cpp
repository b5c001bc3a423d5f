// The provider's numbers for an adapter's state, as enumerations.
#include "../../support/QuilletTestAccess.h"

#include <gtest/gtest.h>

namespace {

LONG Speed(LONG lBitsPerSecond) {
    return QuilletTestAccess::GetLinkSpeed(lBitsPerSecond);
}

TEST(GetDuplex, FullIsTwoHalfIsOne) {
    EXPECT_EQ(QuilletTestAccess::GetDuplex(true), 2);
    EXPECT_EQ(QuilletTestAccess::GetDuplex(false), 1);
}

TEST(GetLinkSpeed, KnownSpeedsHaveTheirClass) {
    EXPECT_EQ(Speed(0), 0);
    EXPECT_EQ(Speed(1000000), 1);
    EXPECT_EQ(Speed(10000000), 2);
    EXPECT_EQ(Speed(100000000), 3);
    EXPECT_EQ(Speed(1000000000), 4);
}

TEST(GetLinkSpeed, FractionsOfAMegabitAreCutOff) {
    EXPECT_EQ(Speed(5000), 0);
    EXPECT_EQ(Speed(999999), 0);
    EXPECT_EQ(Speed(-999999), 0);
    EXPECT_EQ(Speed(1999999), 1);
    EXPECT_EQ(Speed(1000999999), 4);
}

TEST(GetLinkSpeed, AnyOtherPositiveSpeedCountsAsTheFastest) {
    EXPECT_EQ(Speed(2147483647), 5);
    EXPECT_EQ(Speed(5000000), 5);
    EXPECT_EQ(Speed(2000000), 5);
    EXPECT_EQ(Speed(1001000000), 5);
}

TEST(GetLinkSpeed, NegativeSpeedsOfAMegabitOrMoreAreTheOtherClass) {
    EXPECT_EQ(Speed(-5000000), 6);
    EXPECT_EQ(Speed(-1000000), 6);
    EXPECT_EQ(Speed(-2147483647 - 1), 6);
}

TEST(GetLinkSecStatus, ZeroToNineMapToThemselvesAndTheRestToOne) {
    for (LONG lStatus = 0; lStatus <= 9; ++lStatus) {
        EXPECT_EQ(QuilletTestAccess::GetLinkSecStatus(lStatus), lStatus);
    }
    for (const LONG lStatus : {10, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(QuilletTestAccess::GetLinkSecStatus(lStatus), 1);
    }
}

TEST(GetDCBStatus, ZeroToThreeMapToThemselvesAndTheRestToOne) {
    for (LONG lStatus = 0; lStatus <= 3; ++lStatus) {
        EXPECT_EQ(QuilletTestAccess::GetDCBStatus(lStatus), lStatus);
    }
    for (const LONG lStatus : {4, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(QuilletTestAccess::GetDCBStatus(lStatus), 1);
    }
}

} // namespace
