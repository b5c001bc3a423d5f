// The performance profile on the page "Advanced", as a user works it.
#include "FreshMachine.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using pages::Language;
using pages::Say;
using pages::TextId;

TEST(ProfileViewTest, FitsInEachLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(L"Zorel 10G");
        desk.Turn(Say(TextId::PageSettings));
        desk.Photograph(desk.Sheet(), L"profile-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
    }
}

TEST(ProfileViewTest, ChoosesItsSettingAndIsWritten) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Advanced");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_SETTINGS_PROFILE), L"Storage Server");
    desk.Pick(desk.Page(), ID_SETTINGS_PROFILE, L"Web Server");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_SETTINGS_NAME), L"Performance Profile");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_SETTINGS_CHOICE), L"Web Server");
    desk.Photograph(desk.Sheet(), L"profile-picked");
    const HWND sheet = desk.Sheet();
    desk.Press(sheet, IDOK);
    desk.AwaitGone(sheet);
    desk.Settle(); // the tree is read again
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Advanced");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_SETTINGS_PROFILE), L"Web Server");
}

TEST(ProfileViewTest, IsReplacedOnAllAdaptersAfterAQuestion) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(L"Zorel 10G");
        desk.Turn(Say(TextId::PageSettings));
        EXPECT_FALSE(Desk::IsShown(desk.Page(), ID_SETTINGS_PROFILE_ALL));
        desk.Pick(desk.Page(), ID_SETTINGS_PROFILE, L"Virtualization");
        const HWND sheet = desk.Sheet();
        desk.Press(sheet, IDOK);
        desk.AwaitGone(sheet);
        desk.Settle(); // the tree is read again
        desk.Open(L"Zorel 10G");
        desk.Turn(Say(TextId::PageSettings));
        const HWND page = desk.Page();
        EXPECT_FALSE(Desk::IsEnabled(page, ID_SETTINGS_PROFILE_ALL));
        desk.Pick(page, ID_SETTINGS_PROFILE, L"Standard");
        desk.Photograph(desk.Sheet(), L"profile-all-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(page), std::vector<std::wstring>());
        desk.Click(page, ID_SETTINGS_PROFILE_ALL);
        const HWND box = desk.Box(L"Standard Server");
        desk.Click(box, IDYES);
        desk.AwaitGone(box);
        desk.Settle();
        EXPECT_EQ(Desk::TextOf(page, ID_NOTICE), Say(TextId::ProfileReplaced));
        EXPECT_FALSE(Desk::IsShown(page, ID_SETTINGS_PROFILE_ALL));
    }
}

TEST(ProfileViewTest, WithoutAProfileTheListHasItsPlace) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Boot agent settings");
    EXPECT_FALSE(Desk::IsShown(desk.Page(), ID_SETTINGS_PROFILE));
    desk.Photograph(desk.Sheet(), L"profile-none");
    EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
}

} // namespace

} // namespace quillet::tests
