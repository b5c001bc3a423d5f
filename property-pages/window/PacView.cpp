// The window of the page "PAC and log".
#include "window/PacView.h"

#include "resources/Ids.h"
#include "window/Application.h"
#include "window/SheetWindow.h"

namespace quillet::pages {

PacView::PacView(SheetWindow& sheet, std::shared_ptr<PacPage> page)
    : PageView(sheet, page, ID_PAGE_PAC, TextId::PagePac), m_page(std::move(page)) {}

void PacView::ShowPage() {
    const bool isThere = m_page->IsThere();
    if (!m_page->IsPasswordTyped()) {
        Forget(ID_PAC_PASSWORD);
    }
    if (m_page->Imported() != m_imported) {
        m_imported = m_page->Imported();
        SetText(ID_PAC_NAME, m_imported);
    }
    SetText(ID_PAC_CONTENTS, m_page->Contents());
    SetText(ID_PAC_LOG, m_page->Log());
    for (const int id : {ID_PAC_FILE, ID_PAC_PASSWORD, ID_PAC_RELOAD, ID_PAC_NAME}) {
        Enable(id, isThere);
    }
    Enable(ID_PAC_IMPORT, isThere && !TextOf(ID_PAC_FILE).empty());
    Enable(ID_PAC_LOOK, isThere && !TextOf(ID_PAC_NAME).empty());
    Enable(ID_PAC_DELETE, isThere && !TextOf(ID_PAC_NAME).empty());
}

void PacView::OnControl(int id, unsigned code) {
    if (code == EN_CHANGE && id == ID_PAC_PASSWORD) {
        m_page->TypePassword(SecretOf(id));
    } else if (code == EN_CHANGE && (id == ID_PAC_FILE || id == ID_PAC_NAME)) {
        Refresh();
    } else if (code == BN_CLICKED) {
        Press(id);
    }
}

void PacView::Press(int id) {
    const std::wstring name = TextOf(ID_PAC_NAME);
    if (id == ID_PAC_IMPORT) {
        Ask(m_page->Importing(TextOf(ID_PAC_FILE), IsTicked(ID_PAC_RELOAD) ? Reload::Driver : Reload::No));
    } else if (id == ID_PAC_LOOK) {
        Ask(m_page->Looking(name));
    } else if (id == ID_PAC_DELETE && Application::Ask(Owner().Handle(), Say(TextId::PacDeletes, {name}))) {
        Ask(m_page->Deleting(name));
    }
}

bool PacView::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) {
        const Filling filling(*this);
        Forget(ID_PAC_PASSWORD);
    }
    return false;
}

} // namespace quillet::pages
