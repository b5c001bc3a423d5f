// The New Team wizard.
#pragma once

#include "model/NewTeamPage.h"
#include "model/Sheet.h"

#include <windows.h>

#include <memory>
#include <vector>

namespace quillet::pages {

class Application;
class WizardStep;

/// A wizard of four pages. None is left before the machine has said that what it asks for can be done.
class NewTeamWizard {
  public:
    NewTeamWizard(Application& application, std::shared_ptr<NewTeamPage> page);
    ~NewTeamWizard();
    NewTeamWizard(const NewTeamWizard&) = delete;
    NewTeamWizard& operator=(const NewTeamWizard&) = delete;

    /// Runs it.
    /// @returns whether a team was made
    bool Run(HWND owner);

    NewTeamPage& Model() const noexcept { return *m_page; }
    /// Whether the user must wait.
    bool IsBusy() const noexcept { return m_page->IsBusy() || m_sheet->IsBusy(); }
    bool IsDone() const noexcept { return m_isDone; }
    /// Checks a step, and turns the page when it is good.
    void Leave(NewTeamPage::Step step, HWND wizard);
    /// Makes the team, and ends the wizard when it is made.
    void Finish(HWND wizard);
    /// A page came to the front.
    void NoteTurn() { m_page->SetNotice({}); }

  private:
    void Refresh() const;

    Application& m_application;
    std::shared_ptr<NewTeamPage> m_page;
    std::shared_ptr<Sheet> m_sheet;
    std::vector<std::unique_ptr<WizardStep>> m_steps;
    bool m_isDone = false;
    bool m_isRestartNeeded = false;
};

} // namespace quillet::pages
