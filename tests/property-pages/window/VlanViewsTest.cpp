// The pages and dialogs of VLANs, as a user works them.
#include "FreshMachine.h"
#include "Refusal.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace quillet::tests {

namespace {

using pages::Language;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kTeam = L"TEAM";
constexpr const wchar_t* kFree = L"Zorel 10G";
constexpr const wchar_t* kMember = L"Zorel Quad";

bool HasLine(const Desk& desk, const std::wstring& text) {
    const Texts lines = desk.Tree();
    return std::ranges::any_of(
        lines, [&](const std::wstring& line) { return line.find(text) != std::wstring::npos; });
}

TEST(NewVlanDialogTest, MakesAVlan) {
    const Desk desk(FreshMachine());
    desk.ChooseLine(kTeam);
    desk.Click(desk.Start(), ID_START_NEW_VLAN);
    const HWND dialog = desk.Box(L"Name");
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(dialog, ID_VLAN_ID), L"1");
    EXPECT_FALSE(Desk::IsEnabled(dialog, IDOK));
    desk.Type(dialog, ID_VLAN_NAME, L"VoIP");
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(dialog, ID_VLAN_NAME_PROBLEM), L"a VLAN with this name exists");
    EXPECT_FALSE(Desk::IsEnabled(dialog, IDOK));
    desk.Type(dialog, ID_VLAN_ID, L"5000");
    desk.Settle();
    desk.Photograph(dialog, L"new-vlan-wrong");
    EXPECT_EQ(desk.Flaws(dialog), Texts());
    desk.Type(dialog, ID_VLAN_ID, L"77");
    desk.Type(dialog, ID_VLAN_NAME, L"Lab");
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(dialog, ID_VLAN_NAME_PROBLEM), L"");
    desk.Click(dialog, IDOK);
    desk.AwaitGone(dialog);
    desk.Settle();
    EXPECT_TRUE(HasLine(desk, L"VLAN 77 Lab"));
}

TEST(NewVlanDialogTest, CancelChangesNothing) {
    const Desk desk(FreshMachine());
    desk.ChooseLine(kTeam);
    desk.Click(desk.Start(), ID_START_NEW_VLAN);
    const HWND dialog = desk.Box(L"Name");
    desk.Type(dialog, ID_VLAN_NAME, L"Lab");
    desk.Settle();
    desk.Machine().Calls().Clear();
    desk.Click(dialog, IDCANCEL);
    desk.AwaitGone(dialog);
    EXPECT_TRUE(desk.Machine().Calls().Of(simulator::Operation::ExecMethod).empty());
}

TEST(NewVlanDialogTest, SaysWhereThereAreNone) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.ChooseLine(kMember);
        desk.Click(desk.Start(), ID_START_NEW_VLAN);
        const HWND dialog = desk.Box(L"VLAN");
        desk.Settle();
        EXPECT_FALSE(Desk::IsEnabled(dialog, ID_VLAN_NAME));
        EXPECT_NE(Desk::TextOf(dialog, ID_NOTICE), L"");
        desk.Photograph(dialog, L"new-vlan-none-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(dialog), Texts());
    }
}

TEST(VlanRangeDialogTest, MakesSeveral) {
    const Desk desk(FreshMachine());
    desk.ChooseLine(kFree);
    desk.Click(desk.Start(), ID_START_NEW_VLANS);
    const HWND dialog = desk.Box(L"VLAN");
    desk.Settle();
    desk.Type(dialog, ID_RANGE_FIRST, L"10");
    desk.Type(dialog, ID_RANGE_LAST, L"12");
    desk.Type(dialog, ID_RANGE_PATTERN, L"Etage");
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(dialog, ID_RANGE_PREVIEW), L"3 VLANs will be made: “Etage 10” to “Etage 12”.");
    desk.Photograph(dialog, L"vlan-range");
    EXPECT_EQ(desk.Flaws(dialog), Texts());
    desk.Click(dialog, IDOK);
    desk.AwaitGone(dialog);
    desk.Settle();
    EXPECT_TRUE(HasLine(desk, L"VLAN 12 Etage 12"));
}

TEST(VlanRangeDialogTest, TellsHowFarItCame) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        Refuse(desk.Machine(), L"CreateVLAN", 2);
        desk.ChooseLine(kFree);
        desk.Click(desk.Start(), ID_START_NEW_VLANS);
        const HWND dialog = desk.Box(L"VLAN");
        desk.Settle();
        desk.Type(dialog, ID_RANGE_FIRST, L"10");
        desk.Type(dialog, ID_RANGE_LAST, L"12");
        desk.Type(dialog, ID_RANGE_PATTERN, L"Etage");
        desk.Settle();
        desk.Press(dialog, IDOK);
        EXPECT_EQ(Desk::TextOf(dialog, ID_RANGE_FIRST), L"11");
        desk.OnWindows([dialog] { EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDOK)); });
        EXPECT_NE(Desk::TextOf(dialog, ID_NOTICE), L"");
        desk.Photograph(dialog, L"vlan-range-part-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(dialog), Texts());
    }
}

