// The window of one page of a property sheet.
#include "window/PageView.h"

#include "model/LanguageResources.h"
#include "resources/Ids.h"
#include "window/Application.h"
#include "window/SheetWindow.h"

namespace quillet::pages {

PageView::PageView(SheetWindow& sheet, std::shared_ptr<Page> page, unsigned templateId, TextId title)
    : m_sheet(sheet), m_page(std::move(page)), m_templateId(templateId), m_title(Say(title)) {}

PageView::~PageView() {
    m_page->changed = nullptr;
    m_page->restartNeeded = nullptr;
}

PROPSHEETPAGEW PageView::Description() const {
    PROPSHEETPAGEW page{};
    page.dwSize = sizeof(page);
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    page.hInstance = GetModuleHandleW(nullptr);
    page.pResource = static_cast<const DLGTEMPLATE*>(FindResourceOf(RT_DIALOG, m_templateId));
    page.pszTitle = m_title.c_str();
    page.pfnDlgProc = Procedure;
    page.lParam = reinterpret_cast<LPARAM>(static_cast<const Dialog*>(this));
    return page;
}

bool PageView::OnInit() {
    m_page->changed = [this] { Refresh(); };
    m_page->restartNeeded = [this] { m_sheet.Program().OfferRestart(m_sheet.Handle()); };
    Prepare();
    Refresh();
    m_sheet.Model().Read(m_page);
    return true;
}

void PageView::Refresh() {
    if (Handle() == nullptr) {
        return;
    }
    const Filling filling(*this);
    ShowPage();
    const std::wstring remark = m_page->IsRead() ? m_page->Remark() : Say(TextId::Reading);
    SetText(ID_NOTICE, m_page->Notice().empty() ? remark : m_page->Notice());
    Dialog::Show(ID_NOTICE, !TextOf(ID_NOTICE).empty());
    m_sheet.NoteChange(*this);
    if (Job checking = m_page->Checking()) {
        Ask(std::move(checking), TextId::NotChecked);
    }
}

void PageView::OnCommand(int id, unsigned code) {
    if (id == ID_READ_AGAIN) {
        ReadAgain();
    } else {
        OnControl(id, code);
    }
}

bool PageView::OnNotify(const NMHDR& told, LRESULT& result) {
    switch (told.code) {
    case PSN_APPLY:
        result = m_sheet.OnApply(reinterpret_cast<const PSHNOTIFY&>(told).lParam != 0);
        return true;
    case PSN_QUERYCANCEL:
        result = m_sheet.Model().IsBusy() ? TRUE : FALSE; // TRUE keeps it open
        return true;
    default:
        if (!IsFilling()) {
            OnListControl(told);
        }
        return false;
    }
}

void PageView::OnDestroy() {
    m_page->changed = nullptr;
    m_page->restartNeeded = nullptr;
}

std::stop_source PageView::Ask(Job job, TextId failure) {
    return m_sheet.Machine().Ask(m_page, std::move(job),
                                 [page = m_page.get(), failure](const std::wstring& reason) {
                                     page->SetNotice(Say(failure, {reason}));
                                 });
}

void PageView::ReadAgain() {
    m_sheet.Model().Read(m_page);
}

} // namespace quillet::pages
