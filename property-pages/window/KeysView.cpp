// The window of the page "Keys".
#include "window/KeysView.h"

#include "resources/Ids.h"

namespace quillet::pages {

namespace {

struct TextField {
    int id;
    KeysPage::Text text;
};
constexpr TextField kTexts[] = {
    {ID_KEYS_OUT_FIRST, KeysPage::OutFirst},     {ID_KEYS_OUT_SECOND, KeysPage::OutSecond},
    {ID_KEYS_OUT_CHANNEL, KeysPage::OutChannel}, {ID_KEYS_IN_FIRST, KeysPage::InFirst},
    {ID_KEYS_IN_SECOND, KeysPage::InSecond},     {ID_KEYS_IN_CHANNEL, KeysPage::InChannel}};

struct FlagBox {
    int id;
    KeysPage::Flag flag;
};
constexpr FlagBox kFlags[] = {{ID_KEYS_INCLUDE, KeysPage::IncludeChannel},
                              {ID_KEYS_ENCRYPTION, KeysPage::Encryption},
                              {ID_KEYS_RANDOM_MAC, KeysPage::RandomMac}};

struct KeyField {
    int id;
    int words;
    KeysPage::Key key;
};
constexpr KeyField kKeys[] = {{ID_KEYS_OUT_KEY, ID_KEYS_OUT_WORDS, KeysPage::OutKey},
                              {ID_KEYS_IN_KEY, ID_KEYS_IN_WORDS, KeysPage::InKey},
                              {ID_KEYS_MASTER, ID_KEYS_MASTER_WORDS, KeysPage::Master}};

} // namespace

KeysView::KeysView(SheetWindow& sheet, std::shared_ptr<KeysPage> page)
    : PageView(sheet, page, ID_PAGE_KEYS, TextId::PageKeys), m_page(std::move(page)) {}

void KeysView::ShowPage() {
    const bool isThere = m_page->IsThere();
    for (const TextField& field : kTexts) {
        SetText(field.id, m_page->TextOf(field.text));
        Enable(field.id, isThere);
    }
    for (const FlagBox& box : kFlags) {
        Tick(box.id, m_page->FlagOf(box.flag));
        Enable(box.id, isThere);
    }
    for (const KeyField& field : kKeys) {
        if (!m_page->IsTyped(field.key)) {
            Forget(field.id);
        }
        SetText(field.words, m_page->KeyWords(field.key));
        Enable(field.id, isThere);
    }
    SetText(ID_KEYS_WHY, m_page->WhyNot());
    Dialog::Show(ID_KEYS_WHY, !isThere);
    Dialog::Show(ID_KEYS_RELOAD, isThere);
}

void KeysView::OnControl(int id, unsigned code) {
    if (id == ID_KEYS_RELOAD && code == BN_CLICKED) {
        m_page->SetReload(IsTicked(id));
    }
    for (const TextField& field : kTexts) {
        if (id == field.id && code == EN_CHANGE) {
            m_page->Type(field.text, TextOf(id));
        }
    }
    for (const FlagBox& box : kFlags) {
        if (id == box.id && code == BN_CLICKED) {
            m_page->Tick(box.flag, IsTicked(id));
        }
    }
    for (const KeyField& field : kKeys) {
        if (id == field.id && code == EN_CHANGE) {
            m_page->Type(field.key, SecretOf(id));
        }
    }
}

bool KeysView::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) {
        const Filling filling(*this);
        for (const KeyField& field : kKeys) {
            Forget(field.id);
        }
    }
    return false;
}

} // namespace quillet::pages
