// The window of the page "PAC and log".
#pragma once

#include "model/PacPage.h"
#include "window/PageView.h"

namespace quillet::pages {

class PacView : public PageView {
  public:
    PacView(SheetWindow& sheet, std::shared_ptr<PacPage> page);

  private:
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    void Press(int id);

    std::shared_ptr<PacPage> m_page;
    std::wstring m_imported; ///< what the field of the name was filled with last
};

} // namespace quillet::pages
