// The window of the page "Advanced".
#include "window/SettingsView.h"

#include "resources/Ids.h"
#include "window/Application.h"
#include "window/SheetWindow.h"

#include <algorithm>
#include <utility>

namespace quillet::pages {

SettingsView::SettingsView(SheetWindow& sheet, std::shared_ptr<SettingsPage> page, TextId title)
    : PageView(sheet, page, ID_PAGE_SETTINGS, title), m_page(std::move(page)) {}

void SettingsView::Prepare() {
    m_list.Attach(Item(ID_SETTINGS_LIST), {{Say(TextId::ColumnSetting), 56}, {Say(TextId::ColumnValue), 44}});
    m_selection.Attach(Item(ID_SETTINGS_SELECTION), {{Say(TextId::ColumnValue), 100}}, LVS_EX_CHECKBOXES);
}

void SettingsView::ShowPage() {
    std::vector<std::vector<std::wstring>> rows;
    for (const Setting& setting : m_page->Settings()) {
        rows.push_back(
            {(m_page->IsChanged(setting) ? L"* " : L"") + setting.description, m_page->ValueText(setting)});
    }
    m_list.Fill(rows);
    if (m_page->Chosen() != nullptr) {
        m_list.Choose(int(m_page->ChosenIndex()));
    }
    ShowProfile();
    ShowEditor();
}

void SettingsView::ShowProfile() {
    const Setting* profile = m_page->Profile();
    if (profile != nullptr) {
        ShowChoices(ID_SETTINGS_PROFILE, std::get<ChoiceValue>(profile->value));
    }
    Dialog::Show(ID_SETTINGS_PROFILE_ALL, m_page->HasHyperVProfile());
    Enable(ID_SETTINGS_PROFILE_ALL, m_page->Replacement() != nullptr);
    if (m_page->IsRead()) {
        MakeRoom(profile != nullptr);
    }
}

void SettingsView::MakeRoom(bool isForProfile) {
    Dialog::Show(ID_SETTINGS_PROFILE_LABEL, isForProfile);
    Dialog::Show(ID_SETTINGS_PROFILE, isForProfile);
    if (std::exchange(m_hasRoom, isForProfile) == isForProfile) {
        return;
    }
    RECT shift{0, 0, 0, 15};
    MapDialogRect(Handle(), &shift);
    const int down = isForProfile ? int(shift.bottom) : -int(shift.bottom);
    for (const int id : {ID_SETTINGS_LIST_LABEL, ID_SETTINGS_LIST}) {
        RECT place{};
        GetWindowRect(Item(id), &place);
        MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&place), 2);
        const bool isList = id == ID_SETTINGS_LIST; // it keeps its foot where it is
        SetWindowPos(Item(id), nullptr, place.left, place.top + down, place.right - place.left,
                     place.bottom - place.top - (isList ? down : 0), SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

void SettingsView::ShowEditor() {
    const Setting* chosen = m_page->Chosen();
    const Editor editor = m_page->ChosenEditor();
    SetText(ID_SETTINGS_NAME, chosen != nullptr ? chosen->description : std::wstring());
    const bool isText = editor == Editor::Number || editor == Editor::Text || editor == Editor::None;
    Dialog::Show(ID_SETTINGS_TEXT, isText && chosen != nullptr);
    Send(ID_SETTINGS_TEXT, EM_SETREADONLY, editor == Editor::None ? TRUE : FALSE);
    Dialog::Show(ID_SETTINGS_CHOICE, editor == Editor::Choice);
    Dialog::Show(ID_SETTINGS_SLIDER, editor == Editor::Slider);
    Dialog::Show(ID_SETTINGS_FIRST, editor == Editor::Slider);
    Dialog::Show(ID_SETTINGS_LAST, editor == Editor::Slider);
    Dialog::Show(ID_SETTINGS_SELECTION, editor == Editor::Selection);
    Dialog::Show(ID_SETTINGS_LINES, editor == Editor::Lines);
    if (isText) {
        SetText(ID_SETTINGS_TEXT, m_page->TypedText());
    } else if (editor == Editor::Lines) {
        SetText(ID_SETTINGS_LINES, m_page->TypedText());
    } else if (editor == Editor::Choice) {
        ShowChoices(ID_SETTINGS_CHOICE, std::get<ChoiceValue>(chosen->value));
    } else if (editor == Editor::Slider) {
        ShowSlider(std::get<SliderValue>(chosen->value));
    } else {
        ShowSelection(std::get<SelectionValue>(chosen->value));
    }
    SetText(ID_SETTINGS_HELP, m_page->Help());
    Enable(ID_SETTINGS_DEFAULT,
           editor != Editor::None && (m_page->IsChanged(*chosen) || !SettingsPage::IsStandard(*chosen)));
    Enable(ID_SETTINGS_DEFAULT_ALL, chosen != nullptr);
}

void SettingsView::ShowChoices(int id, const ChoiceValue& value) const {
    std::vector<std::wstring> texts;
    int chosen = -1;
    for (const Choice& choice : value.choices) {
        if (choice.value == std::to_wstring(value.current)) {
            chosen = int(texts.size());
        }
        texts.push_back(choice.text.empty() ? choice.value : choice.text);
    }
    FillChoice(id, texts, chosen);
}

void SettingsView::ShowSlider(const SliderValue& value) const {
    SetText(ID_SETTINGS_FIRST, value.firstLabel);
    SetText(ID_SETTINGS_LAST, value.lastLabel);
    const auto found = std::ranges::find(value.possible, value.current);
    Send(ID_SETTINGS_SLIDER, TBM_SETRANGE, TRUE,
         MAKELPARAM(0, value.possible.empty() ? 0 : value.possible.size() - 1));
    Send(ID_SETTINGS_SLIDER, TBM_SETPOS, TRUE,
         found == value.possible.end() ? 0 : found - value.possible.begin());
}

void SettingsView::ShowSelection(const SelectionValue& value) {
    std::vector<std::vector<std::wstring>> rows;
    for (const Choice& choice : value.choices) {
        rows.push_back({choice.text.empty() ? choice.value : choice.text});
    }
    m_selection.Fill(rows);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const long bit = std::wcstol(value.choices[row].value.c_str(), nullptr, 10);
        m_selection.Tick(int(row), bit != 0 && (value.current & bit) == bit);
    }
}

void SettingsView::OnControl(int id, unsigned code) {
    if ((id == ID_SETTINGS_TEXT || id == ID_SETTINGS_LINES) && code == EN_CHANGE) {
        m_page->Type(TextOf(id));
    } else if (id == ID_SETTINGS_CHOICE && code == CBN_SELCHANGE) {
        m_page->Pick(std::size_t(Chosen(id)));
    } else if (id == ID_SETTINGS_PROFILE && code == CBN_SELCHANGE) {
        m_page->PickProfile(std::size_t(Chosen(id)));
    } else if (id == ID_SETTINGS_PROFILE_ALL && code == BN_CLICKED) {
        if (Application::Ask(Owner().Handle(), m_page->ReplacementQuestion())) {
            Ask(m_page->ReplacingEverywhere());
        }
    } else if (id == ID_SETTINGS_DEFAULT && code == BN_CLICKED) {
        m_page->Default();
    } else if (id == ID_SETTINGS_DEFAULT_ALL && code == BN_CLICKED) {
        m_page->DefaultAll();
    }
}

void SettingsView::OnListControl(const NMHDR& told) {
    if (told.idFrom == ID_SETTINGS_LIST && IsNewChoice(told)) {
        m_page->Choose(std::size_t(reinterpret_cast<const NMLISTVIEW&>(told).iItem));
    } else if (told.idFrom == ID_SETTINGS_SELECTION && IsNewTick(told)) {
        const int row = reinterpret_cast<const NMLISTVIEW&>(told).iItem;
        m_page->Tick(std::size_t(row), m_selection.IsTicked(row));
    }
}

bool SettingsView::OnMessage(UINT message, WPARAM, LPARAM parameter) {
    if (message == WM_HSCROLL && reinterpret_cast<HWND>(parameter) == Item(ID_SETTINGS_SLIDER)) {
        m_page->Pick(std::size_t(Send(ID_SETTINGS_SLIDER, TBM_GETPOS)));
        return true;
    }
    return false;
}

} // namespace quillet::pages
