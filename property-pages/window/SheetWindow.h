// The property sheet of one object.
#pragma once

#include "model/MachineTree.h"
#include "model/Sheet.h"

#include <windows.h>

#include <memory>
#include <vector>

namespace quillet::pages {

class Application;
class PageView;

/// A property sheet. Its windows never wait for the machine: OK and Apply begin the change, and the sheet
/// goes on or closes when it is made.
class SheetWindow {
  public:
    /// @param owner the window that waits for it; null: none
    SheetWindow(Application& application, const Node& node, HWND owner);
    ~SheetWindow();
    SheetWindow(const SheetWindow&) = delete;
    SheetWindow& operator=(const SheetWindow&) = delete;

    Sheet& Model() const noexcept { return *m_model; }
    Worker& Machine() const noexcept;
    Application& Program() const noexcept { return m_application; }
    HWND Handle() const noexcept { return m_window; }

    bool Takes(MSG& message) const;
    /// Whether the user closed it.
    bool IsEnded() const;

    /// A page is not any more as it was shown.
    void NoteChange(const PageView& view);
    /// OK or Apply was pressed.
    /// @returns what the sheet is told: whether it may close
    LRESULT OnApply(bool isOk);

  private:
    void Activate(const Page& page) const;
    void EnableButtons(bool areEnabled) const;
    void OnApplied(const Applied& applied, bool isOk);

    Application& m_application;
    HWND m_owner;
    HWND m_window = nullptr;
    std::vector<std::unique_ptr<PageView>> m_views;
    std::shared_ptr<Sheet> m_model;
    bool m_isEnded = false;
};

} // namespace quillet::pages
