// The pages of link security, as a user works them.
#include "FreshMachine.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using pages::Language;
using pages::Say;
using pages::TextId;

/// The number of the button "Apply" of every property sheet.
TEST(LinkSecurityViewTest, FitsInEachLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(L"Zorel Quad");
        for (const TextId page : {TextId::PageSecurity, TextId::PageKeys, TextId::PagePac}) {
            desk.Turn(Say(page));
            if (page == TextId::PageSecurity) {
                desk.Pick(desk.Page(), ID_SECURITY_OUTER, Say(TextId::SecurityMethod, {L"4"}));
                desk.Type(desk.Page(), ID_SECURITY_PASSWORD, L"secret");
            }
            desk.Photograph(desk.Sheet(), L"security-" + std::to_wstring(unsigned(page)) + L"-" +
                                              std::to_wstring(int(language)));
            EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
        }
    }
}

TEST(LinkSecurityViewTest, SavedSecretsFitBesideTheirFields) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(L"Zorel Quad");
        desk.Turn(Say(TextId::PageKeys));
        for (const int id : {ID_KEYS_OUT_KEY, ID_KEYS_IN_KEY, ID_KEYS_MASTER}) {
            desk.Type(desk.Page(), id, L"00112233");
        }
        desk.Press(desk.Sheet(), kApply);
        const HWND box = desk.Box();
        desk.Click(box, IDNO);
        desk.AwaitGone(box);
        desk.Settle();
        EXPECT_EQ(Desk::TextOf(desk.Page(), ID_KEYS_OUT_KEY), L"") << "what was written is forgotten";
        EXPECT_EQ(Desk::TextOf(desk.Page(), ID_KEYS_OUT_WORDS), Say(TextId::SecretSet));
        desk.Photograph(desk.Sheet(), L"keys-set-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
    }
}

TEST(LinkSecurityViewTest, PasswordsAreTypedBlindAndNotShownAgain) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel Quad");
    desk.Turn(L"Link security");
    HWND page = desk.Page();
    EXPECT_FALSE(Desk::IsEnabled(page, ID_SECURITY_PASSWORD));
    desk.Pick(page, ID_SECURITY_OUTER, L"Method 2");
    EXPECT_TRUE(Desk::IsEnabled(page, ID_SECURITY_PASSWORD));
    EXPECT_FALSE(Desk::IsEnabled(page, ID_SECURITY_PAC));
    EXPECT_NE(GetWindowLongW(GetDlgItem(page, ID_SECURITY_PASSWORD), GWL_STYLE) & ES_PASSWORD, 0);
    desk.Type(page, ID_SECURITY_USER, L"operator");
    desk.Type(page, ID_SECURITY_PASSWORD, L"secret");
    desk.Press(page, ID_SECURITY_RELOAD);
    const HWND sheet = desk.Sheet();
    desk.Click(sheet, IDOK);
    const HWND box = desk.Box(L"driver");
    desk.Click(box, IDYES);
    desk.AwaitGone(sheet);
    desk.Settle(); // the tree is read again
    desk.Open(L"Zorel Quad");
    desk.Turn(L"Link security");
    page = desk.Page();
    EXPECT_EQ(Desk::TextOf(page, ID_SECURITY_USER), L"operator");
    EXPECT_EQ(Desk::TextOf(page, ID_SECURITY_PASSWORD), L"");
    EXPECT_EQ(Desk::TextOf(page, ID_SECURITY_PASSWORD_WORDS), Say(TextId::SecretSet));
    EXPECT_EQ(Desk::TextOf(page, ID_SECURITY_SAVED), Say(TextId::SavedWith, {L"operator"}));
}

TEST(LinkSecurityViewTest, APacIsImportedShownAndDeletedAfterAQuestion) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel Quad");
    desk.Turn(L"PAC and log");
    const HWND page = desk.Page();
    EXPECT_FALSE(Desk::IsEnabled(page, ID_PAC_IMPORT));
    EXPECT_FALSE(Desk::IsEnabled(page, ID_PAC_LOOK));
    desk.Type(page, ID_PAC_FILE, L"netadmin.pac");
    desk.Type(page, ID_PAC_PASSWORD, L"secret");
    desk.Press(page, ID_PAC_RELOAD);
    desk.Press(page, ID_PAC_IMPORT);
    EXPECT_EQ(Desk::TextOf(page, ID_NOTICE), Say(TextId::PacImported, {L"netadmin.pac"}));
    EXPECT_EQ(Desk::TextOf(page, ID_PAC_PASSWORD), L"") << "what was used is forgotten";
    EXPECT_EQ(Desk::TextOf(page, ID_PAC_NAME), L"netadmin.pac");
    desk.Press(page, ID_PAC_LOOK);
    EXPECT_NE(Desk::TextOf(page, ID_PAC_CONTENTS).find(L"Tunnel PAC"), std::wstring::npos);
    desk.Photograph(desk.Sheet(), L"pac");
    desk.Click(page, ID_PAC_DELETE);
    const HWND box = desk.Box(L"netadmin.pac");
    desk.Click(box, IDYES);
    desk.AwaitGone(box);
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(page, ID_NOTICE), Say(TextId::PacDeleted, {L"netadmin.pac"}));
    EXPECT_EQ(Desk::TextOf(page, ID_PAC_CONTENTS), L"");
}

TEST(LinkSecurityViewTest, WithoutLinkSecurityNothingCanBeEntered) {
    const Desk desk(FreshMachine());
    desk.Open(L"Zorel 10G");
    desk.Turn(L"Link security");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_SECURITY_STATUS), Say(TextId::NoLinkSecurity));
    EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_SECURITY_OUTER));
    desk.Turn(L"Keys");
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_KEYS_WHY), Say(TextId::NoLinkSecurity));
    EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_KEYS_OUT_KEY));
    desk.Photograph(desk.Sheet(), L"keys-none");
    EXPECT_EQ(desk.Flaws(desk.Page()), std::vector<std::wstring>());
}

} // namespace

} // namespace quillet::tests
