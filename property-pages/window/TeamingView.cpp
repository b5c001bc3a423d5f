// The window of the page "Teaming".
#include "window/TeamingView.h"

#include "model/Words.h"
#include "resources/Ids.h"
#include "window/SheetWindow.h"
#include "window/Wizards.h"

namespace quillet::pages {

TeamingView::TeamingView(SheetWindow& sheet, std::shared_ptr<TeamingPage> page)
    : PageView(sheet, page, ID_PAGE_TEAMING, TextId::PageTeaming), m_page(std::move(page)) {}

void TeamingView::Prepare() {
    m_teams.Attach(Item(ID_TEAMING_TEAM));
    m_roles.Attach(Item(ID_TEAMING_ROLE));
    m_members.Attach(Item(ID_TEAMING_MEMBERS), {{Say(TextId::ColumnAdapter), 48},
                                                {Say(TextId::ColumnLink), 18},
                                                {Say(TextId::ColumnRole), 16},
                                                {Say(TextId::ColumnStatus), 18}});
}

void TeamingView::ShowPage() {
    ComboBox<TeamId>::Entries teams;
    for (const TeamChoice& team : m_page->Teams()) {
        teams.emplace_back(team.id, team.name);
    }
    m_teams.Fill(teams, m_page->Team());
    ComboBox<MemberRole>::Entries roles;
    for (const MemberRole role : {MemberRole::NotAssigned, MemberRole::Primary, MemberRole::Secondary}) {
        roles.emplace_back(role, InOwnLanguage(Text(role)));
    }
    m_roles.Fill(m_page->Team().IsEmpty() ? ComboBox<MemberRole>::Entries() : roles, m_page->Role());
    SetText(ID_TEAMING_STATUS, m_page->Status());
    std::vector<std::vector<std::wstring>> rows;
    for (const MemberRow& member : m_page->Members()) {
        rows.push_back({member.name, member.link, member.role, member.status});
    }
    m_members.Fill(rows);
    SetText(ID_TEAMING_MODES, m_page->Modes());
    SetText(ID_TEAMING_PORTS, m_page->Ports());
    Enable(ID_TEAMING_TEAM, m_page->CanBeTeamed());
    Enable(ID_TEAMING_ROLE, m_page->CanBeTeamed() && !m_page->Team().IsEmpty());
    Enable(ID_TEAMING_NEW_TEAM, m_page->CanBeTeamed() && !m_page->IsTeamed() && !m_page->IsChanged());
}

void TeamingView::OnControl(int id, unsigned code) {
    if (id == ID_TEAMING_TEAM && code == CBN_SELCHANGE && m_teams.Chosen() != nullptr) {
        m_page->PickTeam(TeamId(*m_teams.Chosen()));
    } else if (id == ID_TEAMING_ROLE && code == CBN_SELCHANGE && m_roles.Chosen() != nullptr) {
        m_page->PickRole(MemberRole(*m_roles.Chosen()));
    } else if (id == ID_TEAMING_NEW_TEAM && code == BN_CLICKED) {
        const Node chosen{.id = m_page->Adapter(), .name = {}, .state = {}};
        ShowNewTeam(Owner().Program(), Owner().Handle(), &chosen);
        Owner().Model().ReadAgain(); // a member's other pages show other things
    }
}

} // namespace quillet::pages
