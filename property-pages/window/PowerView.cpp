// The window of the page "Power".
#include "window/PowerView.h"

#include "resources/Ids.h"

#include <algorithm>

namespace quillet::pages {

PowerView::PowerView(SheetWindow& sheet, std::shared_ptr<PowerPage> page)
    : PageView(sheet, page, ID_PAGE_POWER, TextId::PagePower), m_page(std::move(page)) {}

void PowerView::Prepare() {
    int id = ID_POWER_OPTIONS;
    for (const auto& option : kPowerOptions) {
        SetText(id++, Say(option.label));
    }
    id = ID_WAKE_OPTIONS;
    for (const auto& option : kWakeOptions) {
        SetText(id++, Say(option.label));
    }
}

void PowerView::ShowPage() {
    std::vector<std::wstring> modes;
    for (const std::uint32_t mode : m_page->Modes()) {
        modes.push_back(Say(TextId::PowerMode, {std::to_wstring(mode)}));
    }
    const auto known = m_page->Modes();
    const auto mode = std::ranges::find(known, m_page->Power().mode);
    FillChoice(ID_POWER_MODE, modes, m_page->HasModes() ? int(mode - known.begin()) : -1);
    Enable(ID_POWER_MODE, m_page->HasModes());
    const auto show = [this](int id, const std::optional<bool>& value) {
        Enable(id, value.has_value());
        Tick(id, value.value_or(false));
    };
    int id = ID_POWER_OPTIONS;
    for (const auto& option : kPowerOptions) {
        show(id++, m_page->Power().*option.value);
    }
    id = ID_WAKE_OPTIONS;
    for (const auto& option : kWakeOptions) {
        show(id++, m_page->Wake().*option.value);
    }
    SetText(ID_POWER_WHY, m_page->WhyNotAll());
    Enable(ID_POWER_REAPPLY, m_page->HasModes());
}

void PowerView::OnControl(int id, unsigned code) {
    const auto power = std::size_t(id - ID_POWER_OPTIONS);
    const auto wake = std::size_t(id - ID_WAKE_OPTIONS);
    if (id == ID_POWER_MODE && code == CBN_SELCHANGE && Chosen(id) >= 0) {
        m_page->SetMode(m_page->Modes().at(std::size_t(Chosen(id))));
    } else if (code != BN_CLICKED) {
        return;
    } else if (power < kPowerOptions.size()) {
        m_page->Set(kPowerOptions[power].value, IsTicked(id));
    } else if (wake < kWakeOptions.size()) {
        m_page->Set(kWakeOptions[wake].value, IsTicked(id));
    } else if (id == ID_POWER_REAPPLY) {
        Ask(m_page->Reapplying());
    }
}

} // namespace quillet::pages
