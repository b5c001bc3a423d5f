// Pages that live through whatever happens to them.
#include "FreshMachine.h"
#include "Refusal.h"
#include "window/Counts.h"
#include "window/Desk.h"

#include "resources/Ids.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <array>
#include <random>
#include <set>

namespace quillet::tests {

namespace {

constexpr const wchar_t* kLines[] = {L"Zorel Quad", L"TEAM", L"VLAN 340"};

/// What a page tells, without its notice.
std::wstring Contents(const Desk& desk, HWND page) {
    std::wstring contents;
    for (HWND child = GetWindow(page, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(child);
        if (id == ID_NOTICE) {
            continue;
        }
        wchar_t kind[32] = L"";
        GetClassNameW(child, kind, 32);
        if (std::wstring(kind) == WC_LISTVIEWW) {
            for (const std::wstring& row : desk.Rows(page, id)) {
                contents += row + L"\n";
            }
        } else {
            contents += Desk::TextOf(page, id) + L"\n";
        }
    }
    return contents;
}

/// Every call to the provider fails once, while a page is read: it says so, or shows all the same what it
/// shows otherwise, and the next reading is as if nothing had been.
TEST(LivingTest, EachCallMayFailOnEachPage) {
    const auto machine = FreshMachine();
    const Desk desk(machine);
    int failures = 0;
    for (const wchar_t* line : kLines) {
        desk.Open(line);
        for (const std::wstring& tab : desk.Tabs()) {
            desk.Turn(tab);
            machine->Calls().Clear();
            desk.ReadPageAgain();
            const auto made = machine->Calls().ProviderCalls();
            const std::size_t calls = made.size();
            const std::wstring good = Contents(desk, desk.Page());
            // Of a page for which there is nothing, the foot says why.
            const std::wstring foot = Desk::TextOf(desk.Page(), ID_NOTICE);
            // Of a long reading not every call: those that follow each other are alike.
            const std::size_t stride = calls / 40 + 1;
            for (std::size_t nth = 1; nth <= calls; nth += stride) {
                RefuseCall(*machine, nth);
                desk.ReadPageAgain();
                machine->Rules().Clear();
                const std::wstring notice = Desk::TextOf(desk.Page(), ID_NOTICE);
                EXPECT_TRUE(notice != foot || Contents(desk, desk.Page()) == good)
                    << testing::PrintToString(tab) << ", call " << nth << ": "
                    << testing::PrintToString(made[nth - 1].Line());
                failures += notice == foot ? 0 : 1;
            }
            desk.ReadPageAgain();
            EXPECT_EQ(Desk::TextOf(desk.Page(), ID_NOTICE), foot) << testing::PrintToString(tab);
            EXPECT_EQ(Contents(desk, desk.Page()), good) << testing::PrintToString(tab);
        }
        desk.CloseSheet();
    }
    EXPECT_GT(failures, 20) << "the failures reached the pages";
}

/// A dialog that makes something new, and what has to be chosen in the tree before.
struct NewDialog {
    const char* name;
    int button;
    const wchar_t* line;
};
constexpr NewDialog kNewDialogs[] = {
    {"New VLAN", ID_START_NEW_VLAN, L"TEAM"},
    {"VLAN range", ID_START_NEW_VLANS, L"TEAM"},
    {"New Team", ID_START_NEW_TEAM, L"TEAM"},
};

/// Opens one and waits until it has been read.
HWND OpenDialog(const Desk& desk, const NewDialog& dialog) {
    desk.ChooseLine(dialog.line);
    desk.Click(desk.Start(), dialog.button);
    HWND window = dialog.button == ID_START_NEW_TEAM ? desk.Sheet() : desk.Box();
    desk.Settle();
    return window;
}

/// The page of a wizard; another dialog is one itself.
HWND PageOf(HWND dialog) {
    DWORD_PTR page = 0;
    SendMessageTimeoutW(dialog, PSM_GETCURRENTPAGEHWND, 0, 0, SMTO_NORMAL, 20000, &page);
    return page != 0 ? reinterpret_cast<HWND>(page) : dialog;
}

void CancelDialog(const Desk& desk, HWND dialog) {
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    desk.AwaitGone(dialog);
    desk.Settle();
}

/// The same while a dialog or the wizard is opened.
TEST(LivingTest, EachCallMayFailWhileADialogOpens) {
    const auto machine = FreshMachine();
    const Desk desk(machine);
    for (const NewDialog& dialog : kNewDialogs) {
        SCOPED_TRACE(dialog.name);
        machine->Calls().Clear();
        HWND window = OpenDialog(desk, dialog);
        const std::size_t calls = machine->Calls().ProviderCalls().size();
        const std::wstring good = Contents(desk, PageOf(window));
        const std::wstring foot = Desk::TextOf(PageOf(window), ID_NOTICE);
        CancelDialog(desk, window);
        std::size_t told = 0;
        const std::size_t stride = calls / 20 + 1;
        for (std::size_t nth = 1; nth <= calls; nth += stride) {
            RefuseCall(*machine, nth);
            window = OpenDialog(desk, dialog);
            machine->Rules().Clear();
            const bool isTold = Desk::TextOf(PageOf(window), ID_NOTICE) != foot;
            EXPECT_TRUE(isTold || Contents(desk, PageOf(window)) == good) << "call " << nth;
            told += isTold ? 1U : 0U;
            CancelDialog(desk, window);
        }
        EXPECT_GT(told, 0U);
        window = OpenDialog(desk, dialog);
        EXPECT_EQ(Contents(desk, PageOf(window)), good);
        CancelDialog(desk, window);
    }
}

/// A hand that presses anything, without sense.
class Fool {
  public:
    explicit Fool(unsigned seed) : m_random(seed) {}

    void Act(HWND window) {
        std::vector<HWND> controls;
        for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT)) {
            if (IsWindowVisible(child) != FALSE && IsWindowEnabled(child) != FALSE) {
                controls.push_back(child);
            }
        }
        if (controls.empty()) {
            return;
        }
        const HWND control = controls[Below(controls.size())];
        RECT place{};
        GetClientRect(control, &place);
        const LPARAM where =
            MAKELPARAM(Below(std::size_t(place.right) + 1), Below(std::size_t(place.bottom) + 1));
        constexpr WPARAM kKeys[] = {VK_UP,    VK_DOWN,   VK_LEFT,  VK_RIGHT, VK_HOME, VK_END,
                                    VK_SPACE, VK_DELETE, VK_PRIOR, VK_NEXT,  VK_BACK};
        switch (Below(4)) {
        case 0:
            PostMessageW(control, WM_CHAR, WPARAM(L"0123456789abcXYZ -:*\\\u00E9\u6771"[Below(21)]), 1);
            break;
        case 1:
            PostMessageW(control, WM_KEYDOWN, kKeys[Below(std::size(kKeys))], 1);
            break;
        default:
            PostMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, where);
            PostMessageW(control, WM_LBUTTONUP, 0, where);
            break;
        }
    }
    std::size_t Below(std::size_t end) { return m_random() % end; }

