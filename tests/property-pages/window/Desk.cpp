// The program with a simulated machine, and a hand on its mouse and keyboard.
#include "window/Desk.h"

#include "window/Picture.h"

#include "model/MachineConnection.h"
#include "resources/Ids.h"

#include <commctrl.h>
#include <prsht.h>

#include <future>
#include <stdexcept>

namespace quillet::tests {

namespace {

using namespace std::chrono_literals;
constexpr auto kPatience = 20s;

std::wstring WindowText(HWND window) {
    std::wstring text(4096, L'\0');
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), SMTO_NORMAL,
                        20000, &length);
    text.resize(length);
    return text;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64];
    return {name, std::size_t(GetClassNameW(window, name, 64))};
}

LRESULT Ask(HWND window, UINT message, WPARAM wide = 0, LPARAM parameter = 0) {
    DWORD_PTR result = 0;
    if (SendMessageTimeoutW(window, message, wide, parameter, SMTO_NORMAL, 20000, &result) == 0 &&
        IsWindow(window) != FALSE) {
        throw std::runtime_error("a window does not answer");
    }
    return LRESULT(result);
}

bool BeginsWith(const std::wstring& text, const std::wstring& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::vector<HWND> Children(HWND window) {
    std::vector<HWND> children;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        children.push_back(child);
    }
    return children;
}

std::wstring ItemText(HWND tree, HTREEITEM item) {
    std::wstring text(512, L'\0');
    TVITEMW described{};
    described.mask = TVIF_TEXT;
    described.hItem = item;
    described.pszText = text.data();
    described.cchTextMax = int(text.size());
    Ask(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&described));
    return text.c_str();
}

HTREEITEM NextItem(HWND tree, WPARAM which, HTREEITEM from = nullptr) {
    return reinterpret_cast<HTREEITEM>(Ask(tree, TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(from)));
}

std::wstring Cell(HWND list, int row, int column) {
    std::wstring text(1024, L'\0');
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = int(text.size());
    text.resize(std::size_t(Ask(list, LVM_GETITEMTEXTW, WPARAM(row), reinterpret_cast<LPARAM>(&item))));
    return text;
}

int RowOf(HWND list, const std::wstring& text) {
    const int count = int(Ask(list, LVM_GETITEMCOUNT));
    for (int row = 0; row < count; ++row) {
        if (BeginsWith(Cell(list, row, 0), text)) {
            return row;
        }
    }
    throw std::runtime_error("the list has no such row");
}

} // namespace

Desk::Desk(std::shared_ptr<simulator::Machine> machine, pages::Language language)
    : m_machine(std::move(machine)) {
    std::promise<void> isOpen;
    m_thread = std::thread([&] {
        pages::Speak(language);
        m_threadId = GetCurrentThreadId();
        m_application = std::make_unique<pages::Application>(pages::ConnectTo({.simulated = m_machine}));
        m_application->restart = [this] { ++m_restarts; };
        m_application->ShowStart();
        isOpen.set_value();
        m_application->Run();
        m_application.reset();
    });
    isOpen.get_future().wait();
    Settle();
}

Desk::~Desk() {
    CloseBoxes();
    PostThreadMessageW(m_threadId, WM_QUIT, 0, 0);
    m_thread.join();
}

void Desk::OnWindows(const std::function<void()>& work) const {
    // By way of the worker: what it has answered before is shown before.
    std::promise<void> done;
    m_application->Machine().Ask(
        m_application->Tree(),
        [&](Session&, const pages::Asking&) -> pages::Answer {
            return [&] {
                work();
                done.set_value();
            };
        },
        [&](const std::wstring&) {
            work();
            done.set_value();
        });
    if (done.get_future().wait_for(kPatience) != std::future_status::ready) {
        throw std::runtime_error("the windows' thread does not answer");
    }
}

void Desk::Settle() const {
    for (std::uint64_t asked = 0; asked != m_application->Machine().Asked();) {
        OnWindows([] {});
        asked = m_application->Machine().Asked();
        OnWindows([] {});
        ++asked;
    }
}

std::vector<HWND> Desk::Windows() const {
    std::vector<HWND> windows;
    EnumThreadWindows(
        m_threadId,
        [](HWND window, LPARAM list) -> BOOL {
            if (IsWindowVisible(window) != FALSE) {
                reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&windows));
    return windows;
}

HWND Desk::Await(const std::function<HWND()>& find, const wchar_t* what) const {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < end) {
        if (const HWND found = find()) {
            return found;
        }
        std::this_thread::sleep_for(10ms);
    }
    std::string text = "there is no ";
    for (; *what != 0; ++what) {
        text += char(*what);
    }
    throw std::runtime_error(text);
}

HWND Desk::Start() const {
    for (const HWND window : Windows()) {
        if (GetDlgItem(window, ID_START_TREE) != nullptr) {
            return window;
        }
    }
    return nullptr;
}

