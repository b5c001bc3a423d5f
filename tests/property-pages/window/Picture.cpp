// What a window looks like.
#include "window/Picture.h"

#include "resources/Ids.h"

#include <objidl.h>
#include <propidl.h>
#include <gdiplus.h>
#include <commctrl.h>

#include <cwctype>
#include <map>
#include <stdexcept>

namespace quillet::tests {

namespace {

struct Shown {
    HWND window;
    std::wstring kind;
    std::wstring text;
    RECT place;
    LONG style;
};

std::wstring Told(HWND window, int (*ask)(HWND, wchar_t*, int)) {
    std::wstring text(1024, L'\0');
    text.resize(std::size_t(ask(window, text.data(), int(text.size()))));
    return text;
}

int AskClass(HWND window, wchar_t* text, int size) {
    return GetClassNameW(window, text, size);
}

int AskText(HWND window, wchar_t* text, int size) {
    return GetWindowTextW(window, text, size);
}

std::vector<Shown> ShownControls(HWND window) {
    std::vector<Shown> shown;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        const LONG style = GetWindowLongW(child, GWL_STYLE);
        if ((style & WS_VISIBLE) != 0) {
            RECT place{};
            GetWindowRect(child, &place);
            shown.push_back({child, Told(child, AskClass), Told(child, AskText), place, style});
        }
    }
    return shown;
}

SIZE SizeOfText(const Shown& control, int width) {
    const HDC context = GetDC(control.window);
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageW(control.window, WM_GETFONT, 0, 0));
    const HGDIOBJ before = SelectObject(context, font);
    RECT size{0, 0, width, 0};
    const bool isPlain = control.kind == L"Static" && (control.style & SS_NOPREFIX) != 0;
    DrawTextW(context, control.text.c_str(), -1, &size,
              DT_CALCRECT | (isPlain ? DT_NOPREFIX : 0) | (width > 0 ? DT_WORDBREAK : 0));
    SelectObject(context, before);
    ReleaseDC(control.window, context);
    return {size.right, size.bottom};
}

/// What a control has for its text.
SIZE RoomForText(const Shown& control) {
    SIZE room{control.place.right - control.place.left, control.place.bottom - control.place.top};
    const LONG kind = control.style & BS_TYPEMASK;
    if (control.kind == L"Button" && kind == BS_GROUPBOX) {
        room.cx -= 16;
    } else if (control.kind == L"Button" && (kind == BS_AUTOCHECKBOX || kind == BS_AUTORADIOBUTTON)) {
        room.cx -= GetSystemMetrics(SM_CXMENUCHECK) + 4;
    } else if (control.kind == L"Button") {
        room.cx -= 6;
    }
    return room;
}

bool Cuts(const Shown& control) {
    const bool canCut =
        control.kind == L"Button" || (control.kind == L"Static" && (control.style & SS_ELLIPSISMASK) == 0);
    if (!canCut || control.text.empty()) {
        return false;
    }
    const SIZE room = RoomForText(control);
    const bool breaks = control.kind == L"Static" || (control.style & BS_MULTILINE) != 0;
    const SIZE needed = SizeOfText(control, breaks ? int(room.cx) : 0);
    return needed.cx > room.cx || (control.kind == L"Static" && needed.cy > room.cy);
}

/// A frame lies around others, and a spin control on the edge of its own.
bool MayLieOnOthers(const Shown& control) {
    return (control.kind == L"Button" && (control.style & BS_TYPEMASK) == BS_GROUPBOX) ||
           control.kind == UPDOWN_CLASSW;
}

std::wstring NameOf(const Shown& control) {
    return control.kind + L" " + std::to_wstring(GetDlgCtrlID(control.window)) + L" \"" + control.text +
           L"\"";
}

/// Whether a screen reader finds no name for a control: its own text, or that of the label before it.
bool IsNameless(const std::vector<Shown>& controls, std::size_t number) {
    const Shown& control = controls[number];
    const bool hasOwnText = control.kind == L"Button" || control.kind == L"Static" ||
                            control.kind == UPDOWN_CLASSW || control.kind == PROGRESS_CLASSW;
    if (GetDlgCtrlID(control.window) == ID_NOTICE ||
        (hasOwnText && (!control.text.empty() || control.kind != L"Button"))) {
        return false;
    }
    return number == 0 || controls[number - 1].kind != L"Static" || controls[number - 1].text.empty();
}

/// The letter that is pressed with Alt to get to a control; 0 where there is none.
wchar_t LetterOf(const Shown& control) {
    const bool isPlain = control.kind == L"Static" && (control.style & SS_NOPREFIX) != 0;
    if ((control.kind != L"Button" && control.kind != L"Static") || isPlain) {
        return 0;
    }
    for (std::size_t place = 0; place + 1 < control.text.size(); ++place) {
        if (control.text[place] == L'&' && control.text[++place] != L'&') {
            return wchar_t(std::towlower(control.text[place]));
        }
    }
    return 0;
}

/// What whoever works without a mouse or without seeing would stumble over.
std::vector<std::wstring> Obstacles(const std::vector<Shown>& controls) {
    std::vector<std::wstring> obstacles;
    std::map<wchar_t, std::wstring> letters;
    for (std::size_t number = 0; number < controls.size(); ++number) {
        if (IsNameless(controls, number)) {
            obstacles.push_back(NameOf(controls[number]) + L" has no name");
        }
        const wchar_t letter = LetterOf(controls[number]);
        if (letter != 0 && !letters.emplace(letter, NameOf(controls[number])).second) {
            obstacles.push_back(NameOf(controls[number]) + L" has the letter of " + letters[letter]);
        }
    }
    return obstacles;
}

} // namespace

std::vector<std::wstring> FlawsOf(HWND window) {
    const std::vector<Shown> controls = ShownControls(window);
    std::vector<std::wstring> flaws = Obstacles(controls);
    RECT inside{};
    GetClientRect(window, &inside);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&inside), 2);
    for (auto control = controls.begin(); control != controls.end(); ++control) {
        if (Cuts(*control)) {
            flaws.push_back(NameOf(*control) + L" is cut");
        }
        RECT common{};
        // The list of a combo box is not open.
        if (control->kind != L"ComboBox" && (IntersectRect(&common, &control->place, &inside) == FALSE ||
                                             EqualRect(&common, &control->place) == FALSE)) {
            flaws.push_back(NameOf(*control) + L" sticks out");
        }
        for (auto other = control + 1; other != controls.end(); ++other) {
            if (!MayLieOnOthers(*control) && !MayLieOnOthers(*other) &&
                IntersectRect(&common, &control->place, &other->place) != FALSE) {
                flaws.push_back(NameOf(*control) + L" lies on " + NameOf(*other));
            }
        }
    }
    return flaws;
}

void SavePicture(HWND window, const std::wstring& file) {
    RECT place{};
    GetWindowRect(window, &place);
    const int width = int(place.right - place.left);
    const int height = int(place.bottom - place.top);
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
    SelectObject(memory, before);
    const Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    // The encoder for PNG.
    const CLSID png{0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
    const bool isSaved = Gdiplus::Bitmap(bitmap, nullptr).Save(file.c_str(), &png, nullptr) == Gdiplus::Ok;
    Gdiplus::GdiplusShutdown(token);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    if (!isSaved) {
        throw std::runtime_error("a picture cannot be written");
    }
}

} // namespace quillet::tests
