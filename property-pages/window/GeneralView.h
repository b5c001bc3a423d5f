// The window of the page "General".
#pragma once

#include "model/GeneralPage.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class GeneralView : public PageView {
  public:
    GeneralView(SheetWindow& sheet, std::shared_ptr<GeneralPage> page);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;

    std::shared_ptr<GeneralPage> m_page;
    ListView m_facts;
};

} // namespace quillet::pages
