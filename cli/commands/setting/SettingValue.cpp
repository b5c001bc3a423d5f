// Values of settings from texts.
#include "commands/setting/SettingValue.h"

#include "commands/setting/SettingTexts.h"
#include "ending/Failure.h"
#include "names/HostName.h"
#include "texts/Nearest.h"
#include "texts/Number.h"
#include "texts/Text.h"

#include <algorithm>
#include <optional>

namespace quilletctl {

namespace {

std::string Trimmed(const std::string& text) {
    const auto begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? std::string()
                                      : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// The pieces between separators; one that is empty counts.
std::vector<std::string> Parts(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(separator, begin);
        pieces.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
    }
    return pieces;
}

/// @param choices by the texts of which it might have been called
[[noreturn]] void Reject(const quillet::Setting& setting, const std::string& text,
                         const std::vector<quillet::Choice>& choices = {}) {
    std::vector<std::string> texts;
    texts.reserve(choices.size());
    for (const quillet::Choice& choice : choices) {
        texts.push_back(ToUtf8(choice.text));
    }
    throw UsageError("\"" + text + "\" is no value of " + ToUtf8(setting.keyword) + ": " +
                     PossibleText(setting) + DidYouMean(text, texts));
}

/// Whether a text that the setting takes for an address is one. An empty text is none, and takes it away.
void CheckAddress(const quillet::Setting& setting, const std::string& text) {
    const std::string caption = ToUtf8(setting.keyword);
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
std::optional<std::int32_t> NumberOfText(const std::vector<quillet::Choice>& choices,
                                         const std::string& text) {
    for (const quillet::Choice& choice : choices) {
        if (!choice.text.empty() && SameIgnoringCase(ToUtf8(choice.text), text)) {
            return NumberIn(ToUtf8(choice.value));
        }
    }
    return std::nullopt;
}

/// Takes what was typed over into a value of each kind.
struct Taker {
    const quillet::Setting& setting;
    const std::string& text;

    void operator()(quillet::NumberValue& value) const { value.current = Number(text); }
    void operator()(quillet::SliderValue& value) const { value.current = Number(text); }
    void operator()(quillet::ChoiceValue& value) const { value.current = Chosen(value.choices, text); }
    void operator()(quillet::SelectionValue& value) const {
        value.current = 0;
        for (const std::string& piece : Parts(text, '+')) {
            value.current |= Chosen(value.choices, Trimmed(piece));
        }
    }
    void operator()(quillet::TextValue& value) const {
        CheckAddress(setting, text);
        value.current = ToWide(text);
    }
    void operator()(quillet::TextListValue& value) const {
        value.current.clear();
        for (const std::string& piece : Parts(text, ',')) {
            value.current.push_back(ToWide(piece));
        }
    }

  private:
    std::int32_t Number(const std::string& piece, const std::vector<quillet::Choice>& choices = {}) const {
        const std::optional<std::int32_t> number = NumberIn(piece);
        if (!number) {
            Reject(setting, piece, choices);
        }
        return *number;
    }
    /// A text of the setting's own wins over the number that it may look like.
    std::int32_t Chosen(const std::vector<quillet::Choice>& choices, const std::string& piece) const {
        const std::optional<std::int32_t> named = NumberOfText(choices, piece);
        return named ? *named : Number(piece, choices);
    }
};

bool IsAmong(const std::vector<quillet::Choice>& choices, std::int32_t value) {
    return std::any_of(choices.begin(), choices.end(), [value](const quillet::Choice& each) {
        return NumberIn(ToUtf8(each.value)) == value;
    });
}

/// Takes the default over as the value; false where it is none that there can be.
struct DefaultTaker {
    bool operator()(quillet::NumberValue& value) const {
        value.current = value.standard;
        return value.standard >= value.minimum && value.standard <= value.maximum;
    }
    bool operator()(quillet::SliderValue& value) const {
        value.current = value.standard;
        return std::find(value.possible.begin(), value.possible.end(), value.standard) !=
               value.possible.end();
    }
    bool operator()(quillet::ChoiceValue& value) const {
        value.current = value.standard;
        return IsAmong(value.choices, value.standard);
    }
    bool operator()(quillet::SelectionValue& value) const {
        value.current = value.standard;
        return true;
    }
    bool operator()(quillet::TextValue& value) const {
        value.current = value.standard;
        return true;
    }
    bool operator()(quillet::TextListValue& value) const {
        value.current.clear();
        for (const std::string& piece : Parts(ToUtf8(value.standard), ',')) {
            value.current.push_back(ToWide(piece));
        }
        if (value.standard.empty()) {
            value.current.clear();
        }
        return true;
    }
};

} // namespace

std::optional<quillet::Setting> WithDefault(const quillet::Setting& setting) {
    quillet::Setting changed = setting;
    return std::visit(DefaultTaker(), changed.value) ? std::optional(changed) : std::nullopt;
}

quillet::Setting WithValue(const quillet::Setting& setting, const std::string& text) {
    quillet::Setting changed = setting;
    std::visit(Taker{setting, text}, changed.value);
    return changed;
}

} // namespace quilletctl
