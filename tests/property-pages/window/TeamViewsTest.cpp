// The pages of teams, as a user works them.
#include "FreshMachine.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using pages::Language;
using pages::Say;
using pages::TextId;
using TeamTexts = std::vector<std::wstring>;

constexpr Language kLanguages[] = {Language::English, Language::German, Language::French};
constexpr const wchar_t* kAnyTeam = L"TEAM";
constexpr const wchar_t* kMemberLine = L"Zorel Quad Port Gigabit Server Adapter (Slot 4";
constexpr const wchar_t* kFreeLine = L"Zorel 10G";
/// How the row of a quad adapter's port begins.
std::wstring PortRow(const wchar_t* port) {
    return std::wstring(L"Slot 4, port ") + port + L": Zorel Quad Port Gigabit Server Adapter";
}

TEST(TeamViewTest, ChangesMembersInOneClientSet) {
    const Desk desk(FreshMachine());
    desk.Open(kAnyTeam);
    EXPECT_EQ(desk.Tabs(), (TeamTexts{L"Team", L"VLANs", L"Advanced", L"Switch test"}));
    EXPECT_EQ(desk.Rows(desk.Page(), ID_TEAM_MEMBERS)[0],
              L"[x] " + PortRow(L"1") + L" | 1 Gbit/s | primary | active");
    desk.TickRow(desk.Page(), ID_TEAM_MEMBERS, PortRow(L"3"), true);
    desk.ChooseRow(desk.Page(), ID_TEAM_MEMBERS, PortRow(L"2"));
    desk.Pick(desk.Page(), ID_TEAM_ROLE, L"primary");
    desk.Settle();
    EXPECT_EQ(desk.Rows(desk.Page(), ID_TEAM_MEMBERS)[0],
              L"[x] " + PortRow(L"1") + L" | 1 Gbit/s | secondary | active");
    desk.Machine().Calls().Clear();
    desk.Click(desk.Sheet(), kApply);
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), L"");
    EXPECT_EQ(desk.Rows(desk.Page(), ID_TEAM_MEMBERS)[1],
              L"[x] " + PortRow(L"2") + L" | 1 Gbit/s | primary | active");
    int sets = 0;
    for (const simulator::JournalEntry& entry : desk.Machine().Calls().All()) {
        sets += entry.operation == simulator::Operation::ExecMethod && entry.method == L"BeginApply" ? 1 : 0;
    }
    EXPECT_EQ(sets, 1);
}

TEST(TeamViewTest, TellsWhatIsWrongAndFindsTheBestMode) {
    const Desk desk(FreshMachine());
    desk.Open(kAnyTeam);
    desk.Type(desk.Page(), ID_TEAM_NAME, L"   ");
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), L"this cannot be the name of a team");
    desk.Type(desk.Page(), ID_TEAM_NAME, L"TEAM : Dach");
    desk.Settle();
    desk.Press(desk.Sheet(), kApply);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), L"");
    desk.Press(desk.Page(), ID_TEAM_BEST);
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_TEAM_ABOUT).find(L"Best for this team: "), 0u);
    desk.Photograph(desk.Sheet(), L"team-best");
}

TEST(TeamViewTest, IsInOrderInEveryLanguage) {
    for (const Language language : kLanguages) {
        const Desk desk(FreshMachine(), language);
        desk.Open(kAnyTeam);
        desk.Type(desk.Page(), ID_TEAM_NAME, L" ");
        desk.Settle();
        desk.Photograph(desk.Sheet(), L"team-wrong-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), TeamTexts());
        desk.Press(desk.Page(), ID_TEAM_BEST);
        desk.Photograph(desk.Sheet(), L"team-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), TeamTexts());
        desk.Turn(Say(TextId::PageSwitchTest));
        desk.Photograph(desk.Sheet(), L"switch-none-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), TeamTexts());
    }
}

TEST(SwitchTestViewTest, RunsToItsEnd) {
    for (const Language language : kLanguages) {
        const Desk desk(FreshMachine(), language);
        desk.Open(kAnyTeam);
        desk.Pick(desk.Page(), ID_TEAM_MODE,
                  language == Language::English  ? L"IEEE"
                  : language == Language::German ? L"dynamische"
                                                 : L"agrégation dynamique");
        desk.Settle();
        desk.Press(desk.Sheet(), kApply);
        desk.Turn(Say(TextId::PageSwitchTest));
        desk.Press(desk.Page(), ID_SWITCH_START);
        EXPECT_TRUE(Desk::IsEnabled(desk.Page(), ID_SWITCH_STOP));
        desk.Photograph(desk.Sheet(), L"switch-running-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), TeamTexts());
        desk.Machine().SetHardwareStatus(L"{DF69224E-BBCB-576F-A929-C8858BAF7155}", 2);
        desk.Machine().Advance(std::chrono::minutes(5));
        for (int left = 200; left > 0 && Desk::IsEnabled(desk.Page(), ID_SWITCH_STOP); --left) {
            Sleep(20);
            desk.Settle();
        }
        EXPECT_TRUE(Desk::IsEnabled(desk.Page(), ID_SWITCH_START));
        EXPECT_NE(Desk::TextOf(desk.Page(), ID_SWITCH_SOLUTION), L"");
        desk.Photograph(desk.Sheet(), L"switch-failed-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), TeamTexts());
    }
}

TEST(TeamingViewTest, LeavesATeam) {
    const Desk desk(FreshMachine());
    desk.Open(kMemberLine);
    desk.Turn(L"Teaming");
    EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_TEAMING_NEW_TEAM));
    desk.Pick(desk.Page(), ID_TEAMING_TEAM, L"no team");
    desk.Settle();
    EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_TEAMING_ROLE));
    desk.Click(desk.Sheet(), kApply);
    desk.Click(desk.Box(L"will leave “TEAM : Zürich”"), IDYES);
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), L"");
    EXPECT_TRUE(desk.Rows(desk.Page(), ID_TEAMING_MEMBERS).empty());
    EXPECT_TRUE(Desk::IsEnabled(desk.Page(), ID_TEAMING_NEW_TEAM));
}

TEST(TeamingViewTest, BeginsANewTeamWithTheAdapter) {
    const Desk desk(FreshMachine());
    desk.Open(kFreeLine);
    desk.Turn(L"Teaming");
    const HWND sheet = desk.Sheet();
    desk.Click(desk.Page(), ID_TEAMING_NEW_TEAM);
    for (int left = 200; left > 0 && desk.Sheet() == sheet; --left) {
        Sleep(20);
    }
    desk.Settle();
    EXPECT_NE(GetDlgItem(desk.Page(), ID_WIZARD_NAME_TEXT), nullptr);
    SendMessageW(desk.Sheet(), WM_COMMAND, IDCANCEL, 0);
}

TEST(TeamingViewTest, IsInOrderInEveryLanguage) {
    for (const Language language : kLanguages) {
        const Desk desk(FreshMachine(), language);
        desk.Open(kMemberLine);
        desk.Turn(Say(TextId::PageTeaming));
        desk.Photograph(desk.Sheet(), L"teaming-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), TeamTexts());
    }
}

} // namespace

} // namespace quillet::tests
