// The window of the page "Boot".
#pragma once

#include "model/BootPage.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class BootView : public PageView {
  public:
    BootView(SheetWindow& sheet, std::shared_ptr<BootPage> page);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    void OnListControl(const NMHDR& told) override;

    void ShowPlace();
    void ShowImages();
    void Open();
    void Write();
    void Save();

    std::shared_ptr<BootPage> m_page;
    ListView m_facts;
    ListView m_images;
};

} // namespace quillet::pages
