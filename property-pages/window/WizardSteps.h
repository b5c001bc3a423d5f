// The pages of the New Team wizard.
#pragma once

#include "model/NewTeamPage.h"
#include "window/Dialog.h"
#include "window/ListView.h"
#include "window/NewTeamWizard.h"

#include <prsht.h>

namespace quillet::pages {

/// A page of the wizard.
class WizardStep : public Dialog {
  public:
    WizardStep(NewTeamWizard& wizard, NewTeamPage::Step step, unsigned templateId, TextId title,
               TextId subtitle);

    /// For PropertySheetW.
    PROPSHEETPAGEW Description() const;
    /// Shows the model as it is now.
    void Refresh();

  protected:
    virtual void Prepare() {}
    virtual void ShowStep() = 0;

    NewTeamPage& Model() const noexcept { return m_wizard.Model(); }

  private:
    bool OnInit() override;
    bool OnNotify(const NMHDR& told, LRESULT& result) override;
    virtual void OnListControl(const NMHDR&) {}

    bool IsInFront() const;
    void ShowButtons() const;

    NewTeamWizard& m_wizard;
    NewTeamPage::Step m_step;
    unsigned m_templateId;
    std::wstring m_caption;
    std::wstring m_title;
    std::wstring m_subtitle;
};

/// @name The four, in their order
/// @{
class NameStep : public WizardStep {
  public:
    explicit NameStep(NewTeamWizard& wizard);

  private:
    void ShowStep() override;
    void OnCommand(int id, unsigned code) override;

    bool m_isProposed = false; ///< whether the machine has proposed how the name begins
};

class MembersStep : public WizardStep {
  public:
    explicit MembersStep(NewTeamWizard& wizard);

  private:
    void Prepare() override;
    void ShowStep() override;
    void OnCommand(int id, unsigned code) override;
    void OnListControl(const NMHDR& told) override;

    ListView m_list;
};

class ModeStep : public WizardStep {
  public:
    explicit ModeStep(NewTeamWizard& wizard);

  private:
    void ShowStep() override;
    void OnCommand(int id, unsigned code) override;
};

class SummaryStep : public WizardStep {
  public:
    explicit SummaryStep(NewTeamWizard& wizard);

  private:
    void ShowStep() override;
    void OnCommand(int, unsigned) override {}
};
/// @}

} // namespace quillet::pages
