// Advanced settings: a list of them, and an editor for the one that is chosen.
#include "model/SettingsPage.h"

#include "model/Words.h"

#include <algorithm>

namespace quillet::pages {

namespace {

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

std::vector<Setting> BootAgentSettings(Session& session, const AdapterId& adapter, std::wstring& notice) {
    const auto agent = ReadUnlessMissing([&] { return session.ReadBootAgent(adapter); }, notice);
    if (!agent) {
        notice = notice.empty() ? Say(TextId::BootNone) : notice;
        return {};
    }
    return session.Settings(agent->id);
}

/// The settings of an owner; to those of an adapter come those of its queues for virtual machines.
std::vector<Setting> ReadSettings(Session& session, const SettingsOwner& owner, std::wstring& notice) {
    const auto read = [&] {
        return std::visit(
            Overloaded{[&](const BootAgentOf& of) { return BootAgentSettings(session, of.adapter, notice); },
                       [&](const auto& id) { return session.Settings(id); }},
            owner);
    };
    std::vector<Setting> settings = ReadWhatThereIs(read, notice);
    if (const auto* adapter = std::get_if<AdapterId>(&owner)) {
        const auto queues = ReadIfThere([&] { return session.QueueSettings(*adapter); }, notice);
        for (const Setting& setting : queues.value_or(std::vector<Setting>())) {
            if (FindSetting(settings, setting.keyword) == nullptr) {
                settings.push_back(setting);
            }
        }
    }
    return settings;
}

/// Whether another member of the adapter's team has no jumbo frames.
bool IsAloneWithJumboFrames(Session& session, const SettingsOwner& owner,
                            const std::vector<Setting>& settings) {
    const auto* adapter = std::get_if<AdapterId>(&owner);
    if (adapter == nullptr || std::ranges::none_of(settings, IsJumboFrameSetting)) {
        return false;
    }
    std::wstring unimportant;
    const auto verdict = ReadIfThere([&] { return session.CheckJumboFrames(*adapter); }, unimportant);
    return verdict && verdict->isTeamed && !verdict->onAllMembers;
}

const std::wstring& TextOf(const Choice& choice) {
    return choice.text.empty() ? choice.value : choice.text;
}

/// The number that a text is, as a whole.
std::optional<std::int32_t> ToNumber(const std::wstring& text, int base) {
    try {
        std::size_t used = 0;
        const long long number = std::stoll(text, &used, base);
        if (used == text.size() && number >= INT32_MIN && number <= INT32_MAX) {
            return static_cast<std::int32_t>(number);
        }
    } catch (const std::logic_error&) {
        // No number, or one that is too long.
    }
    return std::nullopt;
}

int BaseOf(const NumberValue& value) {
    return value.base == 16 ? 16 : 10;
}

std::wstring NumberText(const NumberValue& value, std::int32_t number) {
    if (BaseOf(value) != 16) {
        return std::to_wstring(number);
    }
    std::wstring digits;
    for (auto rest = static_cast<std::uint32_t>(number); rest != 0 || digits.empty(); rest /= 16) {
        digits.insert(digits.begin(), L"0123456789ABCDEF"[rest % 16]);
    }
    return digits;
}

bool Fits(const NumberValue& value, std::int32_t number) {
    return number >= value.minimum && number <= value.maximum &&
           (value.step <= 1 || (std::int64_t{number} - value.minimum) % value.step == 0);
}

std::size_t LongestText(const std::wstring& maximumLength) {
    const std::optional<std::int32_t> length = ToNumber(maximumLength, 10);
    return length && *length > 0 ? std::size_t(*length) : std::wstring::npos;
}

std::vector<std::wstring> Lines(const std::wstring& text) {
    std::vector<std::wstring> lines;
    std::wstring line;
    for (const wchar_t character : text + L"\n") {
        if (character == L'\n') {
            if (!line.empty()) {
                lines.push_back(std::move(line));
            }
            line.clear();
        } else if (character != L'\r') {
            line += character;
        }
    }
    return lines;
}

std::wstring Joined(const std::vector<std::wstring>& texts, const std::wstring& between) {
    std::wstring joined;
    for (const std::wstring& text : texts) {
        joined += (joined.empty() ? L"" : between) + text;
    }
    return joined;
}

std::wstring ChoiceText(const std::vector<Choice>& choices, std::int32_t value) {
    const std::wstring number = std::to_wstring(value);
    const auto found = std::ranges::find(choices, number, &Choice::value);
    return found == choices.end() ? number : TextOf(*found);
}

std::wstring SelectionText(const SelectionValue& value) {
    std::vector<std::wstring> texts;
    for (const Choice& choice : value.choices) {
        const std::optional<std::int32_t> bit = ToNumber(choice.value, 10);
        if (bit && (value.current & *bit) == *bit && *bit != 0) {
            texts.push_back(TextOf(choice));
        }
    }
    return texts.empty() ? Say(TextId::NoneTicked) : Joined(texts, L", ");
}

} // namespace

Job SettingsPage::Reading() {
    return [page = Self<SettingsPage>(), owner = m_owner](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        std::vector<Setting> now = ReadSettings(session, owner, notice);
        const bool isAlone = IsAloneWithJumboFrames(session, owner, now);
        return [page, now = std::move(now), notice, isAlone] {
            page->m_isAloneWithJumboFrames = isAlone;
            page->Take(now, notice);
        };
    };
}

void SettingsPage::Take(std::vector<Setting> now, std::wstring notice) {
    if (Leave(notice)) {
        return;
    }
    const std::wstring chosen = Chosen() != nullptr ? Chosen()->keyword : std::wstring();
    std::vector<Setting> wanted = now;
    for (Setting& setting : wanted) {
        const Setting* mine = FindSetting(m_wanted, setting.keyword);
        const Setting* before = FindSetting(m_read, setting.keyword);
        if (mine == nullptr || before == nullptr || mine->value.index() != setting.value.index()) {
            continue;
        }
        SettingValue value = mine->value;
        if (TakeOver(before->value, value, setting.value)) {
            NoteDispute();
            notice = Say(TextId::ChangedMeanwhile, {setting.description, ValueText(setting)});
        }
        setting.value = value;
    }
    m_read = std::move(now);
    m_wanted = std::move(wanted);
    std::erase_if(m_mistyped,
                  [this](const auto& typed) { return FindSetting(m_wanted, typed.first) == nullptr; });
    const auto again = std::ranges::find(m_wanted, chosen, &Setting::keyword);
    m_chosen = again == m_wanted.end() ? 0 : std::size_t(again - m_wanted.begin());
    NoteRead(std::move(notice));
}

const Setting* SettingsPage::ReadOne(const Setting& wanted) const {
    return FindSetting(m_read, wanted.keyword);
}

bool SettingsPage::IsChanged(const Setting& setting) const {
    const Setting* read = ReadOne(setting);
    return m_mistyped.contains(setting.keyword) || (read != nullptr && !(read->value == setting.value));
}

bool SettingsPage::IsChanged() const {
    return std::ranges::any_of(m_wanted, [this](const Setting& setting) { return IsChanged(setting); });
}

std::wstring SettingsPage::Mistake() const {
    for (const auto& [keyword, typed] : m_mistyped) {
        const Setting* setting = FindSetting(m_wanted, keyword);
        if (setting != nullptr) {
            return Say(TextId::NoSuchValue, {typed, setting->description});
        }
    }
    return {};
}

std::wstring SettingsPage::Objection(Session& session, const SettingsOwner& owner, const Setting& setting) {
    const std::optional<std::int32_t> value = CurrentNumber(setting);
    if (!value) {
        return {};
    }
    Flags<ProviderBit> reasons;
    if (const auto* adapter = std::get_if<AdapterId>(&owner)) {
        reasons = session.ValidateSetting(*adapter, setting.keyword, *value).reasons;
    } else if (const auto* vlan = std::get_if<VlanId>(&owner)) {
        reasons = session.ValidateSetting(*vlan, setting.keyword, *value);
    }
    return reasons.Any() ? Say(TextId::ValueRefused, {setting.description}) + L"\r\n" +
                               InOwnLanguage(UnknownBits(reasons, Say(TextId::ProviderReason)))
                         : std::wstring();
}

Change SettingsPage::Changes() const {
    std::vector<Setting> written;
    for (const Setting& setting : m_wanted) {
        if (IsChanged(setting)) {
            written.push_back(setting);
        }
    }
    return {.write =
                [written](Session& session) {
                    for (const Setting& setting : written) {
                        session.Write(setting);
                    }
                },
            .check = [written, owner = m_owner](Session& session) -> std::wstring {
                for (const Setting& setting : written) {
                    std::wstring objection = Objection(session, owner, setting);
                    if (!objection.empty()) {
                        return objection;
                    }
                }
                return {};
            }};
}

const Setting* SettingsPage::Chosen() const noexcept {
    return m_chosen < m_wanted.size() ? &m_wanted[m_chosen] : nullptr;
}

void SettingsPage::Choose(std::size_t index) {
    if (index < m_wanted.size() && index != m_chosen) {
        m_chosen = index;
        NoteChange();
    }
}

std::wstring SettingsPage::ValueText(const Setting& setting) const {
    const auto mistyped = m_mistyped.find(setting.keyword);
    if (mistyped != m_mistyped.end()) {
        return mistyped->second;
    }
    return std::visit(
        Overloaded{[](const NumberValue& value) { return NumberText(value, value.current); },
                   [](const ChoiceValue& value) { return ChoiceText(value.choices, value.current); },
                   [](const SliderValue& value) { return std::to_wstring(value.current); },
                   [](const TextValue& value) { return value.current; },
                   [](const SelectionValue& value) { return SelectionText(value); },
                   [](const TextListValue& value) { return Joined(value.current, L", "); }},
        setting.value);
}

bool SettingsPage::IsStandard(const Setting& setting) {
    return std::visit(
        Overloaded{[](const TextListValue& value) { return Joined(value.current, L",") == value.standard; },
                   [](const auto& value) { return value.current == value.standard; }},
        setting.value);
}

Editor SettingsPage::ChosenEditor() const {
    constexpr Editor kEditors[] = {Editor::Number, Editor::Choice,    Editor::Slider,
                                   Editor::Text,   Editor::Selection, Editor::Lines};
    const Setting* chosen = Chosen();
    return chosen == nullptr || !chosen->writable ? Editor::None : kEditors[chosen->value.index()];
}

std::wstring SettingsPage::Help() const {
    const Setting* chosen = Chosen();
    if (chosen == nullptr) {
        return {};
    }
    std::wstring help = chosen->help;
    const auto add = [&help](const std::wstring& text) { help += (help.empty() ? L"" : L"\r\n\r\n") + text; };
    if (!chosen->writable) {
        add(Say(TextId::ReadOnly));
    }
    if (m_isAloneWithJumboFrames && IsJumboFrameSetting(*chosen)) {
        add(Say(TextId::NotAllJumbo));
    }
    if (const auto* number = std::get_if<NumberValue>(&chosen->value)) {
        add(Say(number->step > 1 ? TextId::RangeWithStep : TextId::Range,
                {NumberText(*number, number->minimum), NumberText(*number, number->maximum),
                 std::to_wstring(number->step)}));
    }
    if (m_mistyped.contains(chosen->keyword)) {
        add(Say(TextId::NoSuchValue, {m_mistyped.at(chosen->keyword), chosen->description}));
    }
    return help;
}

std::wstring SettingsPage::TypedText() const {
    const Setting* chosen = Chosen();
    if (chosen == nullptr) {
        return {};
    }
    if (const auto* lines = std::get_if<TextListValue>(&chosen->value)) {
        return Joined(lines->current, L"\r\n");
    }
    return ValueText(*chosen);
}

Setting* SettingsPage::ChosenToChange() {
    return ChosenEditor() == Editor::None ? nullptr : &m_wanted[m_chosen];
}

void SettingsPage::Type(const std::wstring& text) {
    Setting* chosen = ChosenToChange();
    if (chosen == nullptr) {
        return;
    }
    const bool isGood = std::visit(Overloaded{[&text](NumberValue& value) {
                                                  const std::optional<std::int32_t> number =
                                                      ToNumber(text, BaseOf(value));
                                                  if (number && Fits(value, *number)) {
                                                      value.current = *number;
                                                      return true;
                                                  }
                                                  return false;
                                              },
                                              [&text](TextValue& value) {
                                                  if (text.size() > LongestText(value.maximumLength)) {
                                                      return false;
                                                  }
                                                  value.current = text;
                                                  return true;
                                              },
                                              [&text](TextListValue& value) {
                                                  value.current = Lines(text);
                                                  return true;
                                              },
                                              [](auto&) { return true; }},
                                   chosen->value);
    if (isGood) {
        m_mistyped.erase(chosen->keyword);
    } else {
        m_mistyped[chosen->keyword] = text;
    }
    NoteChange();
}

void SettingsPage::Pick(std::size_t choice) {
    Setting* chosen = ChosenToChange();
    if (chosen == nullptr) {
        return;
    }
    if (auto* choices = std::get_if<ChoiceValue>(&chosen->value);
        choices != nullptr && choice < choices->choices.size()) {
        choices->current = ToNumber(choices->choices[choice].value, 10).value_or(choices->current);
    } else if (auto* slider = std::get_if<SliderValue>(&chosen->value);
               slider != nullptr && choice < slider->possible.size()) {
        slider->current = slider->possible[choice];
    }
    NoteChange();
}

void SettingsPage::Tick(std::size_t choice, bool isTicked) {
    Setting* chosen = ChosenToChange();
    auto* selection = chosen != nullptr ? std::get_if<SelectionValue>(&chosen->value) : nullptr;
    if (selection == nullptr || choice >= selection->choices.size()) {
        return;
    }
    const std::int32_t bit = ToNumber(selection->choices[choice].value, 10).value_or(0);
    selection->current = isTicked ? (selection->current | bit) : (selection->current & ~bit);
    NoteChange();
}

void SettingsPage::ToStandard(Setting& setting) {
    m_mistyped.erase(setting.keyword);
    std::visit(Overloaded{[](TextListValue& value) {
                              value.current = value.standard.empty() ? std::vector<std::wstring>()
                                                                     : std::vector{value.standard};
                          },
                          [](auto& value) { value.current = value.standard; }},
               setting.value);
}

void SettingsPage::Default() {
    if (Setting* chosen = ChosenToChange()) {
        ToStandard(*chosen);
        NoteChange();
    }
}

void SettingsPage::DefaultAll() {
    for (Setting& setting : m_wanted) {
        if (setting.writable) {
            ToStandard(setting);
        }
    }
    NoteChange();
}

} // namespace quillet::pages