HWND Desk::Sheet() const {
    return Await(
        [this]() -> HWND {
            for (const HWND window : Windows()) {
                if (PropSheet_GetTabControl(window) != nullptr && window != Start()) {
                    return window;
                }
            }
            return nullptr;
        },
        L"property sheet");
}

HWND Desk::Page() const {
    return reinterpret_cast<HWND>(Ask(Sheet(), PSM_GETCURRENTPAGEHWND));
}

HWND Desk::Box(const std::wstring& text) const {
    return Await(
        [&]() -> HWND {
            for (const HWND window : Windows()) {
                if (!IsBox(window)) {
                    continue;
                }
                for (const HWND child : Children(window)) {
                    if (text.empty() || WindowText(child).find(text) != std::wstring::npos) {
                        return window;
                    }
                }
            }
            return nullptr;
        },
        L"such dialog");
}

bool Desk::IsBox(HWND window) const {
    if (ClassOf(window) != L"#32770" || GetDlgItem(window, ID_START_TREE) != nullptr) {
        return false;
    }
    // A dialog of one page is a sheet as well; one that a sheet waits for is a box to whoever works that
    // sheet.
    return Ask(window, PSM_GETTABCONTROL) == 0 || GetWindow(window, GW_OWNER) != Start();
}

void Desk::CloseBoxes() const {
    for (int left = 200; left > 0; --left) {
        bool isAny = false;
        for (const HWND window : Windows()) {
            if (IsBox(window)) {
                isAny = true;
                PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
                PostMessageW(window, WM_COMMAND, IDNO, 0);
            }
        }
        if (!isAny) {
            return;
        }
        std::this_thread::sleep_for(20ms);
    }
    throw std::runtime_error("a box does not close");
}

void Desk::CloseSheet() const {
    const HWND sheet = Sheet();
    PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    AwaitGone(sheet);
    Settle();
}

void Desk::ReadPageAgain() const {
    const HWND page = Page();
    OnWindows([page] { SendMessageW(page, WM_COMMAND, ID_READ_AGAIN, 0); });
    Settle();
}

void Desk::AwaitGone(HWND window) const {
    Await(
        [window] {
            return IsWindow(window) != FALSE && IsWindowVisible(window) != FALSE ? nullptr : HWND(1);
        },
        L"end of a window");
}

void Desk::Open(const std::wstring& line) const {
    ChooseLine(line);
    Click(Start(), ID_START_PROPERTIES);
    Sheet();
    Settle();
}

std::vector<std::wstring> Desk::Tabs() const {
    const HWND tabs = PropSheet_GetTabControl(Sheet());
    std::vector<std::wstring> texts;
    for (LRESULT number = 0; number < Ask(tabs, TCM_GETITEMCOUNT); ++number) {
        wchar_t text[64] = L"";
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = text;
        item.cchTextMax = 64;
        Ask(tabs, TCM_GETITEMW, WPARAM(number), reinterpret_cast<LPARAM>(&item));
        texts.emplace_back(text);
    }
    return texts;
}

void Desk::Turn(const std::wstring& tab) const {
    const std::vector<std::wstring> tabs = Tabs();
    for (std::size_t number = 0; number < tabs.size(); ++number) {
        if (tabs[number] == tab) {
            Ask(Sheet(), PSM_SETCURSEL, number, 0);
            Settle();
            return;
        }
    }
    throw std::runtime_error("the sheet has no such tab");
}

std::vector<std::wstring> Desk::Tree() const {
    const HWND tree = GetDlgItem(Start(), ID_START_TREE);
    std::vector<std::wstring> lines;
    for (HTREEITEM item = NextItem(tree, TVGN_ROOT); item != nullptr;
         item = NextItem(tree, TVGN_NEXTVISIBLE, item)) {
        std::wstring indent;
        for (HTREEITEM up = NextItem(tree, TVGN_PARENT, item); up != nullptr;
             up = NextItem(tree, TVGN_PARENT, up)) {
            indent += L"  ";
        }
        lines.push_back(indent + ItemText(tree, item));
    }
    return lines;
}

