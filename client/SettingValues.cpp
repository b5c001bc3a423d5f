// Settings from the library's records, and into them.
#include "Operations.h"

#include <algorithm>
#include <array>

namespace quillet {

namespace {

std::vector<Choice> ChoicesOf(std::vector<std::wstring>&& values, std::vector<std::wstring>&& texts) {
    // The provider's lists need not be of one length.
    std::vector<Choice> choices;
    choices.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        choices.push_back({std::move(values[i]), i < texts.size() ? std::move(texts[i]) : std::wstring()});
    }
    return choices;
}

template <class Record>
void FillChoices(Record& record, const std::vector<Choice>& choices) {
    for (const Choice& choice : choices) {
        record.m_vecPossibleValues.push_back(choice.value);
        record.m_vecDescriptionMap.push_back(choice.text);
    }
}

SettingValue ValueOf(CSetting& setting) {
    switch (setting.GetSettingType()) {
    case CSetting::SettingTypeInt: {
        auto& record = static_cast<CSettingInt&>(setting);
        return NumberValue{record.m_lCurrentValue, record.m_lDefaultValue, record.m_lMin,  record.m_lMax,
                           record.m_lStep,         record.m_lBase,         record.m_lScale};
    }
    case CSetting::SettingTypeEnum: {
        auto& record = static_cast<CSettingEnum&>(setting);
        return ChoiceValue{
            record.m_lCurrentValue, record.m_lDefaultValue,
            ChoicesOf(std::move(record.m_vecPossibleValues), std::move(record.m_vecDescriptionMap))};
    }
    case CSetting::SettingTypeSlider: {
        auto& record = static_cast<CSettingSlider&>(setting);
        return SliderValue{record.m_lCurrentValue,
                           record.m_lDefaultValue,
                           std::move(record.m_wsFirstLabel),
                           std::move(record.m_wsLastLabel),
                           {record.m_vecPossibleValues.begin(), record.m_vecPossibleValues.end()}};
    }
    case CSetting::SettingTypeString: {
        auto& record = static_cast<CSettingString&>(setting);
        return TextValue{std::move(record.m_wsCurrentValue), std::move(record.m_wsDefaultValue),
                         std::move(record.m_wsMaxLength)};
    }
    case CSetting::SettingTypeMultiSelection: {
        auto& record = static_cast<CSettingMultiSelection&>(setting);
        return SelectionValue{
            record.m_lCurrentValue, record.m_lDefaultValue,
            ChoicesOf(std::move(record.m_vecPossibleValues), std::move(record.m_vecDescriptionMap))};
    }
    case CSetting::SettingTypeMultiString: {
        auto& record = static_cast<CSettingMultiString&>(setting);
        return TextListValue{std::move(record.m_vecCurrentValues), std::move(record.m_wsDefaultValue),
                             std::move(record.m_wsMaxLength)};
    }
    }
    return {};
}

/// Makes the record of a value's kind.
struct RecordMaker {
    std::unique_ptr<CSetting> operator()(const NumberValue& value) const {
        auto record = std::make_unique<CSettingInt>();
        record->m_lCurrentValue = value.current;
        record->m_lDefaultValue = value.standard;
        record->m_lMin = value.minimum;
        record->m_lMax = value.maximum;
        record->m_lStep = value.step;
        record->m_lBase = value.base;
        record->m_lScale = value.scale;
        return record;
    }
    std::unique_ptr<CSetting> operator()(const ChoiceValue& value) const {
        return Chosen<CSettingEnum>(value);
    }
    std::unique_ptr<CSetting> operator()(const SliderValue& value) const {
        auto record = std::make_unique<CSettingSlider>();
        record->m_lCurrentValue = value.current;
        record->m_lDefaultValue = value.standard;
        record->m_wsFirstLabel = value.firstLabel;
        record->m_wsLastLabel = value.lastLabel;
        record->m_vecPossibleValues.assign(value.possible.begin(), value.possible.end());
        return record;
    }
    std::unique_ptr<CSetting> operator()(const TextValue& value) const {
        auto record = std::make_unique<CSettingString>();
        record->m_wsCurrentValue = value.current;
        record->m_wsDefaultValue = value.standard;
        record->m_wsMaxLength = value.maximumLength;
        return record;
    }
    std::unique_ptr<CSetting> operator()(const SelectionValue& value) const {
        return Chosen<CSettingMultiSelection>(value);
    }
    std::unique_ptr<CSetting> operator()(const TextListValue& value) const {
        auto record = std::make_unique<CSettingMultiString>();
        record->m_vecCurrentValues = value.current;
        record->m_wsDefaultValue = value.standard;
        record->m_wsMaxLength = value.maximumLength;
        return record;
    }

