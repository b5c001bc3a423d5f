// The window of the page "Team".
#pragma once

#include "model/TeamPage.h"
#include "window/ComboBox.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class TeamView : public PageView {
  public:
    TeamView(SheetWindow& sheet, std::shared_ptr<TeamPage> page);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    void OnListControl(const NMHDR& told) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    const TeamRow* Chosen() const;
    void ShowMembers();
    void ShowRole();
    void FindBest();

    std::shared_ptr<TeamPage> m_page;
    ListView m_members;
    ComboBox<TeamMode> m_modes;
    ComboBox<MemberRole> m_roles;
};

} // namespace quillet::pages
