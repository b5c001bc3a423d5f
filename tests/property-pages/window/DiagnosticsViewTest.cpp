// The page "Diagnostics", as a user works it.
#include "FreshMachine.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using pages::Language;
using pages::Say;
using pages::TextId;

/// Waits until the page has nothing under way: its timer asks.
void AwaitIdle(const Desk& desk) {
    for (int left = 400; left > 0 && Desk::IsEnabled(desk.Page(), ID_DIAGNOSTICS_STOP); --left) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        desk.Settle();
    }
    EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_DIAGNOSTICS_STOP));
}

TEST(DiagnosticsViewTest, FitsInEachLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(L"Zorel 10G");
        desk.Turn(Say(TextId::PageDiagnostics));
        desk.ChooseRow(desk.Page(), ID_DIAGNOSTICS_LIST, L"Hardware tests");
        desk.Photograph(desk.Sheet(), L"diagnostics-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
        desk.Press(desk.Page(), ID_DIAGNOSTICS_RUN_ALL);
        desk.Photograph(desk.Sheet(), L"diagnostics-running-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
    }
}

TEST(DiagnosticsViewTest, RunsATestWithinTheTimerAndShowsItsOutcome) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Diagnostics");
    const HWND page = desk.Page();
    desk.ChooseRow(page, ID_DIAGNOSTICS_LIST, L"Register test");
    desk.Press(page, ID_DIAGNOSTICS_RUN);
    EXPECT_TRUE(Desk::IsEnabled(page, ID_DIAGNOSTICS_STOP));
    EXPECT_NE(desk.Rows(page, ID_DIAGNOSTICS_LIST).front().find(L"In Progress"), std::wstring::npos);
    desk.Machine().Advance(std::chrono::seconds(3));
    AwaitIdle(desk);
    EXPECT_NE(desk.Rows(page, ID_DIAGNOSTICS_LIST).front().find(L"Passed"), std::wstring::npos);
    EXPECT_NE(Desk::TextOf(page, ID_DIAGNOSTICS_DETAILS), L"");
}

TEST(DiagnosticsViewTest, StopsATest) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Diagnostics");
    desk.Press(desk.Page(), ID_DIAGNOSTICS_RUN_ALL);
    desk.Press(desk.Page(), ID_DIAGNOSTICS_STOP);
    desk.Machine().Advance(std::chrono::seconds(1));
    AwaitIdle(desk);
    EXPECT_NE(desk.Rows(desk.Page(), ID_DIAGNOSTICS_LIST).front().find(L"Stopped"), std::wstring::npos);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_DIAGNOSTICS_PROGRESS), Say(TextId::DiagBefore));
}

} // namespace

} // namespace quillet::tests
