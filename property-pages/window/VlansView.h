// The window of the page "VLANs".
#pragma once

#include "model/VlansPage.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class VlansView : public PageView {
  public:
    VlansView(SheetWindow& sheet, std::shared_ptr<VlansPage> page);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    void OnListControl(const NMHDR& told) override;

    void ShowActions() const;
    void Modify();
    void Remove();

    std::shared_ptr<VlansPage> m_page;
    ListView m_list;
    /// Owns the jobs whose answers need the window: a page may outlive it while another job is under way.
    std::shared_ptr<bool> m_isThere = std::make_shared<bool>(true);
};

} // namespace quillet::pages
