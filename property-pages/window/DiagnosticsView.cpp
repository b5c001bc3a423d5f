// The window of the page "Diagnostics".
#include "window/DiagnosticsView.h"

#include "resources/Ids.h"
#include "window/SheetWindow.h"

namespace quillet::pages {

namespace {

/// From one look at a test to the next, in milliseconds.
constexpr UINT kInterval = 250;
constexpr UINT_PTR kTimer = 1;

} // namespace

DiagnosticsView::DiagnosticsView(SheetWindow& sheet, std::shared_ptr<DiagnosticsPage> page)
    : PageView(sheet, page, ID_PAGE_DIAGNOSTICS, TextId::PageDiagnostics), m_page(std::move(page)) {}

void DiagnosticsView::Prepare() {
    m_list.Attach(
        Item(ID_DIAGNOSTICS_LIST),
        {{Say(TextId::ColumnTest), 46}, {Say(TextId::ColumnState), 20}, {Say(TextId::ColumnOutcome), 34}});
}

void DiagnosticsView::ShowPage() {
    std::vector<std::vector<std::wstring>> rows;
    for (const ListedTest& each : m_page->Tests()) {
        rows.push_back({each.test.name, m_page->State(each), DiagnosticsPage::Outcome(each)});
    }
    m_list.Fill(rows);
    if (!rows.empty()) {
        m_list.Choose(int(m_page->Chosen()));
    }
    SetText(ID_DIAGNOSTICS_DETAILS, m_page->Details());
    SetText(ID_DIAGNOSTICS_PROGRESS, m_page->Progress());
    Enable(ID_DIAGNOSTICS_RUN, !rows.empty());
    Enable(ID_DIAGNOSTICS_RUN_ALL, !rows.empty());
    Enable(ID_DIAGNOSTICS_STOP, m_page->IsBusy() && !m_page->IsStopping());
    KeepTime();
}

void DiagnosticsView::KeepTime() {
    if (m_page->IsBusy() == m_hasTimer) {
        return;
    }
    m_hasTimer = m_page->IsBusy();
    if (m_hasTimer) {
        SetTimer(Handle(), kTimer, kInterval, nullptr);
    } else {
        KillTimer(Handle(), kTimer);
    }
}

void DiagnosticsView::OnControl(int id, unsigned code) {
    if (code != BN_CLICKED) {
        return;
    }
    if (id == ID_DIAGNOSTICS_RUN) {
        m_page->Run();
    } else if (id == ID_DIAGNOSTICS_RUN_ALL) {
        m_page->RunAll();
    } else if (id == ID_DIAGNOSTICS_STOP) {
        m_page->Stop();
    }
    GoOn();
}

void DiagnosticsView::GoOn() {
    if (std::optional<Job> question = m_page->NextQuestion()) {
        Owner().Machine().Ask(m_page, std::move(*question),
                              [page = m_page.get()](const std::wstring& reason) { page->Fail(reason); });
    }
}

void DiagnosticsView::OnListControl(const NMHDR& told) {
    if (told.idFrom == ID_DIAGNOSTICS_LIST && IsNewChoice(told)) {
        m_page->Choose(std::size_t(reinterpret_cast<const NMLISTVIEW&>(told).iItem));
    }
}

bool DiagnosticsView::OnMessage(UINT message, WPARAM wide, LPARAM) {
    if (message != WM_TIMER || wide != kTimer) {
        return false;
    }
    SetText(ID_DIAGNOSTICS_PROGRESS, m_page->Progress());
    GoOn();
    return true;
}

} // namespace quillet::pages
