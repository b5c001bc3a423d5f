// The window of the page "Keys".
#pragma once

#include "model/KeysPage.h"
#include "window/PageView.h"

namespace quillet::pages {

class KeysView : public PageView {
  public:
    KeysView(SheetWindow& sheet, std::shared_ptr<KeysPage> page);

  private:
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    std::shared_ptr<KeysPage> m_page;
};

} // namespace quillet::pages
