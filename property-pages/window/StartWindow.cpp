// The start window.
#include "window/StartWindow.h"

#include "resources/Ids.h"
#include "window/Application.h"
#include "window/Wizards.h"

#include <windowsx.h>

namespace quillet::pages {

namespace {

/// How a control follows the window's size.
struct Anchor {
    int id;
    bool moves;   ///< with the right edge
    bool widens;  ///< with it
    bool sinks;   ///< moves with the lower edge
    bool deepens; ///< grows with it
};
constexpr Anchor kAnchors[] = {
    {ID_START_TREE, false, true, false, true},       {ID_START_PROPERTIES, true, false, false, false},
    {ID_START_NEW_TEAM, true, false, false, false},  {ID_START_NEW_VLAN, true, false, false, false},
    {ID_START_NEW_VLANS, true, false, false, false}, {ID_START_DELETE, true, false, false, false},
    {ID_START_REFRESH, true, false, false, false},   {IDCANCEL, true, false, true, false},
    {ID_NOTICE, false, true, true, false},
};

} // namespace

StartWindow::~StartWindow() {
    m_application.Tree()->changed = nullptr;
    if (Handle() != nullptr) {
        DestroyWindow(Handle());
    }
}

void StartWindow::Show() {
    ShowWindow(Create(ID_START, nullptr), SW_SHOW);
}

bool StartWindow::OnInit() {
    RECT outside{};
    GetWindowRect(Handle(), &outside);
    m_least = {outside.right - outside.left, outside.bottom - outside.top};
    RECT inside{};
    GetClientRect(Handle(), &inside);
    m_arranged = {inside.right, inside.bottom};
    m_application.Tree()->changed = [this] { Refresh(); };
    Refresh();
    m_application.ReadTree();
    return true;
}

bool StartWindow::Takes(MSG& message) {
    const bool isOurs = message.hwnd == Handle() || IsChild(Handle(), message.hwnd) != FALSE;
    if (isOurs && message.message == WM_KEYDOWN && IsWindowEnabled(Handle()) != FALSE) {
        if (message.wParam == VK_F5) {
            m_application.ReadTree();
            return true;
        }
        if (message.wParam == VK_DELETE) {
            Delete();
            return true;
        }
    }
    return IsDialogMessageW(Handle(), &message) != FALSE;
}

void StartWindow::Refresh() {
    const Filling filling(*this);
    const MachineTree& tree = *m_application.Tree();
    SetText(ID_NOTICE, tree.IsRead() || !tree.Notice().empty() ? tree.Notice() : Say(TextId::Reading));
    const Node* chosen = Chosen();
    const ObjectId before = chosen != nullptr ? chosen->id : ObjectId();
    Send(ID_START_TREE, WM_SETREDRAW, FALSE);
    Send(ID_START_TREE, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    m_ids.clear();
    AddNodes(tree.Headings(), TVI_ROOT);
    HTREEITEM item = reinterpret_cast<HTREEITEM>(Send(ID_START_TREE, TVM_GETNEXTITEM, TVGN_ROOT));
    while (item != nullptr) { // all of it is open, so every item is the next visible one of another
        TVITEMW described{};
        described.mask = TVIF_PARAM;
        described.hItem = item;
        Send(ID_START_TREE, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&described));
        if (m_ids[std::size_t(described.lParam)] == before &&
            !std::holds_alternative<std::monostate>(before)) {
            Send(ID_START_TREE, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item));
        }
        item = reinterpret_cast<HTREEITEM>(
            Send(ID_START_TREE, TVM_GETNEXTITEM, TVGN_NEXTVISIBLE, reinterpret_cast<LPARAM>(item)));
    }
    Send(ID_START_TREE, WM_SETREDRAW, TRUE);
    EnableActions();
}

void StartWindow::AddNodes(const std::vector<Node>& nodes, HTREEITEM parent) {
    for (const Node& node : nodes) {
        std::wstring line = node.Line();
        TVINSERTSTRUCTW added{};
        added.hParent = parent;
        added.hInsertAfter = TVI_LAST;
        added.item.mask = TVIF_TEXT | TVIF_PARAM;
        added.item.pszText = line.data();
        added.item.lParam = LPARAM(m_ids.size());
        m_ids.push_back(node.id);
        auto* item = reinterpret_cast<HTREEITEM>(
            Send(ID_START_TREE, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&added)));
        AddNodes(node.children, item);
        Send(ID_START_TREE, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(item));
    }
}

const Node* StartWindow::Chosen() const {
    TVITEMW described{};
    described.mask = TVIF_PARAM;
    described.hItem = reinterpret_cast<HTREEITEM>(Send(ID_START_TREE, TVM_GETNEXTITEM, TVGN_CARET));
    if (described.hItem == nullptr ||
        Send(ID_START_TREE, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&described)) == FALSE) {
        return nullptr;
    }
    return m_application.Tree()->Find(m_ids[std::size_t(described.lParam)]);
}

