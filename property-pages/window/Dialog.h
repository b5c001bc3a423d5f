// A dialog box and what its controls show: the one place where window messages become calls.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <quillet/client/Secret.h>

#include <functional>
#include <string>
#include <vector>

namespace quillet::pages {

/// A dialog, a page of a sheet or of a wizard. Its controls are known by their identifiers.
class Dialog {
  public:
    Dialog() = default;
    virtual ~Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    /// The window; null before it is made and after it is gone.
    HWND Handle() const noexcept { return m_window; }

    /// Makes a modeless dialog of a template.
    HWND Create(unsigned templateId, HWND owner);
    /// Shows a modal dialog, and returns what it was ended with.
    INT_PTR ShowModal(unsigned templateId, HWND owner);
    /// The template's procedure. The parameter of its creation is the Dialog, or a PROPSHEETPAGEW whose
    /// lParam is.
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM parameter);

  protected:
    /// The window is there. Returns whether Windows chooses where the focus is.
    virtual bool OnInit() { return true; }
    /// A control tells something (WM_COMMAND).
    virtual void OnCommand(int id, unsigned code);
    /// A control tells something (WM_NOTIFY). What is put into `result` is what it gets to hear.
    /// @returns whether that was meant for the dialog
    virtual bool OnNotify(const NMHDR& told, LRESULT& result);
    /// Other messages.
    /// @returns whether it was dealt with
    virtual bool OnMessage(UINT message, WPARAM wide, LPARAM parameter);
    /// The window goes.
    virtual void OnDestroy() {}

    HWND Item(int id) const noexcept { return GetDlgItem(m_window, id); }
    LRESULT Send(int id, UINT message, WPARAM wide = 0, LPARAM parameter = 0) const {
        return SendDlgItemMessageW(m_window, id, message, wide, parameter);
    }

    /// @name What controls show
    /// Setting what is there already moves no caret and draws nothing.
    /// @{
    std::wstring TextOf(int id) const;
    void SetText(int id, const std::wstring& text) const;
    bool IsTicked(int id) const;
    void Tick(int id, bool isTicked) const;
    /// What was typed into a password's field; no other copy of it stays behind.
    Secret SecretOf(int id) const;
    /// Overwrites and empties the field of a password.
    void Forget(int id) const;
    void Enable(int id, bool isEnabled) const;
    void Show(int id, bool isShown) const;
    /// The entries of a combo box, and the one that is chosen; -1 for none.
    void FillChoice(int id, const std::vector<std::wstring>& texts, int chosen) const;
    int Chosen(int id) const { return int(Send(id, CB_GETCURSEL)); }
    /// @}

    /// While it lives, what controls tell is not the user's doing.
    class Filling {
      public:
        explicit Filling(Dialog& dialog) noexcept : m_dialog(dialog), m_before(dialog.m_isFilling) {
            dialog.m_isFilling = true;
        }
        ~Filling() { m_dialog.m_isFilling = m_before; }
        Filling(const Filling&) = delete;
        Filling& operator=(const Filling&) = delete;

      private:
        Dialog& m_dialog;
        bool m_before;
    };
    bool IsFilling() const noexcept { return m_isFilling; }

  private:
    INT_PTR Handle(UINT message, WPARAM wide, LPARAM parameter);

    HWND m_window = nullptr;
    bool m_isFilling = false;
};

} // namespace quillet::pages
