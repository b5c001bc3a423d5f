// What all windows of the program share: the machine's worker, the way back to their thread, the message
// loop.
#pragma once

#include "model/MachineTree.h"
#include "model/Sheet.h"
#include "model/Worker.h"
#include "window/FileChoice.h"

#include <windows.h>

#include <memory>

namespace quillet::pages {

class SheetWindow;
class StartWindow;

/// The program on the thread of its windows.
class Application {
  public:
    explicit Application(Connect connect);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    Worker& Machine() noexcept { return m_worker; }
    /// The machine's objects as they were last read.
    const std::shared_ptr<MachineTree>& Tree() const noexcept { return m_tree; }
    /// Reads them again.
    void ReadTree();

    /// Shows the start window.
    void ShowStart();
    /// Shows the property sheet of an adapter, a team or a VLAN. There is one at a time.
    /// @param owner the window that waits for it; null: none
    void ShowSheet(const Node& node, HWND owner);
    /// Shows the sheet of the adapter of that name as soon as the machine has been read, and nothing else.
    void ShowAdapter(const std::wstring& name);

    /// Runs until the last window is closed.
    /// @returns the program's exit status
    int Run();

    /// Says that a restart is needed, and offers it.
    void OfferRestart(HWND owner) const;
    /// Asks whether to go on.
    static bool Ask(HWND owner, const std::wstring& question);
    /// Tells something that has no better place.
    static void Tell(HWND owner, const std::wstring& text);

    /// What restarts the machine.
    std::function<void()> restart;
    /// What asks for the name of a file that is to be read or written; empty: none was chosen.
    std::function<std::wstring(HWND owner, FileUse use)> chooseFile = ChooseFile;

  private:
    static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wide, LPARAM parameter);

    void Post(Answer answer) const;
    bool IsForDialog(MSG& message) const;
    void ShowAlone(const std::wstring& name);
    void CloseEnded();

    HWND m_receiver;
    std::shared_ptr<MachineTree> m_tree;
    std::unique_ptr<StartWindow> m_start;
    std::unique_ptr<SheetWindow> m_sheet;
    HHOOK m_filter;
    bool m_isAlone = false; ///< whether there is no start window, and the last sheet is the end
    Worker m_worker;        ///< last: it uses the receiver
};

} // namespace quillet::pages
