// A dialog box that is a property sheet of one page.
#pragma once

#include "model/Sheet.h"
#include "window/Dialog.h"

#include <memory>

namespace quillet::pages {

class Application;

/// Shows a page, and applies it with OK in a client set of its own. It stays open until that is done.
class OnePageDialog : public Dialog {
  public:
    /// @param templateId its dialog, which has ID_NOTICE, IDOK and IDCANCEL
    OnePageDialog(Application& application, std::shared_ptr<Page> page, unsigned templateId,
                  std::wstring title);
    ~OnePageDialog() override;

    /// Runs it.
    /// @returns whether the page was applied
    bool Run(HWND owner);

  protected:
    /// As those of a page in a sheet.
    /// @{
    virtual void Prepare() {}
    virtual void ShowPage() = 0;
    virtual void OnControl(int id, unsigned code) = 0;
    /// @}
    /// What OK does.
    virtual void Accept();
    /// What Cancel does.
    virtual void Leave();
    /// Whether OK can be pressed.
    virtual bool CanAccept() const;

    Application& Program() const noexcept { return m_application; }
    std::stop_source Ask(Job job, Failed failed) const;
    /// It is done: closes the dialog, and offers to restart.
    void EndWell(bool restartNeeded) const;

  private:
    bool OnInit() override;
    void OnCommand(int id, unsigned code) override;
    void OnDestroy() override;
    void Refresh();
    void FocusOn(HWND control) const;

    Application& m_application;
    std::shared_ptr<Page> m_page;
    std::shared_ptr<Sheet> m_sheet;
    unsigned m_templateId;
    std::wstring m_title;
    bool m_isOpen = false;      ///< whether there has been something to enter
    bool m_isAccepting = false; ///< whether what OK does is under way
};

} // namespace quillet::pages
