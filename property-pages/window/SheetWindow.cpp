// The property sheet of one object.
#include "window/SheetWindow.h"

#include "resources/Ids.h"
#include "window/Application.h"
#include "window/PageView.h"
#include "window/Pages.h"

namespace quillet::pages {

namespace {

std::wstring Lines(const std::vector<std::wstring>& texts) {
    std::wstring lines;
    for (const std::wstring& text : texts) {
        lines += text + L"\r\n";
    }
    return lines;
}

} // namespace

SheetWindow::SheetWindow(Application& application, const Node& node, HWND owner)
    : m_application(application), m_owner(owner) {
    m_views = PagesOf(*this, node);
    std::vector<std::shared_ptr<Page>> pages;
    std::vector<PROPSHEETPAGEW> descriptions;
    for (const std::unique_ptr<PageView>& view : m_views) {
        pages.push_back(view->Model());
        descriptions.push_back(view->Description());
    }
    m_model = std::make_shared<Sheet>(application.Machine(), pages);
    PROPSHEETHEADERW header{};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_MODELESS | PSH_NOCONTEXTHELP;
    header.hwndParent = owner;
    header.hInstance = GetModuleHandleW(nullptr);
    const std::wstring title = Say(TextId::SheetTitle, {node.name});
    header.pszCaption = title.c_str();
    header.nPages = UINT(descriptions.size());
    header.ppsp = descriptions.data();
    m_window = reinterpret_cast<HWND>(PropertySheetW(&header));
    if (m_owner != nullptr) {
        EnableWindow(m_owner, FALSE);
    }
}

SheetWindow::~SheetWindow() {
    if (m_owner != nullptr) {
        EnableWindow(m_owner, TRUE);
        SetForegroundWindow(m_owner);
    }
    DestroyWindow(m_window);
}

Worker& SheetWindow::Machine() const noexcept {
    return m_application.Machine();
}

bool SheetWindow::Takes(MSG& message) const {
    if (message.message == WM_KEYDOWN && message.wParam == VK_F5 &&
        IsChild(m_window, message.hwnd) != FALSE) {
        SendMessageW(PropSheet_GetCurrentPageHwnd(m_window), WM_COMMAND, ID_READ_AGAIN, 0);
        return true;
    }
    return PropSheet_IsDialogMessage(m_window, &message) != FALSE;
}

bool SheetWindow::IsEnded() const {
    return m_isEnded || PropSheet_GetCurrentPageHwnd(m_window) == nullptr;
}

void SheetWindow::NoteChange(const PageView& view) {
    if (m_window == nullptr) {
        return; // PropertySheetW shows the first page before it returns
    }
    if (view.Model()->IsChanged()) {
        PropSheet_Changed(m_window, view.Handle());
    } else {
        PropSheet_UnChanged(m_window, view.Handle());
    }
}

void SheetWindow::Activate(const Page& page) const {
    for (std::size_t number = 0; number < m_views.size(); ++number) {
        if (m_views[number]->Model().get() == &page) {
            PropSheet_SetCurSel(m_window, nullptr, number);
        }
    }
}

void SheetWindow::EnableButtons(bool areEnabled) const {
    for (const int button : {IDOK, IDCANCEL}) {
        EnableWindow(GetDlgItem(m_window, button), areEnabled ? TRUE : FALSE);
    }
}

LRESULT SheetWindow::OnApply(bool isOk) {
    if (m_model->IsBusy()) {
        return PSNRET_INVALID_NOCHANGEPAGE;
    }
    if (!m_model->IsChanged()) {
        return PSNRET_NOERROR;
    }
    if (const std::shared_ptr<Page> mistaken = m_model->FirstMistake()) {
        mistaken->SetNotice(mistaken->Mistake());
        Activate(*mistaken);
        return PSNRET_INVALID_NOCHANGEPAGE;
    }
    const std::vector<std::wstring> warnings = m_model->Warnings();
    if (!warnings.empty() && !Application::Ask(m_window, Lines(warnings) + Say(TextId::GoOn))) {
        return PSNRET_INVALID_NOCHANGEPAGE;
    }
    EnableButtons(false);
    m_model->Apply([this, isOk](const Applied& applied) { OnApplied(applied, isOk); });
    return PSNRET_INVALID_NOCHANGEPAGE;
}

void SheetWindow::OnApplied(const Applied& applied, bool isOk) {
    EnableButtons(true);
    for (const std::unique_ptr<PageView>& view : m_views) {
        view->Refresh();
        if (!applied.isDone && !view->Model()->Notice().empty() && view->Model()->IsChanged()) {
            Activate(*view->Model());
        }
    }
    if (applied.restartNeeded) {
        m_application.OfferRestart(m_window);
    }
    m_isEnded = m_isEnded || (applied.isDone && isOk);
}

} // namespace quillet::pages