void StartWindow::EnableActions() const {
    const Node* chosen = Chosen();
    Enable(ID_START_PROPERTIES, chosen != nullptr);
    Enable(ID_START_NEW_TEAM, m_application.Tree()->IsRead());
    Enable(ID_START_NEW_VLAN, chosen != nullptr);
    Enable(ID_START_NEW_VLANS, chosen != nullptr);
    Enable(ID_START_DELETE, chosen != nullptr && !std::holds_alternative<AdapterId>(chosen->id));
}

void StartWindow::OnCommand(int id, unsigned) {
    const Node* chosen = Chosen();
    switch (id) {
    case IDOK: // Enter, wherever the focus is
    case ID_START_PROPERTIES:
        OpenProperties();
        break;
    case ID_START_NEW_TEAM:
        ShowNewTeam(m_application, Handle(), chosen);
        break;
    case ID_START_NEW_VLAN:
    case ID_START_NEW_VLANS:
        if (chosen != nullptr) {
            (id == ID_START_NEW_VLAN ? ShowNewVlan : ShowNewVlans)(m_application, Handle(), *chosen);
        }
        break;
    case ID_START_DELETE:
        Delete();
        break;
    case ID_START_REFRESH:
        m_application.ReadTree();
        break;
    case IDCANCEL:
        PostQuitMessage(0);
        break;
    default:
        break;
    }
}

bool StartWindow::OnNotify(const NMHDR& told, LRESULT&) {
    if (told.idFrom == ID_START_TREE && told.code == TVN_SELCHANGEDW && !IsFilling()) {
        EnableActions();
    } else if (told.idFrom == ID_START_TREE && told.code == NM_DBLCLK) {
        OpenProperties();
        return true;
    }
    return false;
}

bool StartWindow::OnMessage(UINT message, WPARAM, LPARAM parameter) {
    switch (message) {
    case WM_SIZE:
        Arrange(LOWORD(parameter), HIWORD(parameter));
        return true;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(parameter)->ptMinTrackSize = {m_least.cx, m_least.cy};
        return true;
    case WM_CONTEXTMENU:
        ShowMenu({GET_X_LPARAM(parameter), GET_Y_LPARAM(parameter)});
        return true;
    default:
        return false;
    }
}

void StartWindow::OpenProperties() {
    if (const Node* chosen = Chosen()) {
        m_application.ShowSheet(*chosen, Handle());
    }
}

void StartWindow::Delete() {
    const Node* chosen = Chosen();
    const MachineTree& tree = *m_application.Tree();
    const std::wstring consequences = chosen != nullptr ? tree.Consequences(*chosen) : std::wstring();
    if (consequences.empty() || !Application::Ask(Handle(), consequences + L"\r\n\r\n" + Say(TextId::GoOn))) {
        return;
    }
    const auto done = [this](bool restartNeeded) {
        m_application.ReadTree();
        if (restartNeeded) {
            m_application.OfferRestart(Handle());
        }
    };
    m_application.Machine().Ask(m_application.Tree(), tree.Deleting(chosen->id, done),
                                [this](const std::wstring& reason) {
                                    m_application.Tree()->SetNotice(Say(TextId::NotDeleted, {reason}));
                                });
}

void StartWindow::ShowMenu(POINT place) const {
    if (place.x == -1 && place.y == -1) { // by the keyboard
        RECT tree{};
        GetWindowRect(Item(ID_START_TREE), &tree);
        place = {tree.left, tree.top};
    }
    const HMENU menu = CreatePopupMenu();
    for (const int id : {ID_START_PROPERTIES, ID_START_NEW_TEAM, ID_START_NEW_VLAN, ID_START_NEW_VLANS,
                         ID_START_DELETE, ID_START_REFRESH}) {
        AppendMenuW(menu, MF_STRING | (IsWindowEnabled(Item(id)) != FALSE ? MF_ENABLED : MF_GRAYED),
                    UINT_PTR(id), TextOf(id).c_str());
    }
    TrackPopupMenu(menu, TPM_LEFTALIGN, place.x, place.y, 0, Handle(), nullptr);
    DestroyMenu(menu);
}

void StartWindow::Arrange(int width, int height) {
    const int right = width - int(m_arranged.cx);
    const int down = height - int(m_arranged.cy);
    if (m_arranged.cx == 0 || width == 0 || (right == 0 && down == 0)) {
        return; // not there yet, or minimised
    }
    m_arranged = {width, height};
    for (const Anchor& anchor : kAnchors) {
        RECT place{};
        GetWindowRect(Item(anchor.id), &place);
        MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&place), 2);
        MoveWindow(Item(anchor.id), place.left + (anchor.moves ? right : 0),
                   place.top + (anchor.sinks ? down : 0),
                   place.right - place.left + (anchor.widens ? right : 0),
                   place.bottom - place.top + (anchor.deepens ? down : 0), TRUE);
    }
}

} // namespace quillet::pages
