// The program with a simulated machine, and a hand on its mouse and keyboard.
#pragma once

#include "model/Strings.h"
#include "window/Application.h"

#include <quillet-simulator/Machine.h>

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace quillet::tests {

/// The sheet's own button.
inline constexpr int kApply = 0x3021;

/// The program runs on a thread of its own; the test looks at its windows and works them, as a user would, by
/// their controls' identifiers. Whatever takes longer than it may is a failure, and ends the test.
class Desk {
  public:
    /// Opens the start window.
    explicit Desk(std::shared_ptr<simulator::Machine> machine,
                  pages::Language language = pages::Language::English);
    /// Closes all windows.
    ~Desk();
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    simulator::Machine& Machine() const noexcept { return *m_machine; }
    pages::Application& Program() const noexcept { return *m_application; }
    /// How often the machine would have been restarted.
    int Restarts() const noexcept { return m_restarts; }

    /// Waits until the machine has answered all that it was asked, and the windows show it.
    void Settle() const;
    /// Runs something on the windows' thread, and waits for it.
    void OnWindows(const std::function<void()>& work) const;

    /// @name Windows
    /// @{
    HWND Start() const; ///< the start window
    HWND Sheet() const; ///< the property sheet, or the wizard
    HWND Page() const;  ///< its page that is in front
    /// Waits for a dialog of the program other than those, such as a message box. With a text, one that shows
    /// it.
    HWND Box(const std::wstring& text = {}) const;
    /// Opens the sheet of the object whose line in the tree begins so.
    void Open(const std::wstring& line) const;
    /// Brings the page with this tab to the front.
    void Turn(const std::wstring& tab) const;
    /// The texts of the tabs.
    std::vector<std::wstring> Tabs() const;
    /// The lines of the start window's tree, indented.
    std::vector<std::wstring> Tree() const;
    /// Chooses the tree's line that begins so.
    void ChooseLine(const std::wstring& line) const;
    /// Reads the page in front again.
    void ReadPageAgain() const;
    /// Closes the sheet with Cancel.
    void CloseSheet() const;
    /// Answers all boxes that are open with No or Cancel.
    void CloseBoxes() const;
    /// Waits until the sheet or box is gone.
    void AwaitGone(HWND window) const;
    /// @}

    /// @name Controls
    /// @{
    static std::wstring TextOf(HWND window, int id);
    static bool IsEnabled(HWND window, int id);
    static bool IsShown(HWND window, int id);
    static bool IsTicked(HWND window, int id);
    /// Presses a button, and waits for what comes of it; Click() does not, as where a box follows.
    void Press(HWND window, int id) const;
    void Click(HWND window, int id) const;
    /// Replaces what stands in an edit control, key by key.
    void Type(HWND window, int id, const std::wstring& text) const;
    /// Chooses the entry of a combo box that begins so.
    void Pick(HWND window, int id, const std::wstring& text) const;
    /// The rows of a list view, cells separated by " | ", a tick as "[x] ".
    std::vector<std::wstring> Rows(HWND window, int id) const;
    /// Chooses the row of a list view that begins so.
    void ChooseRow(HWND window, int id, const std::wstring& text) const;
    /// Ticks it, or takes the tick away.
    void TickRow(HWND window, int id, const std::wstring& text, bool isTicked) const;
    /// @}

    /// Presses a key of the keyboard, in whatever window has the focus; with another one held down.
    void Key(WORD key, WORD held = 0) const;

    /// What a picture would show to be wrong: texts that do not fit into their controls, controls that lie on
    /// each other or stick out of their window.
    std::vector<std::wstring> Flaws(HWND window) const;
    /// Saves a picture of a window in the folder QUILLET_PICTURES, if that is set.
    void Photograph(HWND window, const std::wstring& name) const;

  private:
    HWND Await(const std::function<HWND()>& find, const wchar_t* what) const;
    std::vector<HWND> Windows() const;
    bool IsBox(HWND window) const;

    std::shared_ptr<simulator::Machine> m_machine;
    std::unique_ptr<pages::Application> m_application;
    DWORD m_threadId = 0;
    int m_restarts = 0;
    std::thread m_thread;
};

} // namespace quillet::tests