  private:
    std::mt19937 m_random;
};

TEST(LivingTest, AThousandSenselessClicksAndKeysOnEachPageHarmNothing) {
    const auto machine = FreshMachine();
    machine->FollowRealTime(true);
    const Desk desk(machine);
    // Nobody answers the system's dialog for files.
    desk.OnWindows([&desk] { desk.Program().chooseFile = [](auto&&...) { return std::wstring(); }; });
    Fool fool(20261122);
    std::set<std::wstring> known; // the settings of a team have the page of those of an adapter
    for (const wchar_t* line : kLines) {
        desk.Open(line);
        for (const std::wstring& tab : desk.Tabs()) {
            if (!known.insert(tab).second) {
                continue;
            }
            desk.Turn(tab);
            SCOPED_TRACE(testing::PrintToString(tab));
            for (int times = 0; times < 1000; ++times) {
                fool.Act(desk.Page());
                if (times % 50 == 49) {
                    desk.CloseBoxes();
                    desk.Settle();
                }
            }
            desk.CloseBoxes();
        }
        desk.CloseSheet();
    }
    EXPECT_EQ(machine->OpenClientSet(), 0);
    EXPECT_NO_THROW(simulator::Machine::FromText(machine->Save(), "saved"));
    EXPECT_FALSE(desk.Tree().empty());
}

/// A dialog stays open while it has something done, and what comes of that may be a box.
void CancelWhateverIsOpen(const Desk& desk, HWND dialog) {
    for (int left = 200; left > 0; --left) {
        desk.CloseBoxes();
        desk.Settle();
        if (IsWindowEnabled(desk.Start()) != FALSE) {
            return;
        }
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        desk.Settle();
    }
    ADD_FAILURE() << "a dialog does not close";
}

TEST(LivingTest, AThousandSenselessClicksAndKeysOnEachDialogHarmNothing) {
    const auto machine = FreshMachine();
    machine->FollowRealTime(true);
    const Desk desk(machine);
    Fool fool(20261123);
    for (const NewDialog& dialog : kNewDialogs) {
        SCOPED_TRACE(dialog.name);
        HWND window = nullptr;
        int opened = 0;
        for (int times = 0; times < 1000; ++times) {
            if (IsWindowEnabled(desk.Start()) != FALSE) { // nothing is in front of it
                window = OpenDialog(desk, dialog);
                ++opened;
            }
            // The buttons of the wizard are not on its pages.
            fool.Act(fool.Below(5) == 0 ? window : PageOf(window));
            if (times % 10 == 9) {
                desk.Settle();
            }
            if (times % 50 == 49) {
                desk.CloseBoxes();
                desk.Settle();
            }
        }
        CancelWhateverIsOpen(desk, window);
        EXPECT_GT(opened, 1);
    }
    EXPECT_EQ(machine->OpenClientSet(), 0);
    EXPECT_NO_THROW(simulator::Machine::FromText(machine->Save(), "saved"));
    EXPECT_FALSE(desk.Tree().empty());
}

TEST(LivingTest, WhatIsClosedLeavesNothing) {
    const Desk desk(FreshMachine());
    const auto count = [] { return std::array{CountHandles(), CountDrawingObjects(), CountWindows()}; };
    const auto show = [&desk] {
        for (const wchar_t* line : kLines) {
            desk.Open(line);
            for (const std::wstring& tab : desk.Tabs()) {
                desk.Turn(tab);
            }
            desk.CloseSheet();
        }
    };
    show(); // what is made once and kept
    const auto before = count();
    for (int times = 0; times < 3; ++times) {
        show();
    }
    const auto after = count();
    for (std::size_t kind = 0; kind < before.size(); ++kind) {
        EXPECT_GT(before[kind], 0U) << "nothing is counted of kind " << kind;
        EXPECT_LE(after[kind], before[kind] + 2) << "kind " << kind;
        std::printf("kind %zu: %zu, then %zu\n", kind, before[kind], after[kind]);
    }
}

} // namespace

} // namespace quillet::tests
