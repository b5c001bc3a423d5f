// The start window, the sheets and their buttons, as a user works them.
#include "FreshMachine.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

#include <prsht.h>

#include <algorithm>

namespace quillet::tests {

namespace {

class SheetTest : public testing::Test {
  protected:
    std::vector<std::wstring> Calls(const std::wstring& with) const {
        std::vector<std::wstring> lines;
        for (const simulator::JournalEntry& entry : m_machine->Calls().All()) {
            if (entry.Line().find(with) != std::wstring::npos) {
                lines.push_back(entry.Line());
            }
        }
        return lines;
    }
    /// Brings the team's settings to the front, and one of them into the editor.
    void Choose(const std::wstring& setting) const {
        m_desk.Open(L"TEAM");
        m_desk.Turn(L"Advanced");
        m_desk.ChooseRow(m_desk.Page(), ID_SETTINGS_LIST, setting);
        m_machine->Calls().Clear();
    }
    std::wstring Row(const std::wstring& setting) const {
        for (const std::wstring& row : m_desk.Rows(m_desk.Page(), ID_SETTINGS_LIST)) {
            if (row.find(setting) != std::wstring::npos) {
                return row;
            }
        }
        return {};
    }
    /// The setting with a number that the built-in machine's team has.
    static constexpr const wchar_t* kNumber = L"Activation Delay";

