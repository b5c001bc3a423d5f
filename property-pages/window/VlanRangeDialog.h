// The dialog for several VLANs.
#pragma once

#include "model/VlanRangePage.h"
#include "window/OnePageDialog.h"

namespace quillet::pages {

class VlanRangeDialog : public OnePageDialog {
  public:
    VlanRangeDialog(Application& application, std::shared_ptr<VlanRangePage> page);

    /// Whether it changed anything, even where it was left before the end.
    bool HasMadeAny() const noexcept { return m_hasMadeAny; }

  private:
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    void Accept() override;
    void Leave() override;
    bool CanAccept() const override;

    std::shared_ptr<VlanRangePage> m_page;
    std::stop_source m_stop{std::nostopstate};
    bool m_hasMadeAny = false;
};

} // namespace quillet::pages
