// Enumerated settings: enabled and disabled values, texts of values, and the trace lines of both.
#include <quillet/Setting.h>

#include "TraceFile.h"

#include <gtest/gtest.h>

namespace {

CSettingEnum WithCaption(const wchar_t* caption) {
    CSettingEnum setting;
    setting.m_wsCaption = caption;
    return setting;
}

CSettingEnum SpeedDuplex() {
    CSettingEnum setting = WithCaption(L"*SpeedDuplex");
    setting.m_vecPossibleValues = {L"0", L"4", L"6", L"a"};
    setting.m_vecDescriptionMap = {L"Auto Negotiation", L"100 Mbps Full Duplex", L"1.0 Gbps Full Duplex"};
    return setting;
}

struct Expected {
    const wchar_t* caption;
    LONG enabled;
    LONG disabled;
};

class EnabledValues : public testing::TestWithParam<Expected> {};

TEST_P(EnabledValues, AreThoseOfTheCaption) {
    CSettingEnum setting = WithCaption(GetParam().caption);
    EXPECT_EQ(setting.GetEnabledValue(), GetParam().enabled);
    EXPECT_EQ(setting.GetDisabledValue(), GetParam().disabled);
    setting.Enable(true);
    EXPECT_EQ(setting.m_lCurrentValue, GetParam().enabled);
    EXPECT_TRUE(setting.IsEnabled());
    setting.Enable(false);
    EXPECT_EQ(setting.m_lCurrentValue, GetParam().disabled);
    EXPECT_EQ(setting.IsEnabled(), GetParam().enabled == GetParam().disabled);
}

INSTANTIATE_TEST_SUITE_P(
    ByCaption, EnabledValues,
    testing::Values(Expected{L"*RSS", 1, 0}, Expected{L"RssMode", 65535, 0}, Expected{L"EnableDca", 1, 0},
                    Expected{L"InitiatorDHCP", 1, 0}, Expected{L"TargetDHCP", 1, 0},
                    Expected{L"Authentication", 1, 0}, Expected{L"*TCPChecksumOffloadIPv4", 3, 0},
                    Expected{L"*TCPChecksumOffloadIPv6", 3, 0}, Expected{L"*UDPChecksumOffloadIPv4", 3, 0},
                    Expected{L"*IPChecksumOffloadIPv4", 3, 0}, Expected{L"LogLinkStateEvent", 51, 16},
                    Expected{L"WaitAutoNegComplete", 1, 1}, Expected{L"*InterruptModeration", 1, 0},
                    Expected{L"*PriorityVLANTag", 1, 0}, Expected{L"TcpSegmentation", 1, 0},
                    Expected{L"ChecksumTxTcp", 1, 0}, Expected{L"ChecksumRxTcp", 1, 0},
                    Expected{L"ChecksumRxIp", 1, 0}, Expected{L"ChecksumTxIp", 1, 0},
                    Expected{L"*UDPChecksumOffloadIPv6", 3, 0}, Expected{L"*IPsecOffloadV2", 3, 0},
                    Expected{L"BootTargets", 1, 0}, Expected{L"FCoEBootEnabled", 1, 0},
                    Expected{L"*FlowControl", 1, 0}, Expected{L"", 1, 0}, Expected{L"*rss", 1, 0},
                    Expected{L"rssmode", 1, 0}, Expected{L"loglinkstateevent", 1, 0}));

TEST(SettingEnum, IsEnabled_OfAnotherValueThanTheEnabledOne_IsFalse) {
    CSettingEnum setting = WithCaption(L"*TCPChecksumOffloadIPv4");
    setting.m_lCurrentValue = 1;
    EXPECT_FALSE(setting.IsEnabled());
    setting.m_lCurrentValue = 3;
    EXPECT_TRUE(setting.IsEnabled());
}

TEST(SettingEnum, GetEnabledValue_GoesByTheCaptionNotByTheDescriptions) {
    CSettingEnum setting = WithCaption(L"RssMode");
    setting.m_vecPossibleValues = {L"7"};
    setting.m_vecDescriptionMap = {L"Enabled"};
    EXPECT_EQ(setting.GetEnabledValue(), 65535);
}

TEST(SettingEnum, GetDesc_FindsTheTextOfAValueIgnoringCase) {
    const CSettingEnum setting = SpeedDuplex();
    EXPECT_EQ(setting.GetDesc(L"4"), L"100 Mbps Full Duplex");
    EXPECT_EQ(setting.GetDesc(L"5"), L"");
    EXPECT_EQ(setting.GetDesc(L""), L"");
}

TEST(SettingEnum, GetDesc_BeyondTheDescriptions_IsEmpty) {
    EXPECT_EQ(SpeedDuplex().GetDesc(L"A"), L"");
}

TEST(SettingEnum, GetDesc_OfAValueThatOccursTwice_IsTheFirst) {
    CSettingEnum setting;
    setting.m_vecPossibleValues = {L"b", L"B"};
    setting.m_vecDescriptionMap = {L"first", L"second"};
    EXPECT_EQ(setting.GetDesc(L"B"), L"first");
}

TEST(SettingEnum, GetValue_FindsTheValueOfATextIgnoringCase) {
    const CSettingEnum setting = SpeedDuplex();
    EXPECT_EQ(setting.GetValue(L"1.0 gbps full duplex"), L"6");
    EXPECT_EQ(setting.GetValue(L"1.0 Gbps"), L"");
}

TEST(SettingEnum, GetValue_BeyondTheValues_IsEmpty) {
    CSettingEnum setting;
    setting.m_vecPossibleValues = {L"0"};
    setting.m_vecDescriptionMap = {L"Off", L"On"};
    EXPECT_EQ(setting.GetValue(L"on"), L"");
    EXPECT_EQ(setting.GetValue(L"off"), L"0");
}

TEST(SettingEnum, GetDescForCurrentValue_IsTheTextOfTheCurrentValue) {
    CSettingEnum setting = SpeedDuplex();
    setting.m_lCurrentValue = 6;
    EXPECT_EQ(setting.GetDescForCurrentValue(), L"1.0 Gbps Full Duplex");
    setting.m_lCurrentValue = 60;
    EXPECT_EQ(setting.GetDescForCurrentValue(), L"");
}

using Lines = std::vector<std::string>;

TEST(SettingEnumTrace, EnabledAndDisabledValue_OfAKnownCaption) {
    const CSettingEnum setting = WithCaption(L"*RSS");
    TraceFile trace;
    setting.GetEnabledValue();
    setting.GetDisabledValue();
    EXPECT_EQ(
        trace.NewLines(),
        (Lines{"Entering CSettingEnum::GetEnabledValue()", "Exiting CSettingEnum::GetEnabledValue()",
               "Entering CSettingEnum::GetDisabledValue()", "Exiting CSettingEnum::GetDisabledValue()"}));
}

TEST(SettingEnumTrace, EnabledAndDisabledValue_OfAnUnknownCaptionSayOne) {
    const CSettingEnum setting = WithCaption(L"*rss");
    TraceFile trace;
    EXPECT_EQ(setting.GetEnabledValue(), 1);
    EXPECT_EQ(setting.GetDisabledValue(), 0);
    EXPECT_EQ(
        trace.NewLines(),
        (Lines{"Entering CSettingEnum::GetEnabledValue()",
               "Error occurred in CSettingValues::GetEnabledValue() - -1 returned, returning 1 as a result",
               "Exiting CSettingEnum::GetEnabledValue()", "Entering CSettingEnum::GetDisabledValue()",
               "Error occurred in CSettingValues::GetDisabledValue() - -1 returned, returning 1 as a result",
               "Exiting CSettingEnum::GetDisabledValue()"}));
}

TEST(SettingEnumTrace, EnableAndIsEnabled_TraceTheLookUpInside) {
    CSettingEnum setting = WithCaption(L"*RSS");
    TraceFile trace;
    setting.Enable(false);
    EXPECT_EQ(trace.NewLines(),
              (Lines{"Entering CSettingEnum::Enable()", "Entering CSettingEnum::GetDisabledValue()",
                     "Exiting CSettingEnum::GetDisabledValue()", "Exiting CSettingEnum::Enable()"}));
    setting.IsEnabled();
    EXPECT_EQ(trace.NewLines(),
              (Lines{"Entering CSettingEnum::IsEnabled()", "Entering CSettingEnum::GetEnabledValue()",
                     "Exiting CSettingEnum::GetEnabledValue()", "Exiting CSettingEnum::IsEnabled()"}));
}

TEST(SettingEnumTrace, Texts) {
    const CSettingEnum setting = SpeedDuplex();
    TraceFile trace;
    setting.GetDescForCurrentValue();
    setting.GetValue(L"%s%s%s%n");
    EXPECT_EQ(trace.NewLines(),
              (Lines{"Entering CSettingEnum::GetDescForCurrentValue()", "Entering CSettingEnum::GetDesc()",
                     "Exiting CSettingEnum::GetDesc()", "Exiting CSettingEnum::GetDescForCurrentValue()",
                     "Entering CSettingEnum::GetValue()", "Exiting CSettingEnum::GetValue()"}));
}

} // namespace
