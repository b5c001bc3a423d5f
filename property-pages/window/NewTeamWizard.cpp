// The New Team wizard.
#include "window/NewTeamWizard.h"

#include "window/Application.h"
#include "window/WizardSteps.h"

namespace quillet::pages {

NewTeamWizard::NewTeamWizard(Application& application, std::shared_ptr<NewTeamPage> page)
    : m_application(application), m_page(std::move(page)),
      m_sheet(std::make_shared<Sheet>(application.Machine(), PageList{m_page})) {
    m_steps.push_back(std::make_unique<NameStep>(*this));
    m_steps.push_back(std::make_unique<MembersStep>(*this));
    m_steps.push_back(std::make_unique<ModeStep>(*this));
    m_steps.push_back(std::make_unique<SummaryStep>(*this));
}

NewTeamWizard::~NewTeamWizard() {
    m_page->changed = nullptr;
}

bool NewTeamWizard::Run(HWND owner) {
    m_page->changed = [this] { Refresh(); };
    m_sheet->Read(m_page);
    std::vector<PROPSHEETPAGEW> descriptions;
    for (const std::unique_ptr<WizardStep>& step : m_steps) {
        descriptions.push_back(step->Description());
    }
    PROPSHEETHEADERW header{};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_PROPSHEETPAGE | PSH_WIZARD97 | PSH_HEADER | PSH_NOCONTEXTHELP;
    header.hwndParent = owner;
    header.hInstance = GetModuleHandleW(nullptr);
    header.nPages = UINT(descriptions.size());
    header.ppsp = descriptions.data();
    PropertySheetW(&header);
    m_page->changed = nullptr;
    if (m_isDone) {
        Application::Tell(owner, Say(TextId::TeamMade, {m_page->Wanted().name,
                                                        std::to_wstring(m_page->Wanted().members.size())}));
        if (m_isRestartNeeded) {
            m_application.OfferRestart(owner);
        }
    }
    return m_isDone;
}

void NewTeamWizard::Refresh() const {
    for (const std::unique_ptr<WizardStep>& step : m_steps) {
        step->Refresh();
    }
}

void NewTeamWizard::Leave(NewTeamPage::Step step, HWND wizard) {
    if (IsBusy() || !m_page->IsRead()) {
        return;
    }
    const auto turn = [wizard, next = int(step) + 1] { PropSheet_SetCurSel(wizard, nullptr, next); };
    m_application.Machine().Ask(
        m_page, m_page->Verifying(step, turn),
        [page = m_page.get()](const std::wstring& reason) { page->NoteFailure(reason); });
}

void NewTeamWizard::Finish(HWND wizard) {
    if (IsBusy()) {
        return;
    }
    m_sheet->Apply([this, wizard](const Applied& applied) {
        m_isDone = applied.isDone;
        m_isRestartNeeded = applied.restartNeeded;
        Refresh();
        if (m_isDone) {
            PropSheet_PressButton(wizard, PSBTN_FINISH);
        }
    });
    m_page->SetNotice(Say(TextId::Making));
}

} // namespace quillet::pages
