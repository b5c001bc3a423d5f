// The window of the page "General".
#include "window/GeneralView.h"

#include "resources/Ids.h"

#include <algorithm>

namespace quillet::pages {

namespace {

constexpr int kUsualBlink = 10;

} // namespace

GeneralView::GeneralView(SheetWindow& sheet, std::shared_ptr<GeneralPage> page)
    : PageView(sheet, page, ID_PAGE_GENERAL, TextId::PageGeneral), m_page(std::move(page)) {}

void GeneralView::Prepare() {
    m_facts.Attach(Item(ID_GENERAL_FACTS),
                   {{Say(TextId::ColumnProperty), 36}, {Say(TextId::ColumnValue), 64}});
    Send(ID_GENERAL_SECONDS_SPIN, UDM_SETRANGE32, GeneralPage::kShortestBlink, GeneralPage::kLongestBlink);
    Send(ID_GENERAL_SECONDS_SPIN, UDM_SETPOS32, 0, kUsualBlink);
}

void GeneralView::ShowPage() {
    SetText(ID_GENERAL_NAME, m_page->Name());
    SetText(ID_GENERAL_LINK, m_page->Link());
    SetText(ID_GENERAL_STATE, m_page->State());
    std::vector<std::vector<std::wstring>> rows;
    for (const Fact& fact : m_page->Facts()) {
        rows.push_back({fact.name, fact.value});
    }
    m_facts.Fill(rows);
    Enable(ID_GENERAL_IDENTIFY, m_page->CanBlink());
    Enable(ID_GENERAL_SECONDS, m_page->CanBlink());
}

void GeneralView::OnControl(int id, unsigned code) {
    if (id == ID_GENERAL_IDENTIFY && code == BN_CLICKED) {
        const int seconds = int(Send(ID_GENERAL_SECONDS_SPIN, UDM_GETPOS32));
        Ask(m_page->Blinking(std::chrono::seconds(
            std::clamp(seconds, GeneralPage::kShortestBlink, GeneralPage::kLongestBlink))));
    } else if (id == ID_GENERAL_REFRESH && code == BN_CLICKED) {
        ReadAgain();
    }
}

} // namespace quillet::pages
