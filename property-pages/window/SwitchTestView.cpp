// The window of the page "Switch test".
#include "window/SwitchTestView.h"

#include "resources/Ids.h"
#include "window/Application.h"
#include "window/SheetWindow.h"

namespace quillet::pages {

namespace {

/// How often the test is asked how far it is.
constexpr UINT kLookMilliseconds = 500;
constexpr UINT_PTR kLookTimer = 1;

} // namespace

SwitchTestView::SwitchTestView(SheetWindow& sheet, std::shared_ptr<SwitchTestPage> page)
    : PageView(sheet, page, ID_PAGE_SWITCH_TEST, TextId::PageSwitchTest), m_page(std::move(page)) {}

SwitchTestView::~SwitchTestView() {
    if (m_page->IsRunning()) {
        Application& program = Owner().Program();
        // In the name of the tree: the page goes, and with it whatever it has asked.
        program.Machine().Ask(program.Tree(), m_page->Sending(SwitchCommand::Stop),
                              [](const std::wstring&) {});
    }
}

void SwitchTestView::Prepare() {
    m_troubles.Attach(Item(ID_SWITCH_TROUBLES), {{std::wstring(), 100}});
}

void SwitchTestView::ShowPage() {
    SetText(ID_SWITCH_STATUS, m_page->Status());
    Enable(ID_SWITCH_START, m_page->CanStart());
    Enable(ID_SWITCH_STOP, m_page->IsRunning());
    Dialog::Show(ID_SWITCH_PROGRESS, m_page->IsRunning());
    Send(ID_SWITCH_PROGRESS, PBM_SETMARQUEE, m_page->IsRunning() ? TRUE : FALSE);
    std::vector<std::vector<std::wstring>> rows;
    for (const SwitchTrouble& trouble : m_page->Troubles()) {
        rows.push_back({trouble.cause});
    }
    m_troubles.Fill(rows);
    if (m_troubles.Chosen() < 0 && !rows.empty()) {
        m_troubles.Choose(0);
    }
    ShowSolution();
    if (m_page->IsRunning()) {
        SetTimer(Handle(), kLookTimer, kLookMilliseconds, nullptr);
    }
}

void SwitchTestView::ShowSolution() const {
    const auto row = std::size_t(m_troubles.Chosen());
    SetText(ID_SWITCH_SOLUTION,
            row < m_page->Troubles().size() ? m_page->Troubles()[row].solution : std::wstring());
}

void SwitchTestView::OnControl(int id, unsigned code) {
    if (id == ID_SWITCH_START && code == BN_CLICKED) {
        Ask(m_page->Sending(SwitchCommand::Start));
    } else if (id == ID_SWITCH_STOP && code == BN_CLICKED) {
        Ask(m_page->Sending(SwitchCommand::Stop));
    }
}

void SwitchTestView::OnListControl(const NMHDR& told) {
    if (told.idFrom == ID_SWITCH_TROUBLES && IsNewChoice(told)) {
        ShowSolution();
    }
}

bool SwitchTestView::OnMessage(UINT message, WPARAM wide, LPARAM) {
    if (message != WM_TIMER || wide != kLookTimer) {
        return false;
    }
    KillTimer(Handle(), kLookTimer); // the answer sets it again while the test runs
    Ask(m_page->Sending(SwitchCommand::Query));
    return true;
}

} // namespace quillet::pages
