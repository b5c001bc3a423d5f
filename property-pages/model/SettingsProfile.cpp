// The performance profile among the settings.
#include "model/SettingsPage.h"

namespace quillet::pages {

namespace {

constexpr const wchar_t* kKeyword = L"PerformanceProfile";

bool IsHyperV(const ChoiceValue& value) noexcept {
    return value.current == static_cast<std::int32_t>(quillet::Profile::HyperV);
}

} // namespace

const Setting* SettingsPage::Profile() const noexcept {
    const Setting* profile = FindSetting(m_wanted, kKeyword);
    const auto* value = profile != nullptr ? std::get_if<ChoiceValue>(&profile->value) : nullptr;
    // An adapter that has none may say so by a first value of 0.
    const bool isOffered = value != nullptr && profile->writable && !value->choices.empty() &&
                           value->choices.front().value != L"0";
    return isOffered ? profile : nullptr;
}

void SettingsPage::PickProfile(std::size_t choice) {
    if (const Setting* profile = Profile()) {
        Choose(std::size_t(profile - m_wanted.data()));
        Pick(choice);
    }
}

bool SettingsPage::HasHyperVProfile() const noexcept {
    const Setting* read = FindSetting(m_read, kKeyword);
    const auto* value = read != nullptr ? std::get_if<ChoiceValue>(&read->value) : nullptr;
    return Profile() != nullptr && value != nullptr && IsHyperV(*value);
}

const ChoiceValue* SettingsPage::Replacement() const noexcept {
    if (!HasHyperVProfile()) {
        return nullptr;
    }
    const auto* wanted = std::get_if<ChoiceValue>(&Profile()->value);
    return IsHyperV(*wanted) ? nullptr : wanted;
}

std::wstring SettingsPage::ReplacementQuestion() const {
    const Setting* profile = Profile();
    return profile != nullptr ? Say(TextId::ProfileReplaces, {ValueText(*profile)}) : std::wstring();
}

Job SettingsPage::ReplacingEverywhere() {
    const ChoiceValue* wanted = Replacement();
    const auto profile = static_cast<quillet::Profile>(wanted != nullptr ? wanted->current : 0);
    return [page = Self<SettingsPage>(), profile, isWanted = wanted != nullptr,
            reading = Reading()](Session& session, const Asking& asking) -> Answer {
        if (!isWanted) {
            return nullptr;
        }
        session.ReplaceHyperVProfile(profile);
        return [page, read = reading(session, asking)] {
            read();
            page->SetNotice(Say(TextId::ProfileReplaced));
        };
    };
}

} // namespace quillet::pages
