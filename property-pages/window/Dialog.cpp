// A dialog box and what its controls show.
#include "window/Dialog.h"

#include "model/LanguageResources.h"

#include <prsht.h>

namespace quillet::pages {

namespace {

/// The next control after one that takes keys, from the first on after the last; the dialog itself where none
/// does.
HWND NextOf(HWND item) {
    const auto takesKeys = [](HWND control) {
        constexpr LONG kWanted = WS_VISIBLE | WS_TABSTOP;
        return (GetWindowLongW(control, GWL_STYLE) & (kWanted | WS_DISABLED)) == kWanted;
    };
    for (HWND next = GetWindow(item, GW_HWNDNEXT); next != nullptr; next = GetWindow(next, GW_HWNDNEXT)) {
        if (takesKeys(next)) {
            return next;
        }
    }
    for (HWND next = GetWindow(item, GW_HWNDFIRST); next != item; next = GetWindow(next, GW_HWNDNEXT)) {
        if (takesKeys(next)) {
            return next;
        }
    }
    return GetParent(item);
}

} // namespace

HWND Dialog::Create(unsigned templateId, HWND owner) {
    const auto* shape = static_cast<const DLGTEMPLATE*>(FindResourceOf(RT_DIALOG, templateId));
    return CreateDialogIndirectParamW(GetModuleHandleW(nullptr), shape, owner, Procedure,
                                      reinterpret_cast<LPARAM>(this));
}

INT_PTR Dialog::ShowModal(unsigned templateId, HWND owner) {
    const auto* shape = static_cast<const DLGTEMPLATE*>(FindResourceOf(RT_DIALOG, templateId));
    return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), shape, owner, Procedure,
                                   reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK Dialog::Procedure(HWND window, UINT message, WPARAM wide, LPARAM parameter) {
    auto* dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (message == WM_INITDIALOG) {
        // A page of a sheet gets its description, any other dialog the parameter itself. Only the first
        // begins with its own size.
        const auto* page = reinterpret_cast<const PROPSHEETPAGEW*>(parameter);
        const bool isPage = (GetWindowLongW(window, GWL_STYLE) & WS_CHILD) != 0;
        dialog = reinterpret_cast<Dialog*>(isPage ? page->lParam : parameter);
        SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(dialog));
        dialog->m_window = window;
    }
    return dialog != nullptr ? dialog->Handle(message, wide, parameter) : FALSE;
}

INT_PTR Dialog::Handle(UINT message, WPARAM wide, LPARAM parameter) {
    const HWND window = m_window;
    switch (message) {
    case WM_INITDIALOG: {
        const Filling filling(*this);
        return OnInit() ? TRUE : FALSE;
    }
    case WM_COMMAND:
        if (!m_isFilling) {
            OnCommand(LOWORD(wide), HIWORD(wide));
        }
        return TRUE;
    case WM_NOTIFY: {
        LRESULT result = 0;
        if (!OnNotify(*reinterpret_cast<const NMHDR*>(parameter), result)) {
            return FALSE;
        }
        SetWindowLongPtrW(window, DWLP_MSGRESULT, result);
        return TRUE;
    }
    case WM_NCDESTROY:
        OnDestroy();
        m_window = nullptr;
        return FALSE;
    default:
        return OnMessage(message, wide, parameter) ? TRUE : FALSE;
    }
}

void Dialog::OnCommand(int id, unsigned) {
    if (id == IDCANCEL || id == IDOK) {
        EndDialog(m_window, id);
    }
}

bool Dialog::OnNotify(const NMHDR&, LRESULT&) {
    return false;
}

bool Dialog::OnMessage(UINT, WPARAM, LPARAM) {
    return false;
}

std::wstring Dialog::TextOf(int id) const {
    const HWND item = Item(id);
    std::wstring text(std::size_t(GetWindowTextLengthW(item)) + 1, L'\0');
    text.resize(std::size_t(GetWindowTextW(item, text.data(), int(text.size()))));
    return text;
}

void Dialog::SetText(int id, const std::wstring& text) const {
    if (TextOf(id) != text) {
        SetWindowTextW(Item(id), text.c_str());
    }
}

bool Dialog::IsTicked(int id) const {
    return IsDlgButtonChecked(m_window, id) == BST_CHECKED;
}

void Dialog::Tick(int id, bool isTicked) const {
    CheckDlgButton(m_window, id, isTicked ? BST_CHECKED : BST_UNCHECKED);
}

Secret Dialog::SecretOf(int id) const {
    std::wstring text = TextOf(id);
    Secret secret(text);
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    return secret;
}

void Dialog::Forget(int id) const {
    const int length = GetWindowTextLengthW(Item(id));
    if (length > 0) {
        SetWindowTextW(Item(id), std::wstring(std::size_t(length), L'*').c_str());
        SetWindowTextW(Item(id), L"");
    }
}

void Dialog::Enable(int id, bool isEnabled) const {
    const HWND item = Item(id);
    if (!isEnabled && GetFocus() == item) {
        // Who works with the keyboard must not be left on a control that takes no keys. The system's own
        // search for the next one may never end, where the others are disabled as well.
        SetFocus(NextOf(item));
    }
    EnableWindow(item, isEnabled ? TRUE : FALSE);
}

void Dialog::Show(int id, bool isShown) const {
    ShowWindow(Item(id), isShown ? SW_SHOW : SW_HIDE);
}

void Dialog::FillChoice(int id, const std::vector<std::wstring>& texts, int chosen) const {
    // One that is open would close, and one that the user reads out would be read out again.
    bool isSame = Send(id, CB_GETCOUNT) == LRESULT(texts.size());
    for (std::size_t number = 0; isSame && number < texts.size(); ++number) {
        std::wstring text(std::size_t(Send(id, CB_GETLBTEXTLEN, number)) + 1, L'\0');
        text.resize(std::size_t(Send(id, CB_GETLBTEXT, number, reinterpret_cast<LPARAM>(text.data()))));
        isSame = text == texts[number];
    }
    if (!isSame) {
        Send(id, CB_RESETCONTENT);
        for (const std::wstring& text : texts) {
            Send(id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
        }
    }
    if (Chosen(id) != chosen) {
        Send(id, CB_SETCURSEL, WPARAM(chosen));
    }
}

} // namespace quillet::pages
