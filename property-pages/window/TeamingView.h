// The window of the page "Teaming".
#pragma once

#include "model/TeamingPage.h"
#include "window/ComboBox.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class TeamingView : public PageView {
  public:
    TeamingView(SheetWindow& sheet, std::shared_ptr<TeamingPage> page);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;

    std::shared_ptr<TeamingPage> m_page;
    ListView m_members;
    ComboBox<TeamId> m_teams;
    ComboBox<MemberRole> m_roles;
};

} // namespace quillet::pages
