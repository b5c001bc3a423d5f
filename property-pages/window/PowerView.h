// The window of the page "Power".
#pragma once

#include "model/PowerPage.h"
#include "window/PageView.h"

namespace quillet::pages {

class PowerView : public PageView {
  public:
    PowerView(SheetWindow& sheet, std::shared_ptr<PowerPage> page);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;

    std::shared_ptr<PowerPage> m_page;
};

} // namespace quillet::pages
