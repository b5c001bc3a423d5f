// The window of one page of a property sheet.
#pragma once

#include "model/Page.h"
#include "window/Dialog.h"

#include <prsht.h>

#include <memory>

namespace quillet::pages {

class SheetWindow;

/// Shows a page, and tells it what the user does.
class PageView : public Dialog {
  public:
    /// @param templateId its dialog, which has ID_NOTICE
    PageView(SheetWindow& sheet, std::shared_ptr<Page> page, unsigned templateId, TextId title);
    ~PageView() override;

    /// For PropertySheetW.
    PROPSHEETPAGEW Description() const;
    const std::shared_ptr<Page>& Model() const noexcept { return m_page; }
    /// Shows the page as it is now.
    void Refresh();

  protected:
    /// The controls are there: columns, ranges.
    virtual void Prepare() {}
    /// Puts what the page has into the controls. What they tell meanwhile is not the user's doing.
    virtual void ShowPage() = 0;
    /// The user did something with a control.
    virtual void OnControl(int id, unsigned code) = 0;
    /// The same of a list or a tree.
    virtual void OnListControl(const NMHDR&) {}

    SheetWindow& Owner() const noexcept { return m_sheet; }
    /// Asks the machine something for the page. A failure is the page's notice.
    std::stop_source Ask(Job job, TextId failure = TextId::NotDone);
    /// Reads the page again.
    void ReadAgain();

  private:
    bool OnInit() override;
    void OnCommand(int id, unsigned code) override;
    bool OnNotify(const NMHDR& told, LRESULT& result) override;
    void OnDestroy() override;

    SheetWindow& m_sheet;
    std::shared_ptr<Page> m_page;
    unsigned m_templateId;
    std::wstring m_title;
};

} // namespace quillet::pages