    const std::shared_ptr<simulator::Machine> m_machine = FreshMachine();
    const Desk m_desk{m_machine};
};

TEST_F(SheetTest, TheTreeShowsTheMachine) {
    const std::vector<std::wstring> tree = m_desk.Tree();
    EXPECT_EQ(tree.front(), L"Adapters");
    EXPECT_NE(std::ranges::find(tree, L"  TEAM : Z\u00FCrich \u2014 adaptive load balancing, 2 members"),
              tree.end());
    EXPECT_FALSE(Desk::IsEnabled(m_desk.Start(), ID_START_DELETE)) << "nothing is chosen";
    m_desk.ChooseLine(L"Zorel Quad");
    EXPECT_FALSE(Desk::IsEnabled(m_desk.Start(), ID_START_DELETE)) << "an adapter cannot be deleted";
    m_desk.ChooseLine(L"TEAM");
    EXPECT_TRUE(Desk::IsEnabled(m_desk.Start(), ID_START_DELETE));
}

TEST_F(SheetTest, ApplyMakesOneClientSetAndKeepsTheSheet) {
    Choose(kNumber);
    EXPECT_FALSE(Desk::IsEnabled(m_desk.Sheet(), kApply));
    m_desk.Type(m_desk.Page(), ID_SETTINGS_TEXT, L"7");
    EXPECT_EQ(Row(kNumber), L"* Activation Delay | 7");
    EXPECT_TRUE(Desk::IsEnabled(m_desk.Sheet(), kApply));
    EXPECT_TRUE(Calls(L"PutInstance").empty()) << "nothing is written before";
    m_desk.Press(m_desk.Sheet(), kApply);
    EXPECT_EQ(Desk::TextOf(m_desk.Page(), ID_NOTICE), L"");
    EXPECT_EQ(Row(kNumber), L"Activation Delay | 7");
    EXPECT_FALSE(Desk::IsEnabled(m_desk.Sheet(), kApply));
    EXPECT_EQ(Calls(L", BeginApply(").size(), 1U);
    EXPECT_EQ(Calls(L"PutInstance").size(), 1U);
    EXPECT_EQ(Calls(L", Apply(").size(), 1U);
}

TEST_F(SheetTest, OkClosesWhenTheChangeIsMade) {
    Choose(kNumber);
    m_desk.Type(m_desk.Page(), ID_SETTINGS_TEXT, L"7");
    const HWND sheet = m_desk.Sheet();
    m_desk.Click(sheet, IDOK);
    m_desk.AwaitGone(sheet);
    EXPECT_EQ(Calls(L"PutInstance").size(), 1U);
    m_desk.Settle();
    EXPECT_TRUE(IsWindowEnabled(m_desk.Start()));
}

TEST_F(SheetTest, CancelChangesNothing) {
    Choose(kNumber);
    m_desk.Type(m_desk.Page(), ID_SETTINGS_TEXT, L"7");
    m_desk.CloseSheet();
    EXPECT_TRUE(Calls(L"BeginApply").empty());
    EXPECT_TRUE(Calls(L"PutInstance").empty());
}

TEST_F(SheetTest, AMistakeIsToldOnItsPageAndKeepsTheSheet) {
    Choose(kNumber);
    m_desk.Type(m_desk.Page(), ID_SETTINGS_TEXT, L"7000000");
    m_desk.Press(m_desk.Sheet(), IDOK);
    EXPECT_EQ(Desk::TextOf(m_desk.Page(), ID_NOTICE),
              L"\u201C7000000\u201D is not a value of \u201CActivation Delay\u201D.");
    EXPECT_EQ(Desk::TextOf(m_desk.Page(), ID_SETTINGS_TEXT), L"7000000");
    EXPECT_TRUE(Calls(L"BeginApply").empty());
}

TEST_F(SheetTest, ARefusalIsToldAndCanBeTriedAgain) {
    Choose(kNumber);
    m_desk.Type(m_desk.Page(), ID_SETTINGS_TEXT, L"7");
    m_machine->Rules().Add({.operation = simulator::Operation::PutInstance,
                            .target = {},
                            .method = {},
                            .code = HRESULT(WBEM_E_ACCESS_DENIED)});
    m_desk.Press(m_desk.Sheet(), IDOK);
    EXPECT_NE(Desk::TextOf(m_desk.Page(), ID_NOTICE).find(L"access is denied"), std::wstring::npos);
    EXPECT_EQ(Row(kNumber), L"* Activation Delay | 7");
    EXPECT_EQ(m_machine->OpenClientSet(), 0);
    m_desk.Photograph(m_desk.Sheet(), L"refused");
    const HWND sheet = m_desk.Sheet();
    m_desk.Click(sheet, IDOK);
    m_desk.AwaitGone(sheet);
}

TEST_F(SheetTest, ARestartIsOffered) {
    Choose(kNumber);
    m_desk.Type(m_desk.Page(), ID_SETTINGS_TEXT, L"7");
    m_machine->RequireFollowup(1);
    m_desk.Click(m_desk.Sheet(), kApply);
    const HWND box = m_desk.Box(L"must be restarted");
    m_desk.Photograph(box, L"restart");
    m_desk.Click(box, IDYES);
    m_desk.AwaitGone(box);
    m_desk.Settle();
    EXPECT_EQ(m_desk.Restarts(), 1);
}

TEST_F(SheetTest, EachEditorWritesWhatItShows) {
    m_desk.Open(L"TEAM");
    m_desk.Turn(L"Advanced");
    const HWND page = m_desk.Page();
    m_desk.ChooseRow(page, ID_SETTINGS_LIST, L"Jumbo");
    EXPECT_TRUE(Desk::IsShown(page, ID_SETTINGS_CHOICE));
    m_desk.Pick(page, ID_SETTINGS_CHOICE, L"9014");
    EXPECT_NE(Row(L"Jumbo").find(L"9014"), std::wstring::npos);
    m_desk.ChooseRow(page, ID_SETTINGS_LIST, L"Probes");
    EXPECT_TRUE(Desk::IsShown(page, ID_SETTINGS_SELECTION));
    const std::wstring first = m_desk.Rows(page, ID_SETTINGS_SELECTION).front();
    m_desk.TickRow(page, ID_SETTINGS_SELECTION, first.substr(4), first.substr(0, 3) == L"[ ]");
    EXPECT_EQ(Row(L"Probes").substr(0, 2), L"* ");
    m_desk.Press(page, ID_SETTINGS_DEFAULT_ALL);
    for (const std::wstring& row : m_desk.Rows(page, ID_SETTINGS_LIST)) {
        EXPECT_NE(row, L"");
    }
    m_desk.CloseSheet();
}

TEST_F(SheetTest, AnAdapterBlinks) {
    m_desk.Open(L"Zorel Quad");
    m_desk.Turn(L"General");
    m_desk.Type(m_desk.Page(), ID_GENERAL_SECONDS, L"30");
    m_desk.Press(m_desk.Page(), ID_GENERAL_IDENTIFY);
    EXPECT_EQ(Calls(L"IdentifyAdapter").size(), 1U);
    EXPECT_NE(Calls(L"IdentifyAdapter").front().find(L"30"), std::wstring::npos);
}

TEST_F(SheetTest, DeletingTellsWhatGoesWithIt) {
    m_desk.ChooseLine(L"TEAM");
    m_desk.Click(m_desk.Start(), ID_START_DELETE);
    const HWND box = m_desk.Box(L"340 VoIP");
    m_desk.Photograph(box, L"delete");
    m_desk.Click(box, IDNO);
    m_desk.AwaitGone(box);
    EXPECT_TRUE(Calls(L"DeleteInstance").empty());

    m_desk.Click(m_desk.Start(), ID_START_DELETE);
    const HWND again = m_desk.Box(L"340 VoIP");
    m_desk.Click(again, IDYES);
    m_desk.AwaitGone(again);
    m_desk.Settle();
    EXPECT_EQ(m_desk.Tree().back(), L"Teams");
}

TEST_F(SheetTest, TheKeyboardAloneIsEnough) {
    SetForegroundWindow(m_desk.Start());
    m_desk.ChooseLine(L"TEAM");
    m_desk.Key('A', VK_MENU); // the letter of the tree
    m_desk.Key(VK_RETURN);
    const HWND sheet = m_desk.Sheet();
    m_desk.Settle();
    SetForegroundWindow(sheet);
    for (int tabs = 0; tabs < 20 && !Desk::IsShown(m_desk.Page(), ID_SETTINGS_LIST); ++tabs) {
        m_desk.Key(VK_TAB, VK_CONTROL);
    }
    m_desk.Key('S', VK_MENU);
    m_desk.Key(VK_HOME);
    m_desk.Key(VK_DOWN);
    m_desk.Key(VK_DOWN);
    EXPECT_EQ(Desk::TextOf(m_desk.Page(), ID_SETTINGS_NAME), kNumber);
    m_desk.Key(VK_TAB);
    m_desk.Key('7');
    EXPECT_EQ(Row(kNumber), L"* Activation Delay | 7");
    m_machine->Calls().Clear();
    m_desk.Key(VK_RETURN);
    m_desk.AwaitGone(sheet);
    EXPECT_EQ(Calls(L"PutInstance").size(), 1U);
}

TEST_F(SheetTest, TheWindowGoesOnWhileTheProviderTakesItsTime) {
    m_desk.Open(L"Zorel Quad");
    m_machine->Rules().Add({.operation = simulator::Operation::GetObject,
                            .target = {},
                            .method = {},
                            .effect = simulator::Effect::Delay,
                            .milliseconds = 1500});
    SendMessageW(m_desk.Page(), WM_COMMAND, ID_READ_AGAIN, 0);
    const auto begin = std::chrono::steady_clock::now();
    DWORD_PTR result = 0;
    EXPECT_NE(SendMessageTimeoutW(m_desk.Sheet(), WM_NULL, 0, 0, SMTO_NORMAL, 1000, &result), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    m_desk.CloseSheet();
}

} // namespace

} // namespace quillet::tests
