// The one keyword that depends on the version of the operating system.
#include <quillet/SettingNames.h>
#include <quillet-platform/TestHooks.h>

#include <gtest/gtest.h>

using namespace quillet::platform;

namespace {

class AdvancedSettingNamesBySystem : public testing::Test {
  protected:
    ~AdvancedSettingNamesBySystem() override { ResetHooks(); }
    static std::wstring LargeSend(bool bStandard) {
        return CAdvancedSettingNames(bStandard).GetSettingName(SettingName::TcpSegmentation);
    }
};

TEST_F(AdvancedSettingNamesBySystem, BelowMajorVersionSix_TheOlderKeywordIsGiven) {
    SetOsVersion(5, 2);
    EXPECT_EQ(LargeSend(true), L"TcpSegmentation");
    EXPECT_EQ(LargeSend(false), L"TcpSegmentation");
}

TEST_F(AdvancedSettingNamesBySystem, BelowMajorVersionSix_OtherSettingsKeepTheirStandardisedKeywords) {
    SetOsVersion(5, 2);
    EXPECT_EQ(CAdvancedSettingNames(true).GetSettingName(SettingName::LsoV2IPv4), L"*LsoV2IPv4");
    EXPECT_EQ(CAdvancedSettingNames(true).GetSettingName(SettingName::RssMode), L"*RSS");
}

TEST_F(AdvancedSettingNamesBySystem, BelowMajorVersionSix_EitherKeywordIsStillRecognised) {
    SetOsVersion(5, 2);
    EXPECT_TRUE(CAdvancedSettingNames(true).IsSettingName(SettingName::TcpSegmentation, L"*LsoV1IPv4"));
    EXPECT_TRUE(CAdvancedSettingNames(true).IsSettingName(SettingName::TcpSegmentation, L"TcpSegmentation"));
}

TEST_F(AdvancedSettingNamesBySystem, FromMajorVersionSix_TheFlagDecides) {
    for (const DWORD major : {6u, 10u}) {
        SetOsVersion(major, 0);
        EXPECT_EQ(LargeSend(true), L"*LsoV1IPv4");
        EXPECT_EQ(LargeSend(false), L"TcpSegmentation");
    }
}

TEST_F(AdvancedSettingNamesBySystem, OfAnotherPlatform_TheOlderKeywordIsGivenWhateverTheVersion) {
    SetOsVersion(6, 1, 1);
    EXPECT_EQ(LargeSend(true), L"TcpSegmentation");
}

TEST_F(AdvancedSettingNamesBySystem, WithoutTheExtendedVersion_TheBasicOneDecides) {
    FailExtendedVersion(true);
    SetOsVersion(6, 1);
    EXPECT_EQ(LargeSend(true), L"*LsoV1IPv4");
    SetOsVersion(5, 1);
    EXPECT_EQ(LargeSend(true), L"TcpSegmentation");
}

} // namespace
