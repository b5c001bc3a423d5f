// Keywords of the well-known settings.
#include <quillet/SettingNames.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

struct ExpectedSetting {
    LONG number;
    const wchar_t* standard;
    const wchar_t* older;
    bool hasOlder;
};
constexpr ExpectedSetting kTable[] = {
    {0, L"*SpeedDuplex", L"SpeedDuplex", true},          {1, L"*FlowControl", L"FlowControl", true},
    {2, L"*JumboPacket", L"MaxFrameSize", true},         {3, L"*RSS", L"RssMode", true},
    {4, L"*TransmitBuffers", L"NumTxDescriptors", true}, {5, L"*ReceiveBuffers", L"NumRxDescriptors", true},
    {6, L"*LsoV1IPv4", L"TcpSegmentation", true},        {7, L"*LsoV2IPv4", L"SettingNameUnknown", false},
    {8, L"*LsoV2IPv6", L"SettingNameUnknown", false},    {9, L"*IPsecOffloadV2", L"IPSecEnabled", true},
};

TEST(AdvancedSettingNamesTest, EnumeratorsHaveTheirNumbers) {
    EXPECT_EQ(static_cast<LONG>(SettingName::SpeedDuplex), 0);
    EXPECT_EQ(static_cast<LONG>(SettingName::FlowControl), 1);
    EXPECT_EQ(static_cast<LONG>(SettingName::MaxFrameSize), 2);
    EXPECT_EQ(static_cast<LONG>(SettingName::RssMode), 3);
    EXPECT_EQ(static_cast<LONG>(SettingName::NumTxDescriptors), 4);
    EXPECT_EQ(static_cast<LONG>(SettingName::NumRxDescriptors), 5);
    EXPECT_EQ(static_cast<LONG>(SettingName::TcpSegmentation), 6);
    EXPECT_EQ(static_cast<LONG>(SettingName::LsoV2IPv4), 7);
    EXPECT_EQ(static_cast<LONG>(SettingName::LsoV2IPv6), 8);
    EXPECT_EQ(static_cast<LONG>(SettingName::IPSecEnabled), 9);
}

TEST(AdvancedSettingNamesTest, HasAVirtualDestructorAndOneFlag) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CAdvancedSettingNames>);
    EXPECT_FALSE(CAdvancedSettingNames().m_bUseStandardKeywords);
    EXPECT_TRUE(CAdvancedSettingNames(true).m_bUseStandardKeywords);
}

// Every system that the tests run on is of the NT platform with major version 6 or higher.
TEST(AdvancedSettingNamesTest, GetSettingName_WithStandardKeywords_GivesTheStandardisedOne) {
    const CAdvancedSettingNames names(true);
    for (const ExpectedSetting& rExpected : kTable) {
        EXPECT_EQ(names.GetSettingName(SettingName(rExpected.number)), rExpected.standard);
    }
}

TEST(AdvancedSettingNamesTest, GetSettingName_WithoutStandardKeywords_GivesTheOlderOne) {
    const CAdvancedSettingNames names(false);
    for (const ExpectedSetting& rExpected : kTable) {
        EXPECT_EQ(names.GetSettingName(SettingName(rExpected.number)), rExpected.older);
    }
}

TEST(AdvancedSettingNamesTest, GetSettingName_FollowsTheFlagWhenItChanges) {
    CAdvancedSettingNames names(true);
    names.m_bUseStandardKeywords = false;
    EXPECT_EQ(names.GetSettingName(SettingName::RssMode), L"RssMode");
}

TEST(AdvancedSettingNamesTest, GetSettingName_OfANumberThatIsNoSetting_IsNone) {
    for (const LONG number : {10, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(CAdvancedSettingNames(true).GetSettingName(SettingName(number)), L"None");
        EXPECT_EQ(CAdvancedSettingNames(false).GetSettingName(SettingName(number)), L"None");
    }
}

TEST(AdvancedSettingNamesTest, IsSettingName_TakesEitherKeywordWhicheverIsUsed) {
    for (const bool bStandard : {false, true}) {
        const CAdvancedSettingNames names(bStandard);
        for (const ExpectedSetting& rExpected : kTable) {
            const auto eName = static_cast<SettingName>(rExpected.number);
            EXPECT_TRUE(names.IsSettingName(eName, rExpected.standard));
            EXPECT_EQ(names.IsSettingName(eName, rExpected.older), rExpected.hasOlder);
        }
    }
}

TEST(AdvancedSettingNamesTest, IsSettingName_ComparesExactly) {
    const CAdvancedSettingNames names(true);
    EXPECT_FALSE(names.IsSettingName(SettingName::RssMode, L"*rss"));
    EXPECT_FALSE(names.IsSettingName(SettingName::RssMode, L"rssmode"));
    EXPECT_FALSE(names.IsSettingName(SettingName::RssMode, L"*FlowControl"));
    EXPECT_FALSE(names.IsSettingName(SettingName::RssMode, L""));
}

TEST(AdvancedSettingNamesTest, IsSettingName_OfANumberThatIsNoSetting_IsFalse) {
    const CAdvancedSettingNames names(true);
    for (const LONG number : {10, -1}) {
        EXPECT_FALSE(names.IsSettingName(SettingName(number), L"None"));
        EXPECT_FALSE(names.IsSettingName(SettingName(number), L"*RSS"));
    }
}

} // namespace
