// A dialog box that is a property sheet of one page.
#include "window/OnePageDialog.h"

#include "resources/Ids.h"
#include "window/Application.h"

namespace quillet::pages {

OnePageDialog::OnePageDialog(Application& application, std::shared_ptr<Page> page, unsigned templateId,
                             std::wstring title)
    : m_application(application), m_page(std::move(page)),
      m_sheet(std::make_shared<Sheet>(application.Machine(), PageList{m_page})), m_templateId(templateId),
      m_title(std::move(title)) {}

OnePageDialog::~OnePageDialog() {
    m_page->changed = nullptr;
}

bool OnePageDialog::Run(HWND owner) {
    return ShowModal(m_templateId, owner) == IDOK;
}

bool OnePageDialog::OnInit() {
    SetWindowTextW(Handle(), m_title.c_str());
    m_page->changed = [this] { Refresh(); };
    Prepare();
    Refresh();
    m_sheet->Read(m_page);
    return true;
}

void OnePageDialog::Refresh() {
    if (Handle() == nullptr) {
        return;
    }
    const Filling filling(*this);
    ShowPage();
    SetText(ID_NOTICE,
            m_page->IsRead() || !m_page->Notice().empty() ? m_page->Notice() : Say(TextId::Reading));
    Dialog::Show(ID_NOTICE, !TextOf(ID_NOTICE).empty());
    Enable(IDOK, !m_sheet->IsBusy() && CanAccept());
    Enable(IDCANCEL, !m_sheet->IsBusy());
    if (m_page->IsRead() && !std::exchange(m_isOpen, true)) {
        FocusOn(GetNextDlgTabItem(Handle(), nullptr, FALSE)); // until now there was nothing to enter
    } else if (IsWindowEnabled(Item(IDOK)) != FALSE && std::exchange(m_isAccepting, false)) {
        FocusOn(Item(IDOK)); // it could not be done, and OK has lost the focus while it was tried
    }
    if (Job checking = m_page->Checking()) {
        Ask(std::move(checking), [page = m_page.get()](const std::wstring& reason) {
            page->SetNotice(Say(TextId::NotChecked, {reason}));
        });
    }
}

void OnePageDialog::FocusOn(HWND control) const {
    SendMessageW(Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
}

void OnePageDialog::OnCommand(int id, unsigned code) {
    if (id == IDOK) {
        if (IsWindowEnabled(Item(IDOK)) != FALSE) { // Enter comes here even where the button is disabled
            Accept();
            m_isAccepting = true;
        }
    } else if (id == IDCANCEL) {
        Leave();
    } else {
        OnControl(id, code);
    }
}

void OnePageDialog::OnDestroy() {
    m_page->changed = nullptr;
}

bool OnePageDialog::CanAccept() const {
    return m_page->IsChanged() && m_page->Mistake().empty();
}

void OnePageDialog::Accept() {
    m_page->SetNotice({});
    m_sheet->Apply([this](const Applied& applied) {
        if (applied.isDone) {
            EndWell(applied.restartNeeded);
        } else {
            Refresh();
        }
    });
    Refresh();
}

void OnePageDialog::Leave() {
    if (!m_sheet->IsBusy()) {
        EndDialog(Handle(), IDCANCEL);
    }
}

std::stop_source OnePageDialog::Ask(Job job, Failed failed) const {
    return m_application.Machine().Ask(m_page, std::move(job), std::move(failed));
}

void OnePageDialog::EndWell(bool restartNeeded) const {
    if (restartNeeded) {
        m_application.OfferRestart(Handle());
    }
    EndDialog(Handle(), IDOK);
}

} // namespace quillet::pages
