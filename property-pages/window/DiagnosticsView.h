// The window of the page "Diagnostics".
#pragma once

#include "model/DiagnosticsPage.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class DiagnosticsView : public PageView {
  public:
    DiagnosticsView(SheetWindow& sheet, std::shared_ptr<DiagnosticsPage> page);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    void OnListControl(const NMHDR& told) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    void GoOn();
    void KeepTime();

    std::shared_ptr<DiagnosticsPage> m_page;
    ListView m_list;
    bool m_hasTimer = false;
};

} // namespace quillet::pages