TEST(VlanRangeDialogTest, CanBeStopped) {
    const Desk desk(FreshMachine());
    simulator::FaultRule slow;
    slow.method = L"CreateVLAN";
    slow.effect = simulator::Effect::Delay;
    slow.milliseconds = 100;
    slow.repeat = true;
    desk.Machine().Rules().Add(slow);
    desk.ChooseLine(kFree);
    desk.Click(desk.Start(), ID_START_NEW_VLANS);
    const HWND dialog = desk.Box(L"VLAN");
    desk.Settle();
    desk.Type(dialog, ID_RANGE_FIRST, L"10");
    desk.Type(dialog, ID_RANGE_LAST, L"60");
    desk.Type(dialog, ID_RANGE_PATTERN, L"Etage");
    desk.Settle();
    desk.Click(dialog, IDOK);
    const auto place = [dialog] { return SendDlgItemMessageW(dialog, ID_RANGE_PROGRESS, PBM_GETPOS, 0, 0); };
    for (int left = 500; left > 0 && place() < 2; --left) {
        Sleep(10);
    }
    EXPECT_GE(place(), 2); // the window shows it while the machine is at work
    EXPECT_TRUE(Desk::IsShown(dialog, ID_RANGE_PROGRESS));
    EXPECT_EQ(Desk::TextOf(dialog, IDCANCEL), L"Stop");
    EXPECT_FALSE(Desk::IsEnabled(dialog, IDOK));
    desk.Click(dialog, IDCANCEL);
    desk.Settle();
    EXPECT_NE(Desk::TextOf(dialog, ID_NOTICE).find(L"you stopped it"), std::wstring::npos);
    EXPECT_NE(Desk::TextOf(dialog, ID_RANGE_FIRST), L"10");
    EXPECT_EQ(Desk::TextOf(dialog, IDCANCEL), L"Cancel");
    desk.Click(dialog, IDCANCEL);
    desk.AwaitGone(dialog);
    desk.Settle();
    EXPECT_TRUE(HasLine(desk, L"VLAN 10 Etage 10"));
}

TEST(VlansViewTest, ListsChangesAndDeletes) {
    const Desk desk(FreshMachine());
    desk.Open(kTeam);
    desk.Turn(L"VLANs");
    EXPECT_EQ(desk.Rows(desk.Page(), ID_VLANS_LIST),
              (Texts{L"untagged | Untagged | enabled", L"12 | Büro | enabled", L"340 | VoIP | enabled"}));
    EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_VLANS_REMOVE));
    desk.ChooseRow(desk.Page(), ID_VLANS_LIST, L"12");
    desk.Photograph(desk.Sheet(), L"vlans");
    desk.Click(desk.Page(), ID_VLANS_PROPERTIES);
    HWND dialog = desk.Box(L"Name");
    desk.Settle();
    EXPECT_EQ(Desk::TextOf(dialog, ID_VLAN_NAME), L"Büro");
    desk.Type(dialog, ID_VLAN_NAME, L"Lager");
    desk.Settle();
    desk.Photograph(dialog, L"vlan-properties");
    desk.Click(dialog, IDOK);
    desk.AwaitGone(dialog);
    desk.Settle();
    EXPECT_EQ(desk.Rows(desk.Page(), ID_VLANS_LIST)[1], L"12 | Lager | enabled");
    desk.Click(desk.Page(), ID_VLANS_REMOVE);
    dialog = desk.Box(L"VLAN 12 Lager");
    desk.Click(dialog, IDYES);
    desk.AwaitGone(dialog);
    desk.Settle();
    EXPECT_EQ(desk.Rows(desk.Page(), ID_VLANS_LIST).size(), 2u);
}

TEST(VlansViewTest, IsInOrderInEveryLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(kMember);
        desk.Turn(pages::Say(pages::TextId::PageVlans));
        EXPECT_FALSE(Desk::IsEnabled(desk.Page(), ID_VLANS_NEW));
        desk.Photograph(desk.Sheet(), L"vlans-none-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), Texts());
    }
}

TEST(VlanViewTest, IsInOrderInEveryLanguage) {
    for (const Language language : {Language::English, Language::German, Language::French}) {
        const Desk desk(FreshMachine(), language);
        desk.Open(L"VLAN 12");
        desk.Type(desk.Page(), ID_VLAN_ID, L"340");
        desk.Settle();
        EXPECT_NE(Desk::TextOf(desk.Page(), ID_VLAN_ID_PROBLEM), L"");
        desk.Photograph(desk.Sheet(), L"vlan-" + std::to_wstring(int(language)));
        EXPECT_EQ(desk.Flaws(desk.Page()), Texts());
    }
}

} // namespace

} // namespace quillet::tests
