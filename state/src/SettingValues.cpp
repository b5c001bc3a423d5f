// Values by their kinds.
#include "SettingValues.h"

#include "Texts.h"

#include <quillet/client/Text.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace quillet::state {

namespace {

constexpr const char* kAddress = "NetworkAddress";

std::optional<std::int32_t> NumberIn(std::string_view text) {
    std::int32_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = read.ec == std::errc() && read.ptr == text.data() + text.size() && !text.empty();
    return isWhole ? std::optional(number) : std::nullopt;
}

std::int32_t NumberOf(const Json& value) {
    if (value.is_number_integer()) {
        // One that is too large for its type compares as what it is.
        if (value >= Json(std::numeric_limits<std::int32_t>::min()) &&
            value <= Json(std::numeric_limits<std::int32_t>::max())) {
            return value.get<std::int32_t>();
        }
    } else if (value.is_string()) {
        if (const auto number = NumberIn(value.get_ref<const std::string&>())) {
            return *number;
        }
    }
    throw ValueError("is no number of 32 bits");
}

std::string TextOf(const Choice& choice) {
    const std::string value = ToUtf8(choice.value);
    return choice.text.empty() ? value : ToUtf8(choice.text) + " (" + value + ")";
}

[[noreturn]] void RejectChoice(const std::vector<Choice>& choices) {
    std::vector<std::string> texts;
    texts.reserve(choices.size());
    for (const Choice& choice : choices) {
        texts.push_back(TextOf(choice));
    }
    throw ValueError("is none of its values: " + ListOf(texts));
}

/// A text of the setting's own wins over the number that it may look like.
std::int32_t Chosen(const std::vector<Choice>& choices, const Json& value) {
    for (const Choice& choice : choices) {
        if (value.is_string() && !choice.text.empty() &&
            SameName(value.get<std::string>(), ToUtf8(choice.text))) {
            return NumberOf(Json(ToUtf8(choice.value)));
        }
    }
    std::optional<std::int32_t> number;
    if (value.is_number_integer() || value.is_string()) {
        try {
            number = NumberOf(value);
        } catch (const ValueError&) {
            RejectChoice(choices);
        }
    }
    const bool isPossible = number && std::any_of(choices.begin(), choices.end(), [&](const Choice& choice) {
                                return NumberIn(ToUtf8(choice.value)) == number;
                            });
    if (!isPossible) {
        RejectChoice(choices);
    }
    return *number;
}

std::vector<Json> Pieces(const std::string& text, char separator) {
    std::vector<Json> pieces;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find(separator, begin);
        std::string piece = text.substr(begin, end == std::string::npos ? end : end - begin);
        const std::size_t first = piece.find_first_not_of(' ');
        piece =
            first == std::string::npos ? "" : piece.substr(first, piece.find_last_not_of(' ') + 1 - first);
        pieces.emplace_back(std::move(piece));
    }
    return pieces;
}

std::int32_t Selected(const std::vector<Choice>& choices, const Json& value) {
    std::int32_t all = 0;
    for (const Choice& choice : choices) {
        all |= NumberIn(ToUtf8(choice.value)).value_or(0);
    }
    if (value.is_number_integer()) {
        const std::int32_t bits = NumberOf(value);
        if ((bits & ~all) != 0) {
            throw ValueError("has bits that are none of its values");
        }
        return bits;
    }
    const std::vector<Json> pieces = value.is_array() ? std::vector<Json>(value.begin(), value.end())
                                                      : Pieces(value.get<std::string>(), '+');
    std::int32_t bits = 0;
    for (const Json& piece : pieces) {
        bits |= Chosen(choices, piece);
    }
    return bits;
}

void CheckLength(const std::wstring& text, const std::wstring& most) {
    const auto length = NumberIn(ToUtf8(most));
    if (length && *length > 0 && text.size() > static_cast<std::size_t>(*length)) {
        throw ValueError("is longer than " + std::to_string(*length) + " characters");
    }
}

/// Takes a value over into each kind.
struct Taker {
    const Json& wanted;
    bool isAddress;

