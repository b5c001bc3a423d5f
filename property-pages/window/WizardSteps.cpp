// The pages of the New Team wizard.
#include "window/WizardSteps.h"

#include "model/LanguageResources.h"
#include "model/TeamWords.h"
#include "resources/Ids.h"

#include <climits>

namespace quillet::pages {

WizardStep::WizardStep(NewTeamWizard& wizard, NewTeamPage::Step step, unsigned templateId, TextId title,
                       TextId subtitle)
    : m_wizard(wizard), m_step(step), m_templateId(templateId), m_caption(Say(TextId::NewTeamTitle)),
      m_title(Say(title)), m_subtitle(Say(subtitle)) {}

PROPSHEETPAGEW WizardStep::Description() const {
    PROPSHEETPAGEW page{};
    page.dwSize = sizeof(page);
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE | PSP_USEHEADERTITLE | PSP_USEHEADERSUBTITLE;
    page.hInstance = GetModuleHandleW(nullptr);
    page.pResource = static_cast<const DLGTEMPLATE*>(FindResourceOf(RT_DIALOG, m_templateId));
    page.pszTitle = m_caption.c_str();
    page.pszHeaderTitle = m_title.c_str();
    page.pszHeaderSubTitle = m_subtitle.c_str();
    page.pfnDlgProc = Procedure;
    page.lParam = reinterpret_cast<LPARAM>(static_cast<const Dialog*>(this));
    return page;
}

bool WizardStep::OnInit() {
    Prepare();
    Refresh();
    return true;
}

void WizardStep::Refresh() {
    if (Handle() == nullptr) {
        return;
    }
    const Filling filling(*this);
    ShowStep();
    SetText(ID_NOTICE,
            Model().IsRead() || !Model().Notice().empty() ? Model().Notice() : Say(TextId::Reading));
    Show(ID_NOTICE, !TextOf(ID_NOTICE).empty());
    if (IsInFront()) {
        ShowButtons();
    }
}

bool WizardStep::IsInFront() const {
    return IsWindowVisible(Handle()) != FALSE;
}

void WizardStep::ShowButtons() const {
    // They stay as they are while a step is being checked, and do nothing: a button that is disabled loses
    // the focus.
    const DWORD next = !Model().IsRead()                      ? 0
                       : m_step == NewTeamPage::Step::Summary ? PSWIZB_FINISH
                                                              : PSWIZB_NEXT;
    PropSheet_SetWizButtons(GetParent(Handle()),
                            next | (m_step == NewTeamPage::Step::Name ? 0 : PSWIZB_BACK));
}

bool WizardStep::OnNotify(const NMHDR& told, LRESULT& result) {
    const HWND wizard = GetParent(Handle());
    switch (told.code) {
    case PSN_SETACTIVE:
        m_wizard.NoteTurn();
        Refresh();
        ShowButtons();
        result = 0;
        return true;
    case PSN_WIZBACK:
        result = m_wizard.IsBusy() ? -1 : 0;
        return true;
    case PSN_WIZNEXT:
        m_wizard.Leave(m_step, wizard);
        result = -1; // the page is turned when it was checked
        return true;
    case PSN_WIZFINISH:
        if (!m_wizard.IsDone()) {
            m_wizard.Finish(wizard);
        }
        result = m_wizard.IsDone() ? FALSE : TRUE; // TRUE keeps it open
        return true;
    case PSN_QUERYCANCEL:
        result = m_wizard.IsBusy() ? TRUE : FALSE;
        return true;
    default:
        if (!IsFilling()) {
            OnListControl(told);
        }
        return false;
    }
}

NameStep::NameStep(NewTeamWizard& wizard)
    : WizardStep(wizard, NewTeamPage::Step::Name, ID_WIZARD_NAME, TextId::StepName, TextId::StepNameAbout) {}

void NameStep::ShowStep() {
    SetText(ID_WIZARD_NAME_TEXT, Model().Wanted().name);
    if (Model().IsRead() && !std::exchange(m_isProposed, true)) {
        // The user goes on behind what the machine proposes.
        Send(ID_WIZARD_NAME_TEXT, EM_SETSEL, WPARAM(INT_MAX), LPARAM(INT_MAX));
    }
}

void NameStep::OnCommand(int id, unsigned code) {
    if (id == ID_WIZARD_NAME_TEXT && code == EN_CHANGE) {
        Model().TypeName(TextOf(id));
    }
}

MembersStep::MembersStep(NewTeamWizard& wizard)
    : WizardStep(wizard, NewTeamPage::Step::Members, ID_WIZARD_MEMBERS, TextId::StepMembers,
                 TextId::StepMembersAbout) {}

void MembersStep::Prepare() {
    m_list.Attach(Item(ID_WIZARD_MEMBERS_LIST),
                  {{Say(TextId::ColumnAdapter), 67}, {Say(TextId::ColumnLinkOrNot), 33}}, LVS_EX_CHECKBOXES);
}

void MembersStep::ShowStep() {
    const std::vector<Candidate>& candidates = Model().Candidates();
    std::vector<std::vector<std::wstring>> rows;
    for (const Candidate& candidate : candidates) {
        rows.push_back({candidate.name, candidate.whyNot.empty() ? candidate.link : candidate.whyNot});
    }
    m_list.Fill(rows);
    for (std::size_t row = 0; row < candidates.size(); ++row) {
        m_list.Tick(int(row), Model().IsMember(candidates[row].id));
    }
    const std::vector<AdapterId>& members = Model().Wanted().members;
    Send(ID_WIZARD_MEMBERS_PRIMARY, CB_RESETCONTENT);
    for (const Candidate& member : Model().Members()) {
        const LRESULT place =
            Send(ID_WIZARD_MEMBERS_PRIMARY, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(member.name.c_str()));
        if (member.id == members.front()) {
            Send(ID_WIZARD_MEMBERS_PRIMARY, CB_SETCURSEL, WPARAM(place));
        }
    }
    Enable(ID_WIZARD_MEMBERS_PRIMARY, !members.empty());
}

void MembersStep::OnCommand(int id, unsigned code) {
    const std::vector<Candidate> members = Model().Members();
    const auto chosen = std::size_t(Send(ID_WIZARD_MEMBERS_PRIMARY, CB_GETCURSEL));
    if (id == ID_WIZARD_MEMBERS_PRIMARY && code == CBN_SELCHANGE && chosen < members.size()) {
        Model().MakePrimary(members[chosen].id);
    }
}

void MembersStep::OnListControl(const NMHDR& told) {
    const int row = reinterpret_cast<const NMLISTVIEW&>(told).iItem;
    if (told.idFrom == ID_WIZARD_MEMBERS_LIST && IsNewTick(told) &&
        std::size_t(row) < Model().Candidates().size()) {
        const AdapterId id = Model().Candidates()[std::size_t(row)].id;
        Model().Tick(id, m_list.IsTicked(row));
    }
}

ModeStep::ModeStep(NewTeamWizard& wizard)
    : WizardStep(wizard, NewTeamPage::Step::Mode, ID_WIZARD_MODE, TextId::StepMode, TextId::StepModeAbout) {}

void ModeStep::ShowStep() {
    const NewTeam& wanted = Model().Wanted();
    Send(ID_WIZARD_MODE_LIST, LB_RESETCONTENT);
    for (const TeamMode mode : Model().Modes()) {
        const std::wstring text = InOwnLanguage(Text(mode));
        const LRESULT place =
            Send(ID_WIZARD_MODE_LIST, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
        if (mode == wanted.mode) {
            Send(ID_WIZARD_MODE_LIST, LB_SETCURSEL, WPARAM(place));
        }
    }
    SetText(ID_WIZARD_MODE_ABOUT, AboutMode(wanted.mode));
    Tick(ID_WIZARD_MODE_MAKERS, wanted.multiVendor);
    Tick(ID_WIZARD_MODE_SECURITY, wanted.linkSecurity);
}

void ModeStep::OnCommand(int id, unsigned code) {
    const auto chosen = std::size_t(Send(ID_WIZARD_MODE_LIST, LB_GETCURSEL));
    if (id == ID_WIZARD_MODE_LIST && code == LBN_SELCHANGE && chosen < Model().Modes().size()) {
        Model().PickMode(Model().Modes()[chosen]);
    } else if (id == ID_WIZARD_MODE_MAKERS && code == BN_CLICKED) {
        Model().AllowOtherMakers(IsTicked(id));
    } else if (id == ID_WIZARD_MODE_SECURITY && code == BN_CLICKED) {
        Model().SecureLink(IsTicked(id));
    }
}

SummaryStep::SummaryStep(NewTeamWizard& wizard)
    : WizardStep(wizard, NewTeamPage::Step::Summary, ID_WIZARD_SUMMARY, TextId::StepSummary,
                 TextId::StepSummaryAbout) {}

void SummaryStep::ShowStep() {
    SetText(ID_WIZARD_SUMMARY_TEXT, Model().Summary());
}

} // namespace quillet::pages
