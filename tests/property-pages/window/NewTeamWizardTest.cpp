// The New Team wizard, as a user works it.
#include "FreshMachine.h"
#include "Refusal.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using pages::Language;
using WizardTexts = std::vector<std::wstring>;

/// The wizard's own buttons.
constexpr int kBack = 12323;
constexpr int kNext = 12324;
constexpr int kFinish = 12325;

/// Presses Finish when it can be: the wizard shows its buttons a message later than its page.
void PressFinish(const Desk& desk) {
    for (int left = 100; left > 0 && !Desk::IsEnabled(desk.Sheet(), kFinish); --left) {
        desk.Settle();
    }
    desk.Click(desk.Sheet(), kFinish);
}

/// Opens the wizard, and goes to the page of the members.
void BeginWizard(const Desk& desk) {
    desk.Click(desk.Start(), ID_START_NEW_TEAM);
    desk.Sheet();
    desk.Settle();
    desk.Type(desk.Page(), ID_WIZARD_NAME_TEXT, L"TEAM : Keller");
    desk.Press(desk.Sheet(), kNext);
}

std::wstring RowAtPort(const Desk& desk, const std::wstring& port) {
    for (const std::wstring& row : desk.Rows(desk.Page(), ID_WIZARD_MEMBERS_LIST)) {
        if (row.find(L"Quad") != std::wstring::npos && row.find(port + L")") != std::wstring::npos) {
            return row.substr(4, row.find(L')') - 3);
        }
    }
    return L"?";
}

/// Ticks two ports that can be teamed.
void TickTwo(const Desk& desk) {
    for (const wchar_t* port : {L" 3", L" 4"}) {
        desk.TickRow(desk.Page(), ID_WIZARD_MEMBERS_LIST, RowAtPort(desk, port), true);
    }
}

TEST(NewTeamWizardTest, MakesATeam) {
    const Desk desk(FreshMachine());
    BeginWizard(desk);
    TickTwo(desk);
    desk.Press(desk.Sheet(), kNext);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), L"");
    EXPECT_NE(Desk::TextOf(desk.Page(), ID_WIZARD_MODE_ABOUT), L"");
    desk.Press(desk.Sheet(), kNext);
    EXPECT_NE(Desk::TextOf(desk.Page(), ID_WIZARD_SUMMARY_TEXT).find(L"TEAM : Keller"), std::wstring::npos);
    const HWND wizard = desk.Sheet();
    PressFinish(desk);
    const HWND box = desk.Box(L"has been made");
    desk.Photograph(box, L"wizard-made");
    desk.Click(box, IDOK);
    desk.AwaitGone(wizard);
    desk.Settle();
    bool isThere = false;
    for (const std::wstring& line : desk.Tree()) {
        isThere = isThere || line.find(L"  TEAM : Keller") == 0;
    }
    EXPECT_TRUE(isThere);
}

TEST(NewTeamWizardTest, StaysWhereSomethingIsWrong) {
    const Desk desk(FreshMachine());
    desk.Click(desk.Start(), ID_START_NEW_TEAM);
    desk.Sheet();
    desk.Settle();
    EXPECT_FALSE(Desk::IsEnabled(desk.Sheet(), kBack));
    // The name goes on behind what the machine proposes.
    EXPECT_EQ(SendMessageW(GetDlgItem(desk.Page(), ID_WIZARD_NAME_TEXT), EM_GETSEL, 0, 0), MAKELONG(7, 7));
    desk.Type(desk.Page(), ID_WIZARD_NAME_TEXT, L"TEAM : Zürich");
    desk.Press(desk.Sheet(), kNext);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), L"a team with this name exists");
    EXPECT_TRUE(Desk::IsEnabled(desk.Sheet(), kNext));
    desk.Type(desk.Page(), ID_WIZARD_NAME_TEXT, L"TEAM : Keller");
    desk.Press(desk.Sheet(), kNext);
    desk.Press(desk.Sheet(), kNext);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), L"Tick the adapters that are to become members.");
    desk.Press(desk.Sheet(), kBack);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_WIZARD_NAME_TEXT), L"TEAM : Keller");
}

TEST(NewTeamWizardTest, AFailureKeepsEverything) {
    const Desk desk(FreshMachine());
    Refuse(desk.Machine(), L"CreateTeam");
    BeginWizard(desk);
    TickTwo(desk);
    desk.Press(desk.Sheet(), kNext);
    desk.Press(desk.Sheet(), kNext);
    PressFinish(desk);
    desk.Settle();
    EXPECT_NE(Desk::TextOf(desk.Page(), ID_NOTICE).find(L"access is denied"), std::wstring::npos);
    desk.Photograph(desk.Sheet(), L"wizard-refused");
    PressFinish(desk);
    desk.Click(desk.Box(L"has been made"), IDOK);
}

TEST(NewTeamWizardTest, IsInOrderInEveryLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        const std::wstring number = std::to_wstring(int(language));
        desk.Click(desk.Start(), ID_START_NEW_TEAM);
        desk.Sheet();
        desk.Settle();
        desk.Photograph(desk.Sheet(), L"wizard-name-" + number);
        EXPECT_EQ(desk.Flaws(desk.Page()), WizardTexts());
        desk.Type(desk.Page(), ID_WIZARD_NAME_TEXT, L"TEAM : Keller");
        desk.Press(desk.Sheet(), kNext);
        TickTwo(desk);
        desk.Photograph(desk.Sheet(), L"wizard-members-" + number);
        EXPECT_EQ(desk.Flaws(desk.Page()), WizardTexts());
        desk.Press(desk.Sheet(), kNext);
        desk.Photograph(desk.Sheet(), L"wizard-mode-" + number);
        EXPECT_EQ(desk.Flaws(desk.Page()), WizardTexts());
        desk.Press(desk.Sheet(), kNext);
        desk.Photograph(desk.Sheet(), L"wizard-summary-" + number);
        EXPECT_EQ(desk.Flaws(desk.Page()), WizardTexts());
    }
}

} // namespace

} // namespace quillet::tests