  private:
    template <class Record, class Value>
    static std::unique_ptr<CSetting> Chosen(const Value& value) {
        auto record = std::make_unique<Record>();
        record->m_lCurrentValue = value.current;
        record->m_lDefaultValue = value.standard;
        FillChoices(*record, value.choices);
        return record;
    }
};

bool SameKeyword(std::wstring_view left, std::wstring_view right) noexcept {
    const auto fold = [](wchar_t c) {
        return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [fold](wchar_t a, wchar_t b) { return fold(a) == fold(b); });
}

template <class Settings>
auto Find(Settings& settings, std::wstring_view keyword) noexcept -> decltype(settings.data()) {
    const auto found = std::find_if(settings.begin(), settings.end(), [keyword](const Setting& each) {
        return SameKeyword(each.keyword, keyword);
    });
    return found == settings.end() ? nullptr : &*found;
}

} // namespace

Setting SettingFromRecord(CSetting&& record) {
    return {SettingId(std::move(record.m_wsPath)),
            std::move(record.m_wsCaption),
            std::move(record.m_wsDescription),
            std::move(record.m_wsMiniHelp),
            std::move(record.m_wsExposeLevel),
            record.m_bWritable,
            record.m_bGrouped ? std::optional<std::int32_t>(record.m_lGroupId) : std::nullopt,
            ValueOf(record)};
}

std::unique_ptr<CSetting> ToRecord(const Setting& setting) {
    std::unique_ptr<CSetting> record = std::visit(RecordMaker(), setting.value);
    record->m_wsPath = setting.id.Path();
    record->m_wsCaption = setting.keyword;
    record->m_wsDescription = setting.description;
    record->m_wsMiniHelp = setting.help;
    record->m_wsExposeLevel = setting.exposeLevel;
    record->m_bWritable = setting.writable;
    record->m_bGrouped = setting.group.has_value();
    record->m_lGroupId = setting.group.value_or(0);
    return record;
}

const Setting* FindSetting(const std::vector<Setting>& settings, std::wstring_view keyword) noexcept {
    return Find(settings, keyword);
}

Setting* FindSetting(std::vector<Setting>& settings, std::wstring_view keyword) noexcept {
    return Find(settings, keyword);
}

std::wstring CurrentText(const Setting& setting) {
    struct Writer {
        std::wstring operator()(const TextValue& value) const { return value.current; }
        std::wstring operator()(const TextListValue& value) const {
            std::wstring text;
            for (const std::wstring& each : value.current) {
                text += (text.empty() ? L"" : L",") + each;
            }
            return text;
        }
        std::wstring operator()(const NumberValue& value) const { return std::to_wstring(value.current); }
        std::wstring operator()(const ChoiceValue& value) const { return std::to_wstring(value.current); }
        std::wstring operator()(const SliderValue& value) const { return std::to_wstring(value.current); }
        std::wstring operator()(const SelectionValue& value) const { return std::to_wstring(value.current); }
    };
    return std::visit(Writer(), setting.value);
}

std::optional<std::int32_t> CurrentNumber(const Setting& setting) {
    return std::visit(
        [](const auto& value) -> std::optional<std::int32_t> {
            if constexpr (std::is_same_v<decltype(value.current), std::int32_t>) {
                return value.current;
            } else {
                return std::nullopt;
            }
        },
        setting.value);
}

bool IsJumboFrameSetting(const Setting& setting) {
    return CAdvancedSettingNames().IsSettingName(SettingName::MaxFrameSize, setting.keyword);
}

} // namespace quillet
