// The window of the page "Team".
#include "window/TeamView.h"

#include "model/TeamWords.h"
#include "resources/Ids.h"

namespace quillet::pages {

namespace {

/// How often the search for the best mode is asked how far it is.
constexpr UINT kSearchMilliseconds = 500;
constexpr UINT_PTR kSearchTimer = 1;

} // namespace

TeamView::TeamView(SheetWindow& sheet, std::shared_ptr<TeamPage> page)
    : PageView(sheet, page, ID_PAGE_TEAM, TextId::PageTeam), m_page(std::move(page)) {}

void TeamView::Prepare() {
    m_modes.Attach(Item(ID_TEAM_MODE));
    m_roles.Attach(Item(ID_TEAM_ROLE));
    m_members.Attach(Item(ID_TEAM_MEMBERS),
                     {{Say(TextId::ColumnAdapter), 48},
                      {Say(TextId::ColumnLink), 18},
                      {Say(TextId::ColumnRole), 16},
                      {Say(TextId::ColumnStatus), 18}},
                     LVS_EX_CHECKBOXES);
}

void TeamView::ShowPage() {
    SetText(ID_TEAM_NAME, m_page->Entry().name);
    ComboBox<TeamMode>::Entries modes;
    for (const TeamMode mode : m_page->Modes()) {
        modes.emplace_back(mode, InOwnLanguage(Text(mode)));
    }
    m_modes.Fill(m_page->IsRead() ? modes : ComboBox<TeamMode>::Entries(), m_page->Entry().mode);
    SetText(ID_TEAM_ABOUT, m_page->IsRead() ? m_page->About() : std::wstring());
    SetText(ID_TEAM_STATUS, m_page->Status());
    SetText(ID_TEAM_MAC, m_page->MacAddress());
    for (const int id : {ID_TEAM_NAME, ID_TEAM_MODE, ID_TEAM_MEMBERS}) {
        Enable(id, m_page->IsRead());
    }
    Enable(ID_TEAM_BEST, m_page->IsRead() && !m_page->IsSearching());
    ShowMembers();
    ShowRole();
    if (m_page->IsSearching()) {
        SetTimer(Handle(), kSearchTimer, kSearchMilliseconds, nullptr);
    }
}

void TeamView::ShowMembers() {
    const std::vector<TeamRow>& shown = m_page->Rows();
    std::vector<std::vector<std::wstring>> rows;
    for (const TeamRow& row : shown) {
        rows.push_back(
            {row.name, row.link,
             m_page->IsMember(row.id) ? InOwnLanguage(Text(m_page->RoleOf(row.id))) : std::wstring(),
             row.status});
    }
    m_members.Fill(rows);
    for (std::size_t row = 0; row < shown.size(); ++row) {
        m_members.Tick(int(row), m_page->IsMember(shown[row].id));
    }
}

const TeamRow* TeamView::Chosen() const {
    const auto row = std::size_t(m_members.Chosen());
    return row < m_page->Rows().size() ? &m_page->Rows()[row] : nullptr;
}

void TeamView::ShowRole() {
    const TeamRow* chosen = Chosen();
    const bool isMember = chosen != nullptr && m_page->IsMember(chosen->id);
    ComboBox<MemberRole>::Entries roles;
    for (const MemberRole role : {MemberRole::NotAssigned, MemberRole::Primary, MemberRole::Secondary}) {
        roles.emplace_back(role, InOwnLanguage(Text(role)));
    }
    m_roles.Fill(isMember ? roles : ComboBox<MemberRole>::Entries(),
                 isMember ? m_page->RoleOf(chosen->id) : MemberRole::NotAssigned);
    Enable(ID_TEAM_ROLE, isMember);
}

void TeamView::OnControl(int id, unsigned code) {
    if (id == ID_TEAM_NAME && code == EN_CHANGE) {
        m_page->TypeName(TextOf(id));
    } else if (id == ID_TEAM_MODE && code == CBN_SELCHANGE && m_modes.Chosen() != nullptr) {
        m_page->PickMode(TeamMode(*m_modes.Chosen()));
    } else if (id == ID_TEAM_ROLE && code == CBN_SELCHANGE && m_roles.Chosen() != nullptr &&
               Chosen() != nullptr) {
        m_page->SetRole(AdapterId(Chosen()->id), MemberRole(*m_roles.Chosen()));
    } else if (id == ID_TEAM_BEST && code == BN_CLICKED) {
        FindBest();
    }
}

void TeamView::OnListControl(const NMHDR& told) {
    if (told.idFrom != ID_TEAM_MEMBERS) {
        return;
    }
    const int row = reinterpret_cast<const NMLISTVIEW&>(told).iItem;
    if (IsNewTick(told) && std::size_t(row) < m_page->Rows().size()) {
        m_page->Tick(AdapterId(m_page->Rows()[std::size_t(row)].id), m_members.IsTicked(row));
    } else if (told.code == LVN_ITEMCHANGED) {
        const Filling filling(*this);
        ShowRole();
    }
}

bool TeamView::OnMessage(UINT message, WPARAM wide, LPARAM) {
    if (message != WM_TIMER || wide != kSearchTimer) {
        return false;
    }
    KillTimer(Handle(), kSearchTimer); // the answer sets it again where there is more to wait for
    FindBest();
    return true;
}

void TeamView::FindBest() {
    Ask(m_page->FindingBest());
}

} // namespace quillet::pages
