// The window of the page "Advanced".
#pragma once

#include "model/SettingsPage.h"
#include "window/ListView.h"
#include "window/PageView.h"

namespace quillet::pages {

class SettingsView : public PageView {
  public:
    SettingsView(SheetWindow& sheet, std::shared_ptr<SettingsPage> page, TextId title = TextId::PageSettings);

  private:
    void Prepare() override;
    void ShowPage() override;
    void OnControl(int id, unsigned code) override;
    void OnListControl(const NMHDR& told) override;
    bool OnMessage(UINT message, WPARAM wide, LPARAM parameter) override;

    void ShowProfile();
    void MakeRoom(bool isForProfile);
    void ShowEditor();
    void ShowChoices(int id, const ChoiceValue& value) const;
    void ShowSlider(const SliderValue& value) const;
    void ShowSelection(const SelectionValue& value);

    std::shared_ptr<SettingsPage> m_page;
    ListView m_list;
    ListView m_selection;
    bool m_hasRoom = true; ///< for the profile, as the template has it
};

} // namespace quillet::pages