void Desk::ChooseLine(const std::wstring& line) const {
    const HWND tree = GetDlgItem(Start(), ID_START_TREE);
    for (HTREEITEM item = NextItem(tree, TVGN_ROOT); item != nullptr;
         item = NextItem(tree, TVGN_NEXTVISIBLE, item)) {
        if (BeginsWith(ItemText(tree, item), line)) {
            Ask(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
            return;
        }
    }
    throw std::runtime_error("the tree has no such line");
}

std::wstring Desk::TextOf(HWND window, int id) {
    return WindowText(GetDlgItem(window, id));
}

bool Desk::IsEnabled(HWND window, int id) {
    return IsWindowEnabled(GetDlgItem(window, id)) != FALSE;
}

bool Desk::IsShown(HWND window, int id) {
    return (GetWindowLongW(GetDlgItem(window, id), GWL_STYLE) & WS_VISIBLE) != 0;
}

bool Desk::IsTicked(HWND window, int id) {
    return Ask(GetDlgItem(window, id), BM_GETCHECK) == BST_CHECKED;
}

void Desk::Click(HWND window, int id) const {
    const HWND button = GetDlgItem(window, id);
    if (button == nullptr || IsWindowEnabled(button) == FALSE) {
        throw std::runtime_error("there is no button " + std::to_string(id) + " that can be pressed");
    }
    PostMessageW(button, BM_CLICK, 0, 0);
}

void Desk::Press(HWND window, int id) const {
    Click(window, id);
    // The click is a message that was posted before the one that Settle() waits for.
    Settle();
}

void Desk::Type(HWND window, int id, const std::wstring& text) const {
    const HWND edit = GetDlgItem(window, id);
    Ask(edit, EM_SETSEL, 0, -1);
    Ask(edit, WM_CLEAR);
    for (const wchar_t character : text) {
        Ask(edit, WM_CHAR, WPARAM(character == L'\n' ? L'\r' : character));
    }
}

void Desk::Pick(HWND window, int id, const std::wstring& text) const {
    const HWND list = GetDlgItem(window, id);
    const LRESULT place = Ask(list, CB_FINDSTRING, WPARAM(-1), reinterpret_cast<LPARAM>(text.c_str()));
    if (place == CB_ERR) {
        throw std::runtime_error("the combo box has no such entry");
    }
    Ask(list, CB_SETCURSEL, WPARAM(place));
    // A combo box does not tell its parent of what a program chooses.
    Ask(window, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
}

std::vector<std::wstring> Desk::Rows(HWND window, int id) const {
    const HWND list = GetDlgItem(window, id);
    const auto columns = Ask(reinterpret_cast<HWND>(Ask(list, LVM_GETHEADER)), HDM_GETITEMCOUNT);
    const bool hasTicks = (Ask(list, LVM_GETEXTENDEDLISTVIEWSTYLE) & LVS_EX_CHECKBOXES) != 0;
    std::vector<std::wstring> rows;
    for (int row = 0; row < int(Ask(list, LVM_GETITEMCOUNT)); ++row) {
        std::wstring text;
        if (hasTicks) {
            const bool isTicked = (Ask(list, LVM_GETITEMSTATE, WPARAM(row), LVIS_STATEIMAGEMASK) >> 12) == 2;
            text = isTicked ? L"[x] " : L"[ ] ";
        }
        for (int column = 0; column < int(columns); ++column) {
            text += (column > 0 ? L" | " : L"") + Cell(list, row, column);
        }
        rows.push_back(text);
    }
    return rows;
}

void Desk::ChooseRow(HWND window, int id, const std::wstring& text) const {
    const HWND list = GetDlgItem(window, id);
    LVITEMW item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = item.stateMask;
    Ask(list, LVM_SETITEMSTATE, WPARAM(RowOf(list, text)), reinterpret_cast<LPARAM>(&item));
    Settle();
}

void Desk::TickRow(HWND window, int id, const std::wstring& text, bool isTicked) const {
    const HWND list = GetDlgItem(window, id);
    LVITEMW item{};
    item.stateMask = LVIS_STATEIMAGEMASK;
    item.state = INDEXTOSTATEIMAGEMASK(isTicked ? 2 : 1);
    Ask(list, LVM_SETITEMSTATE, WPARAM(RowOf(list, text)), reinterpret_cast<LPARAM>(&item));
    Settle();
}

void Desk::Key(WORD key, WORD held) const {
    std::vector<INPUT> events;
    const auto add = [&events](WORD code, DWORD flags) {
        INPUT event{};
        event.type = INPUT_KEYBOARD;
        event.ki.wVk = code;
        event.ki.dwFlags = flags;
        events.push_back(event);
    };
    if (held != 0) {
        add(held, 0);
    }
    add(key, 0);
    add(key, KEYEVENTF_KEYUP);
    if (held != 0) {
        add(held, KEYEVENTF_KEYUP);
    }
    SendInput(UINT(events.size()), events.data(), sizeof(INPUT));
    std::this_thread::sleep_for(30ms);
    Settle();
}

std::vector<std::wstring> Desk::Flaws(HWND window) const {
    std::vector<std::wstring> flaws;
    OnWindows([&] { flaws = FlawsOf(window); });
    return flaws;
}

void Desk::Photograph(HWND window, const std::wstring& name) const {
    wchar_t folder[MAX_PATH] = L"";
    if (GetEnvironmentVariableW(L"QUILLET_PICTURES", folder, MAX_PATH) == 0) {
        return;
    }
    SetForegroundWindow(window);
    // What is drawn reaches the screen when the thread that drew it says so.
    for (int times = 0; times < 2; ++times) {
        OnWindows([window] {
            RedrawWindow(window, nullptr, nullptr,
                         RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_INVALIDATE | RDW_FRAME);
            GdiFlush();
        });
        std::this_thread::sleep_for(60ms);
    }
    SavePicture(window, std::wstring(folder) + L"\\" + name + L".png");
}

} // namespace quillet::tests
