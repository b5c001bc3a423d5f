// The window of the page "Boot".
#include "window/BootView.h"

#include "resources/Ids.h"
#include "window/Application.h"
#include "window/SheetWindow.h"

#include <algorithm>

namespace quillet::pages {

BootView::BootView(SheetWindow& sheet, std::shared_ptr<BootPage> page)
    : PageView(sheet, page, ID_PAGE_BOOT, TextId::PageBoot), m_page(std::move(page)) {}

void BootView::Prepare() {
    m_facts.Attach(Item(ID_BOOT_FACTS), {{Say(TextId::ColumnProperty), 60}, {Say(TextId::ColumnValue), 40}});
    m_images.Attach(Item(ID_BOOT_IMAGES), {{Say(TextId::ColumnImage), 60}, {Say(TextId::ColumnVersion), 40}},
                    LVS_EX_CHECKBOXES);
    SetText(ID_BOOT_PLACE_LABEL, Say(TextId::BootPlace));
}

void BootView::ShowPage() {
    std::vector<std::vector<std::wstring>> rows;
    for (const Fact& fact : m_page->Facts()) {
        rows.push_back({fact.name, fact.value});
    }
    m_facts.Fill(rows);
    ShowPlace();
    ShowImages();
}

void BootView::ShowPlace() {
    const std::vector<IscsiStatus> places = m_page->Places();
    std::vector<std::wstring> words;
    for (const IscsiStatus place : places) {
        words.push_back(BootPage::PlaceWords(place));
    }
    const auto chosen = std::ranges::find(places, m_page->Place()) - places.begin();
    FillChoice(ID_BOOT_PLACE, words, m_page->HasIscsi() ? int(chosen) : -1);
    Enable(ID_BOOT_PLACE, m_page->HasIscsi());
    SetText(ID_BOOT_WHY, m_page->WhyNoIscsi());
}

void BootView::ShowImages() {
    SetText(ID_BOOT_FILE, m_page->File());
    std::vector<std::vector<std::wstring>> rows;
    for (const OfferedImage& offered : m_page->Images()) {
        rows.push_back({offered.image.type, offered.image.version});
    }
    m_images.Fill(rows);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        m_images.Tick(int(row), m_page->Images()[row].isWanted);
    }
    const bool isIdle = m_page->HasAgent() && !m_page->IsWriting();
    Enable(ID_BOOT_CHOOSE, isIdle);
    Enable(ID_BOOT_IMAGES, isIdle);
    Enable(ID_BOOT_CHECK, m_page->CanWrite());
    Enable(ID_BOOT_WRITE, m_page->CanWrite());
    Enable(ID_BOOT_SAVE, isIdle);
}

void BootView::OnControl(int id, unsigned code) {
    if (id == ID_BOOT_PLACE && code == CBN_SELCHANGE && Chosen(id) >= 0) {
        m_page->SetPlace(m_page->Places().at(std::size_t(Chosen(id))));
    } else if (code != BN_CLICKED) {
        return;
    } else if (id == ID_BOOT_CHOOSE) {
        Open();
    } else if (id == ID_BOOT_CHECK) {
        m_page->SetNotice(Say(TextId::FlashChecking));
        Ask(m_page->Verifying());
    } else if (id == ID_BOOT_WRITE) {
        Write();
    } else if (id == ID_BOOT_SAVE) {
        Save();
    }
}

void BootView::OnListControl(const NMHDR& told) {
    if (told.idFrom == ID_BOOT_IMAGES && IsNewTick(told)) {
        const int row = reinterpret_cast<const NMLISTVIEW&>(told).iItem;
        m_page->Want(std::size_t(row), m_images.IsTicked(row));
    }
}

void BootView::Open() {
    const std::wstring file = Owner().Program().chooseFile(Owner().Handle(), FileUse::Read);
    if (!file.empty()) {
        m_page->SetNotice(Say(TextId::Reading));
        Ask(m_page->Opening(file));
    }
}

void BootView::Write() {
    if (Application::Ask(Owner().Handle(), m_page->Consequence())) {
        Owner().Machine().Ask(m_page, m_page->Writing(),
                              [page = m_page.get()](const std::wstring& reason) { page->Fail(reason); });
    }
}

void BootView::Save() {
    const std::wstring file = Owner().Program().chooseFile(Owner().Handle(), FileUse::Write);
    if (!file.empty()) {
        m_page->SetNotice(Say(TextId::Reading));
        Ask(m_page->Saving(file));
    }
}

} // namespace quillet::pages
