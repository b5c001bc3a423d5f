// The six kinds of settings in words and in JSON.
#include "commands/setting/SettingTexts.h"

#include "names/ObjectPath.h"
#include "texts/Number.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

using quillet::Choice;
using quillet::ChoiceValue;
using quillet::NumberValue;
using quillet::SelectionValue;
using quillet::Setting;
using quillet::SliderValue;
using quillet::TextListValue;
using quillet::TextValue;

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

void Append(std::string& list, const std::string& text, const char* separator = ", ") {
    list += list.empty() ? text : separator + text;
}

/// A value with its meaning, where it has one: "Enabled (1)".
std::string WithMeaning(const std::wstring& meaning, const std::string& value) {
    return meaning.empty() ? value : ToUtf8(meaning) + " (" + value + ')';
}

std::string ChosenText(const std::vector<Choice>& choices, std::int32_t number) {
    const std::wstring value = std::to_wstring(number);
    const auto found = std::find_if(choices.begin(), choices.end(),
                                    [&value](const Choice& each) { return each.value == value; });
    return found == choices.end() ? std::to_string(number) + " (unknown)"
                                  : WithMeaning(found->text, std::to_string(number));
}

/// The texts of the bits that are set.
std::string SelectedText(const std::vector<Choice>& choices, std::int32_t value) {
    std::string selected;
    for (const Choice& choice : choices) {
        const std::int32_t bit = NumberIn(ToUtf8(choice.value)).value_or(0);
        if (bit != 0 && (value & bit) == bit) {
            Append(selected, ToUtf8(choice.text.empty() ? choice.value : choice.text), " + ");
        }
    }
    return (selected.empty() ? "none" : selected) + " (" + std::to_string(value) + ')';
}

std::string PlainText(const std::wstring& text) {
    return text.empty() ? "(empty)" : ToUtf8(text);
}

std::string ListText(const std::vector<std::wstring>& texts) {
    std::string list;
    for (const std::wstring& text : texts) {
        Append(list, PlainText(text));
    }
    return list.empty() ? "(empty)" : list;
}

std::string ChoicesText(const std::vector<Choice>& choices) {
    std::string list;
    for (const Choice& choice : choices) {
        Append(list, WithMeaning(choice.text, ToUtf8(choice.value)));
    }
    return list;
}

std::string LengthText(const std::wstring& longest, const char* what) {
    return longest.empty()
               ? std::string()
               : what + ("up to " + ToUtf8(longest)) + (longest == L"1" ? " character" : " characters");
}

Json NumberOrNull(const std::wstring& text) {
    const auto number = NumberIn(ToUtf8(text));
    return number ? Json(*number) : Json();
}

/// A number where the provider's text is one, so that it compares with the current value.
Json NumberOrText(const std::wstring& text) {
    const auto number = NumberIn(ToUtf8(text));
    return number ? Json(*number) : Json(ToUtf8(text));
}

Json ChoicesJson(const std::vector<Choice>& choices) {
    Json list = Json::array();
    for (const Choice& choice : choices) {
        list.push_back(Json{{"value", NumberOrText(choice.value)},
                            {"text", choice.text.empty() ? Json() : Json(ToUtf8(choice.text))}});
    }
    return list;
}

Json ListJson(const std::vector<std::wstring>& texts) {
    Json list = Json::array();
    for (const std::wstring& text : texts) {
        list.push_back(ToUtf8(text));
    }
    return list;
}

/// The values, which are what differs between the kinds.
Json ValuesJson(const Setting& setting) {
    return std::visit(Overloaded{
                          [](const NumberValue& number) {
                              return Json{{"current", number.current}, {"default", number.standard},
                                          {"minimum", number.minimum}, {"maximum", number.maximum},
                                          {"step", number.step},       {"base", number.base},
                                          {"scale", number.scale}};
                          },
                          [](const SliderValue& slider) {
                              return Json{{"current", slider.current},
                                          {"default", slider.standard},
                                          {"possible", slider.possible},
                                          {"firstLabel", ToUtf8(slider.firstLabel)},
                                          {"lastLabel", ToUtf8(slider.lastLabel)}};
                          },
                          [](const TextValue& text) {
                              return Json{{"current", ToUtf8(text.current)},
                                          {"default", ToUtf8(text.standard)},
                                          {"maxLength", NumberOrNull(text.maximumLength)}};
                          },
                          [](const TextListValue& list) {
                              return Json{{"current", ListJson(list.current)},
                                          {"default", ToUtf8(list.standard)},
                                          {"maxLength", NumberOrNull(list.maximumLength)}};
                          },
                          [](const auto& choice) {
                              return Json{{"current", choice.current},
                                          {"default", choice.standard},
                                          {"possible", ChoicesJson(choice.choices)}};
                          },
                      },
                      setting.value);
}

