// The window of the page "Switch test".
#pragma once

#include "model/SwitchTestPage.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class SwitchTestView : public PageView {
  public:
    SwitchTestView(SheetWindow& sheet, std::shared_ptr<SwitchTestPage> page);
    /// Stops a test that nobody watches any more.
    ~SwitchTestView() override;

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    void OnListControl(const NMHDR& told) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    void ShowSolution() const;

    std::shared_ptr<SwitchTestPage> m_page;
    ListView m_troubles;
};

} // namespace quillet::pages
