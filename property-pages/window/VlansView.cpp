// The window of the page "VLANs".
#include "window/VlansView.h"

#include "model/Words.h"
#include "resources/Ids.h"
#include "window/Application.h"
#include "window/SheetWindow.h"
#include "window/VlanDialogs.h"

namespace quillet::pages {

VlansView::VlansView(SheetWindow& sheet, std::shared_ptr<VlansPage> page)
    : PageView(sheet, page, ID_PAGE_VLANS, TextId::PageVlans), m_page(std::move(page)) {}

void VlansView::Prepare() {
    m_list.Attach(
        Item(ID_VLANS_LIST),
        {{Say(TextId::ColumnVlanId), 25}, {Say(TextId::ColumnName), 42}, {Say(TextId::ColumnStatus), 33}});
}

void VlansView::ShowPage() {
    std::vector<std::vector<std::wstring>> rows;
    for (const Vlan& vlan : m_page->Parent().vlans) {
        rows.push_back({vlan.number == 0 ? Say(TextId::Untagged) : std::to_wstring(vlan.number), vlan.name,
                        InOwnLanguage(Text(vlan.status))});
    }
    m_list.Fill(rows);
    Enable(ID_VLANS_LIST, m_page->CanAdd());
    Enable(ID_VLANS_NEW, m_page->CanAdd());
    Enable(ID_VLANS_SEVERAL, m_page->CanAdd());
    ShowActions();
}

void VlansView::ShowActions() const {
    const bool isChosen = m_page->At(m_list.Chosen()) != nullptr;
    Enable(ID_VLANS_PROPERTIES, isChosen);
    Enable(ID_VLANS_REMOVE, isChosen);
}

void VlansView::OnControl(int id, unsigned code) {
    if (code != BN_CLICKED) {
        return;
    }
    Application& program = Owner().Program();
    const HWND owner = Owner().Handle();
    bool isChanged = false;
    switch (id) {
    case ID_VLANS_NEW:
        isChanged = ShowNewVlanDialog(program, owner, m_page->ParentId());
        break;
    case ID_VLANS_SEVERAL:
        isChanged = ShowVlanRangeDialog(program, owner, m_page->ParentId());
        break;
    case ID_VLANS_PROPERTIES:
        Modify();
        break;
    case ID_VLANS_REMOVE:
        Remove();
        break;
    case ID_VLANS_REFRESH:
        isChanged = true;
        break;
    default:
        break;
    }
    if (isChanged) {
        ReadAgain();
    }
}

void VlansView::OnListControl(const NMHDR& told) {
    if (told.idFrom != ID_VLANS_LIST) {
        return;
    }
    if (told.code == LVN_ITEMCHANGED) {
        ShowActions();
    } else if (told.code == NM_DBLCLK) {
        Modify();
    } else if (told.code == LVN_KEYDOWN && reinterpret_cast<const NMLVKEYDOWN&>(told).wVKey == VK_DELETE) {
        Remove();
    }
}

void VlansView::Modify() {
    const Vlan* vlan = m_page->At(m_list.Chosen());
    if (vlan != nullptr &&
        ShowVlanDialog(Owner().Program(), Owner().Handle(), m_page->ParentId(), Vlan(*vlan))) {
        ReadAgain();
    }
}

void VlansView::Remove() {
    const Vlan* chosen = m_page->At(m_list.Chosen());
    if (chosen == nullptr) {
        return;
    }
    const Vlan vlan = *chosen; // the list may be read anew while the question is open
    if (!Application::Ask(Owner().Handle(),
                          Say(TextId::DeletesVlan, {VlanLabel(vlan)}) + L"\r\n\r\n" + Say(TextId::GoOn))) {
        return;
    }
    const auto done = [this](bool restartNeeded) {
        ReadAgain();
        if (restartNeeded) {
            Owner().Program().OfferRestart(Owner().Handle());
        }
    };
    Owner().Machine().Ask(
        m_isThere, Owner().Program().Tree()->Deleting(vlan.id, done),
        [this](const std::wstring& reason) { m_page->SetNotice(Say(TextId::NotDeleted, {reason})); });
}

} // namespace quillet::pages