    void operator()(NumberValue& value) const {
        const std::int32_t number = NumberOf(wanted);
        const auto step = static_cast<std::int64_t>(std::max(1, value.step));
        if (number < value.minimum || number > value.maximum ||
            (static_cast<std::int64_t>(number) - value.minimum) % step != 0) {
            throw ValueError("is not from " + std::to_string(value.minimum) + " to " +
                             std::to_string(value.maximum) +
                             (step > 1 ? " in steps of " + std::to_string(step) : ""));
        }
        value.current = number;
    }
    void operator()(SliderValue& value) const {
        const std::int32_t number = NumberOf(wanted);
        if (std::find(value.possible.begin(), value.possible.end(), number) == value.possible.end()) {
            std::vector<std::string> texts;
            for (const std::int32_t each : value.possible) {
                texts.push_back(std::to_string(each));
            }
            throw ValueError("is none of its values: " + ListOf(texts));
        }
        value.current = number;
    }
    void operator()(ChoiceValue& value) const { value.current = Chosen(value.choices, wanted); }
    void operator()(SelectionValue& value) const { value.current = Selected(value.choices, wanted); }
    void operator()(TextValue& value) const {
        const std::wstring text = FromUtf8(One(wanted));
        if (isAddress && !text.empty() && MacDigits(ToUtf8(text)) != ToUtf8(Upper(text))) {
            throw ValueError("is no address: twelve hexadecimal digits, or nothing");
        }
        CheckLength(text, value.maximumLength);
        value.current = text;
    }
    void operator()(TextListValue& value) const {
        const std::vector<Json> texts =
            wanted.is_array() ? std::vector<Json>(wanted.begin(), wanted.end()) : Pieces(One(wanted), ',');
        value.current.clear();
        for (const Json& text : texts) {
            value.current.push_back(FromUtf8(One(text)));
            CheckLength(value.current.back(), value.maximumLength);
        }
    }

  private:
    static std::string One(const Json& json) {
        return json.is_string() ? json.get<std::string>() : json.dump();
    }
    static std::wstring Upper(std::wstring text) {
        for (wchar_t& each : text) {
            each = each >= L'a' && each <= L'f' ? static_cast<wchar_t>(each - L'a' + L'A') : each;
        }
        return text;
    }
};

bool IsAddress(const Setting& setting) {
    return SameName(ToUtf8(setting.keyword), kAddress);
}

/// The text of a number among the choices.
std::string ChoiceText(const std::vector<Choice>& choices, std::int32_t number) {
    for (const Choice& choice : choices) {
        if (NumberIn(ToUtf8(choice.value)) == number) {
            return TextOf(choice);
        }
    }
    return std::to_string(number);
}

} // namespace

const Setting* SettingCalled(const std::vector<Setting>& settings, const std::string& name) {
    const std::wstring text = FromUtf8(name);
    if (const Setting* setting = FindSetting(settings, text)) {
        return setting;
    }
    const auto isCalled = [&text](const Setting& each) { return SameName(each.description, text); };
    const auto found = std::find_if(settings.begin(), settings.end(), isCalled);
    const bool isOnly = found != settings.end() && std::none_of(found + 1, settings.end(), isCalled);
    return isOnly ? &*found : nullptr;
}

bool IsProfile(const Setting& setting) {
    return SameName(ToUtf8(setting.keyword), kProfile);
}

Setting WithValue(const Setting& setting, const Json& value) {
    const bool isList = std::holds_alternative<SelectionValue>(setting.value) ||
                        std::holds_alternative<TextListValue>(setting.value);
    if (value.is_array() && !isList) {
        throw ValueError("is a list, and the setting has one value");
    }
    Setting changed = setting;
    std::visit(Taker{value, IsAddress(setting)}, changed.value);
    return changed;
}

Json ValueOf(const Setting& setting) {
    struct Writer {
        Json operator()(const TextValue& value) const { return ToUtf8(value.current); }
        Json operator()(const TextListValue& value) const {
            Json texts = Json::array();
            for (const std::wstring& each : value.current) {
                texts.push_back(ToUtf8(each));
            }
            return texts;
        }
        Json operator()(const NumberValue& value) const { return value.current; }
        Json operator()(const ChoiceValue& value) const { return value.current; }
        Json operator()(const SliderValue& value) const { return value.current; }
        Json operator()(const SelectionValue& value) const { return value.current; }
    };
    return std::visit(Writer(), setting.value);
}

bool HasSameValue(const Setting& left, const Setting& right) {
    const Json one = ValueOf(left);
    const Json other = ValueOf(right);
    return one == other || (IsAddress(left) && one.is_string() && other.is_string() &&
                            SameName(one.get<std::string>(), other.get<std::string>()));
}

bool IsStandard(const Setting& setting) {
    if (const auto* list = std::get_if<TextListValue>(&setting.value)) {
        return CurrentText(setting) == list->standard; // which the provider tells as one text
    }
    return std::visit(
        [](const auto& value) {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, TextListValue>) {
                return false;
            } else {
                return value.current == value.standard;
            }
        },
        setting.value);
}

std::string ValueText(const Setting& setting) {
    if (const auto* choice = std::get_if<ChoiceValue>(&setting.value)) {
        return ChoiceText(choice->choices, choice->current);
    }
    if (const auto* selection = std::get_if<SelectionValue>(&setting.value)) {
        std::string text;
        for (const Choice& choice : selection->choices) {
            const std::int32_t bits = NumberIn(ToUtf8(choice.value)).value_or(0);
            if (bits != 0 && (selection->current & bits) == bits) {
                text += (text.empty() ? "" : " + ") + TextOf(choice);
            }
        }
        return text.empty() ? std::to_string(selection->current) : text;
    }
    const Json value = ValueOf(setting);
    return value.is_string() ? '"' + value.get<std::string>() + '"' : value.dump();
}

} // namespace quillet::state