/// How a kind is called for programs and for people.
struct KindNames {
    const char* key;
    const char* word;
};

const KindNames& KindOf(const Setting& setting) {
    // In the order of the kinds in SettingValue.
    static constexpr KindNames kNames[] = {{"int", "number"},
                                           {"enum", "choice"},
                                           {"slider", "slider"},
                                           {"string", "text"},
                                           {"multiSelection", "selection"},
                                           {"multiString", "list"}};
    static_assert(std::size(kNames) == std::variant_size_v<quillet::SettingValue>);
    return kNames[setting.value.index()];
}

} // namespace

std::string KindText(const Setting& setting) {
    return KindOf(setting).word;
}

std::string ValueText(const Setting& setting) {
    return std::visit(
        Overloaded{
            [](const ChoiceValue& choice) { return ChosenText(choice.choices, choice.current); },
            [](const SelectionValue& several) { return SelectedText(several.choices, several.current); },
            [](const TextValue& text) { return PlainText(text.current); },
            [](const TextListValue& list) { return ListText(list.current); },
            [](const auto& number) { return std::to_string(number.current); },
        },
        setting.value);
}

std::string DefaultText(const Setting& setting) {
    return std::visit(
        Overloaded{
            [](const ChoiceValue& choice) { return ChosenText(choice.choices, choice.standard); },
            [](const SelectionValue& several) { return SelectedText(several.choices, several.standard); },
            [](const TextValue& text) { return PlainText(text.standard); },
            [](const TextListValue& list) { return PlainText(list.standard); },
            [](const auto& number) { return std::to_string(number.standard); },
        },
        setting.value);
}

bool IsChanged(const Setting& setting) {
    return std::visit(Overloaded{
                          [](const TextListValue& list) {
                              // The provider has the default as one text.
                              std::wstring current;
                              for (const std::wstring& text : list.current) {
                                  current += (current.empty() ? L"" : L",") + text;
                              }
                              return current != list.standard;
                          },
                          [](const auto& value) { return value.current != value.standard; },
                      },
                      setting.value);
}

std::string PossibleText(const Setting& setting) {
    return std::visit(
        Overloaded{
            [](const NumberValue& number) {
                std::string text = std::to_string(number.minimum) + " to " + std::to_string(number.maximum);
                if (number.step > 1) {
                    text += " in steps of " + std::to_string(number.step);
                }
                return text;
            },
            [](const SliderValue& slider) {
                std::string text;
                for (const std::int32_t value : slider.possible) {
                    Append(text, std::to_string(value));
                }
                return text + " (from " + ToUtf8(slider.firstLabel) + " to " + ToUtf8(slider.lastLabel) + ')';
            },
            [](const TextValue& text) { return LengthText(text.maximumLength, ""); },
            [](const TextListValue& list) { return LengthText(list.maximumLength, "texts of "); },
            [](const auto& choice) { return ChoicesText(choice.choices); },
        },
        setting.value);
}

Json AsJson(const Setting& setting) {
    Json json{{"caption", ToUtf8(setting.keyword)},
              {"description", ToUtf8(setting.description)},
              {"help", ToUtf8(setting.help)},
              {"path", PathOf(setting.id)},
              {"kind", KindOf(setting).key},
              {"exposeLevel", NumberIn(ToUtf8(setting.exposeLevel)).value_or(0)},
              {"writable", setting.writable},
              {"group", setting.group ? Json(*setting.group) : Json()}};
    json.update(ValuesJson(setting));
    return json;
}

} // namespace quilletctl
