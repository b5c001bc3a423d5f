// The window of the page "Link security".
#pragma once

#include "model/LinkSecurityPage.h"
#include "window/PageView.h"

namespace quillet::pages {

class LinkSecurityView : public PageView {
  public:
    LinkSecurityView(SheetWindow& sheet, std::shared_ptr<LinkSecurityPage> page);

  private:
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    void ShowCredentials();
    void Type(int id);
    void Click(int id);

    std::shared_ptr<LinkSecurityPage> m_page;
};

} // namespace quillet::pages
