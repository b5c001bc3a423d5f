// The page "Power", as a user works it.
#include "FreshMachine.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using pages::Language;
using pages::Say;
using pages::TextId;

TEST(PowerViewTest, FitsInEachLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(L"Zorel Quad");
        desk.Turn(Say(TextId::PagePower));
        desk.Photograph(desk.Sheet(), L"power-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
    }
}

TEST(PowerViewTest, WritesWhatIsTicked) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel Quad");
    desk.Turn(L"Power");
    const HWND page = desk.Page();
    constexpr int kOnLink = ID_WAKE_OPTIONS + 1;
    constexpr int kReduceSpeed = ID_POWER_OPTIONS + 1;
    EXPECT_FALSE(Desk::IsTicked(page, kOnLink));
    EXPECT_TRUE(Desk::IsTicked(page, kReduceSpeed));
    desk.Press(page, kOnLink);
    desk.Press(page, kReduceSpeed);
    desk.Pick(page, ID_POWER_MODE, L"Mode 2");
    desk.Machine().Calls().Clear();
    const HWND sheet = desk.Sheet();
    desk.Press(sheet, IDOK);
    desk.AwaitGone(sheet);
    desk.Settle(); // the tree is read again
    desk.Open(L"Zorel Quad");
    desk.Turn(L"Power");
    EXPECT_TRUE(Desk::IsTicked(desk.Page(), kOnLink));
    EXPECT_FALSE(Desk::IsTicked(desk.Page(), kReduceSpeed));
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_POWER_MODE), L"Mode 2");
}

TEST(PowerViewTest, WhatTheAdapterDoesNotHaveIsGreyAndExplained) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Power");
    EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_POWER_OPTIONS));
    EXPECT_TRUE(Desk::IsEnabled(desk.Page(), ID_WAKE_OPTIONS + 2));
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_POWER_WHY), Say(TextId::PowerNotAll));
}

TEST(PowerViewTest, OffersARestartAfterReapplying) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel Quad");
    desk.Turn(L"Power");
    desk.Machine().RequireFollowup(1);
    desk.Click(desk.Page(), ID_POWER_REAPPLY);
    const HWND box = desk.Box(L"restarted");
    desk.Click(box, IDYES);
    desk.AwaitGone(box);
    desk.Settle();
    EXPECT_EQ(desk.Restarts(), 1);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), Say(TextId::PowerReapplied));
}

} // namespace

} // namespace quillet::tests
