// The six kinds of settings in words and in JSON.
#include "commands/setting/SettingTexts.h"

#include "ending/Failure.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <charconv>

namespace quilletctl {

namespace {

using Texts = std::vector<std::wstring>;

/// Calls what fits the setting's kind.
template <class Visitor>
auto Visit(const CSetting& setting, const Visitor& visitor) {
    switch (setting.GetSettingType()) {
    case CSetting::SettingTypeInt:
        return visitor(static_cast<const CSettingInt&>(setting));
    case CSetting::SettingTypeEnum:
        return visitor(static_cast<const CSettingEnum&>(setting));
    case CSetting::SettingTypeSlider:
        return visitor(static_cast<const CSettingSlider&>(setting));
    case CSetting::SettingTypeString:
        return visitor(static_cast<const CSettingString&>(setting));
    case CSetting::SettingTypeMultiSelection:
        return visitor(static_cast<const CSettingMultiSelection&>(setting));
    case CSetting::SettingTypeMultiString:
        return visitor(static_cast<const CSettingMultiString&>(setting));
    }
    throw UsageError("a setting of an unknown kind: " + ToUtf8(setting.m_wsCaption));
}

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

void Append(std::string& list, const std::string& text, const char* separator = ", ") {
    list += list.empty() ? text : separator + text;
}

/// The text of one possible value; empty where there is none.
std::string Meaning(const Texts& values, const Texts& texts, const std::wstring& value) {
    for (std::size_t i = 0; i < values.size() && i < texts.size(); ++i) {
        if (values[i] == value) {
            return ToUtf8(texts[i]);
        }
    }
    return {};
}

std::string WithMeaning(const std::string& meaning, const std::string& value) {
    return meaning.empty() ? value : meaning + " (" + value + ')';
}

std::string ChosenText(const CSettingEnum& setting, LONG value) {
    const std::wstring text = std::to_wstring(value);
    return WithMeaning(Meaning(setting.m_vecPossibleValues, setting.m_vecDescriptionMap, text), ToUtf8(text));
}

/// A whole number in a text of the provider's.
bool ReadNumber(const std::wstring& text, LONG& number) {
    const std::string digits = ToUtf8(text);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return read.ec == std::errc() && read.ptr == digits.data() + digits.size();
}

/// The texts of the bits that are set.
std::string SelectedText(const CSettingMultiSelection& setting, LONG value) {
    std::string selected;
    for (const std::wstring& possible : setting.m_vecPossibleValues) {
        LONG bit = 0;
        if (ReadNumber(possible, bit) && bit != 0 && (value & bit) == bit) {
            const std::string meaning =
                Meaning(setting.m_vecPossibleValues, setting.m_vecDescriptionMap, possible);
            Append(selected, meaning.empty() ? ToUtf8(possible) : meaning, " + ");
        }
    }
    return WithMeaning(selected.empty() ? "none" : selected, std::to_string(value));
}

std::string PlainText(const std::wstring& text) {
    return text.empty() ? "(empty)" : ToUtf8(text);
}

std::string ListText(const Texts& texts) {
    std::string list;
    for (const std::wstring& text : texts) {
        Append(list, PlainText(text));
    }
    return list.empty() ? "(empty)" : list;
}

std::string ChoicesText(const Texts& values, const Texts& texts) {
    std::string list;
    for (const std::wstring& value : values) {
        Append(list, WithMeaning(Meaning(values, texts, value), ToUtf8(value)));
    }
    return list;
}

std::string LengthText(const std::wstring& longest, const char* what) {
    return longest.empty()
               ? std::string()
               : what + ("up to " + ToUtf8(longest)) + (longest == L"1" ? " character" : " characters");
}

/// A number where the provider's text is one, so that it compares with the current value.
Json NumberOrText(const std::wstring& text) {
    LONG number = 0;
    return ReadNumber(text, number) ? Json(number) : Json(ToUtf8(text));
}

Json NumberOrNull(const std::wstring& text) {
    LONG number = 0;
    return ReadNumber(text, number) ? Json(number) : Json();
}

Json ChoicesJson(const Texts& values, const Texts& texts) {
    Json list = Json::array();
    for (std::size_t i = 0; i < values.size(); ++i) {
        list.push_back(Json{{"value", NumberOrText(values[i])},
                            {"text", i < texts.size() ? Json(ToUtf8(texts[i])) : Json()}});
    }
    return list;
}

Json ListJson(const Texts& texts) {
    Json list = Json::array();
    for (const std::wstring& text : texts) {
        list.push_back(ToUtf8(text));
    }
    return list;
}

/// The values, which are what differs between the kinds.
Json ValuesJson(const CSetting& setting) {
    return Visit(setting, Overloaded{
                              [](const CSettingInt& number) {
                                  return Json{{"current", number.m_lCurrentValue},
                                              {"default", number.m_lDefaultValue},
                                              {"minimum", number.m_lMin},
                                              {"maximum", number.m_lMax},
                                              {"step", number.m_lStep},
                                              {"base", number.m_lBase},
                                              {"scale", number.m_lScale}};
                              },
                              [](const CSettingSlider& slider) {
                                  return Json{{"current", slider.m_lCurrentValue},
                                              {"default", slider.m_lDefaultValue},
                                              {"possible", slider.m_vecPossibleValues},
                                              {"firstLabel", ToUtf8(slider.m_wsFirstLabel)},
                                              {"lastLabel", ToUtf8(slider.m_wsLastLabel)}};
                              },
                              [](const CSettingString& text) {
                                  return Json{{"current", ToUtf8(text.m_wsCurrentValue)},
                                              {"default", ToUtf8(text.m_wsDefaultValue)},
                                              {"maxLength", NumberOrNull(text.m_wsMaxLength)}};
                              },
                              [](const CSettingMultiString& list) {
                                  return Json{{"current", ListJson(list.m_vecCurrentValues)},
                                              {"default", ToUtf8(list.m_wsDefaultValue)},
                                              {"maxLength", NumberOrNull(list.m_wsMaxLength)}};
                              },
                              [](const auto& choice) {
                                  return Json{{"current", choice.m_lCurrentValue},
                                              {"default", choice.m_lDefaultValue},
                                              {"possible", ChoicesJson(choice.m_vecPossibleValues,
                                                                       choice.m_vecDescriptionMap)}};
                              },
                          });
}

const char* KindName(const CSetting& setting) {
    return Visit(setting, Overloaded{
                              [](const CSettingInt&) { return "int"; },
                              [](const CSettingEnum&) { return "enum"; },
                              [](const CSettingSlider&) { return "slider"; },
                              [](const CSettingString&) { return "string"; },
                              [](const CSettingMultiSelection&) { return "multiSelection"; },
                              [](const CSettingMultiString&) { return "multiString"; },
                          });
}

} // namespace

std::string KindText(const CSetting& setting) {
    return Visit(setting, Overloaded{
                              [](const CSettingInt&) { return "number"; },
                              [](const CSettingEnum&) { return "choice"; },
                              [](const CSettingSlider&) { return "slider"; },
                              [](const CSettingString&) { return "text"; },
                              [](const CSettingMultiSelection&) { return "selection"; },
                              [](const CSettingMultiString&) { return "list"; },
                          });
}

std::string CurrentText(const CSetting& setting) {
    return Visit(setting,
                 Overloaded{
                     [](const CSettingEnum& choice) { return ChosenText(choice, choice.m_lCurrentValue); },
                     [](const CSettingMultiSelection& several) {
                         return SelectedText(several, several.m_lCurrentValue);
                     },
                     [](const CSettingString& text) { return PlainText(text.m_wsCurrentValue); },
                     [](const CSettingMultiString& list) { return ListText(list.m_vecCurrentValues); },
                     [](const auto& number) { return std::to_string(number.m_lCurrentValue); },
                 });
}

std::string DefaultText(const CSetting& setting) {
    return Visit(setting,
                 Overloaded{
                     [](const CSettingEnum& choice) { return ChosenText(choice, choice.m_lDefaultValue); },
                     [](const CSettingMultiSelection& several) {
                         return SelectedText(several, several.m_lDefaultValue);
                     },
                     [](const CSettingString& text) { return PlainText(text.m_wsDefaultValue); },
                     [](const CSettingMultiString& list) { return PlainText(list.m_wsDefaultValue); },
                     [](const auto& number) { return std::to_string(number.m_lDefaultValue); },
                 });
}

std::string PossibleText(const CSetting& setting) {
    return Visit(
        setting,
        Overloaded{
            [](const CSettingInt& number) {
                std::string text = std::to_string(number.m_lMin) + " to " + std::to_string(number.m_lMax);
                if (number.m_lStep > 1) {
                    text += " in steps of " + std::to_string(number.m_lStep);
                }
                return text;
            },
            [](const CSettingSlider& slider) {
                std::string text;
                for (const LONG value : slider.m_vecPossibleValues) {
                    Append(text, std::to_string(value));
                }
                return text + " (from " + ToUtf8(slider.m_wsFirstLabel) + " to " +
                       ToUtf8(slider.m_wsLastLabel) + ')';
            },
            [](const CSettingString& text) { return LengthText(text.m_wsMaxLength, ""); },
            [](const CSettingMultiString& list) { return LengthText(list.m_wsMaxLength, "texts of "); },
            [](const auto& choice) {
                return ChoicesText(choice.m_vecPossibleValues, choice.m_vecDescriptionMap);
            },
        });
}

Json AsJson(const CSetting& setting) {
    Json json{{"caption", ToUtf8(setting.m_wsCaption)},
              {"description", ToUtf8(setting.m_wsDescription)},
              {"help", ToUtf8(setting.m_wsMiniHelp)},
              {"path", ToUtf8(setting.m_wsPath)},
              {"kind", KindName(setting)},
              {"exposeLevel", setting.GetExposeLevel()},
              {"writable", setting.m_bWritable},
              {"group", setting.m_bGrouped ? Json(setting.m_lGroupId) : Json()}};
    json.update(ValuesJson(setting));
    return json;
}

} // namespace quilletctl
