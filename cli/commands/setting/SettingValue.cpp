// Values of settings from texts.
#include "commands/setting/SettingValue.h"

#include "commands/setting/SettingTexts.h"
#include "ending/Failure.h"
#include "names/HostName.h"
#include "texts/Text.h"

#include <charconv>
#include <optional>

namespace quilletctl {

namespace {

std::optional<LONG> NumberIn(const std::string& text) {
    LONG number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size() ? std::optional(number)
                                                                           : std::nullopt;
}

std::string Trimmed(const std::string& text) {
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? std::string()
                                      : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// The pieces between separators; one that is empty counts.
std::vector<std::string> Pieces(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(separator, begin);
        pieces.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
    }
    return pieces;
}

[[noreturn]] void Reject(const CSetting& setting, const std::string& text) {
    throw UsageError("\"" + text + "\" is no value of " + ToUtf8(setting.m_wsCaption) + ": " +
                     PossibleText(setting));
}

/// Whether a text that the setting takes for an address is one. An empty text is none, and takes it away.
void CheckAddress(const CSetting& setting, const std::string& text) {
    const std::string caption = ToUtf8(setting.m_wsCaption);
    if (text.empty()) {
        return;
    }
    if (SameIgnoringCase(caption, "NetworkAddress") && !IsMacAddress(text)) {
        throw UsageError("\"" + text + "\" is no value of " + caption +
                         ": twelve hexadecimal digits are needed, or nothing");
    }
    if (SameIgnoringCase(caption, "TargetIP") && !IsIPv4Address(text)) {
        throw UsageError("\"" + text + "\" is no value of " + caption +
                         ": an address such as 192.0.2.10 is needed, or nothing");
    }
}

/// The number that a value's text stands for.
template <class Choice>
std::optional<LONG> NumberOfText(const Choice& setting, const std::string& text) {
    for (std::size_t i = 0; i < setting.m_vecDescriptionMap.size() && i < setting.m_vecPossibleValues.size();
         ++i) {
        if (SameIgnoringCase(ToUtf8(setting.m_vecDescriptionMap[i]), text)) {
            return NumberIn(ToUtf8(setting.m_vecPossibleValues[i]));
        }
    }
    return std::nullopt;
}

/// A text of the setting's own wins over the number that it may look like.
template <class Choice>
LONG ChosenNumber(const Choice& setting, const std::string& text) {
    std::optional<LONG> number = NumberOfText(setting, text);
    if (!number) {
        number = NumberIn(text);
    }
    if (!number) {
        Reject(setting, text);
    }
    return *number;
}

LONG SelectedNumber(const CSettingMultiSelection& setting, const std::string& text) {
    LONG bits = 0;
    for (const std::string& piece : Pieces(text, '+')) {
        bits |= ChosenNumber(setting, Trimmed(piece));
    }
    return bits;
}

} // namespace

std::unique_ptr<CSetting> WithValue(const CSetting& setting, const std::string& text) {
    std::unique_ptr<CSetting> changed(setting.Copy());
    switch (setting.GetSettingType()) {
    case CSetting::SettingTypeEnum: {
        auto& choice = static_cast<CSettingEnum&>(*changed);
        choice.m_lCurrentValue = ChosenNumber(choice, text);
        break;
    }
    case CSetting::SettingTypeMultiSelection: {
        auto& several = static_cast<CSettingMultiSelection&>(*changed);
        several.m_lCurrentValue = SelectedNumber(several, text);
        break;
    }
    case CSetting::SettingTypeInt:
    case CSetting::SettingTypeSlider:
        if (!NumberIn(text)) {
            Reject(setting, text);
        }
        changed->SetCurrentValue(ToWide(text));
        break;
    case CSetting::SettingTypeMultiString: {
        // Not through the setting's own text form, which drops a list of one.
        auto& values = static_cast<CSettingMultiString&>(*changed).m_vecCurrentValues;
        values.clear();
        for (const std::string& piece : Pieces(text, ',')) {
            values.push_back(ToWide(piece));
        }
        break;
    }
    case CSetting::SettingTypeString:
        CheckAddress(setting, text);
        changed->SetCurrentValue(ToWide(text));
        break;
    }
    return changed;
}

} // namespace quilletctl
