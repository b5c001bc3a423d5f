// Filling a setting of each kind from its provider instance.
#include <quillet/Quillet.h>

#include "Provider/PropertyReader.h"
#include "Provider/Trace.h"

#include <charconv>
#include <limits>

namespace {

constexpr const wchar_t* kInstance = L"pIWbemSetting";

/// Reads a number that the record keeps as decimal text.
void ReadNumberAsText(PropertyReader& read, const ProviderName& property, std::wstring& text) {
    read.Code(property, text, [](LONG number) {
        // std::to_wstring goes through a format and costs more than the read.
        char digits[std::numeric_limits<LONG>::digits10 + 2];
        return std::wstring(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
    });
}

/// What all kinds have in common first, and then what is a kind's own.
template <typename Setting, typename ReadOwn>
HRESULT ReadKind(HRESULT common, Setting* setting, const wchar_t* prefix, IWbemClassObject* instance,
                 ReadOwn readOwn) {
    PropertyReader read(instance, kInstance, prefix);
    if (!read.After(common).Failed()) {
        readOwn(read, *setting);
    }
    return read.Result();
}

/// An enumeration and a selection of several are described alike.
constexpr auto kReadChoice = [](PropertyReader& read, auto& setting) {
    read.Long(L_PROP_SETTING_CURRENT_VALUE, setting.m_lCurrentValue)
        .Long(L_PROP_SETTING_DEFAULT_VALUE, setting.m_lDefaultValue)
        .Texts(L_PROP_SETTING_DESCRIPTION_MAP, setting.m_vecDescriptionMap)
        .Texts(L_PROP_SETTING_POSSIBLE_VALUES, setting.m_vecPossibleValues);
};

} // namespace

HRESULT CQuillet::GetSetting(IWbemClassObject* instance, CSetting* setting) {
    if (!instance || !setting) {
        TraceText(L"GetSetting -> ((pIWbemSetting == NULL) || (pSetting == NULL))");
        return E_FAIL;
    }
    PropertyReader read(instance, kInstance, L"GetSetting -> ");
    read.String(L_PROP_SETTING_CAPTION, setting->m_wsCaption)
        .String(L_PROP_SETTING_DESCRIPTION, setting->m_wsDescription)
        .String(L_PROP_SETTING_MINIHELP, setting->m_wsMiniHelp)
        .String(L_ZOREL_PATH, setting->m_wsPath);
    ReadNumberAsText(read, L_PROP_SETTING_EXPOSE_LEVEL, setting->m_wsExposeLevel);
    if (read.Failed()) {
        return read.Result();
    }
    setting->m_bWritable = false;
    setting->m_bGrouped = false;
    read.Bool(L_PROP_SETTING_WRITABLE, setting->m_bWritable)
        .Bool(L_PROP_SETTING_GROUPED, setting->m_bGrouped);
    if (setting->m_bGrouped) {
        read.Int(L_PROP_SETTING_GROUP_ID, setting->m_lGroupId);
    }
    return read.Result();
}

HRESULT CQuillet::GetIntSetting(IWbemClassObject* instance, CSettingInt* setting) {
    return ReadKind(GetSetting(instance, setting), setting, L"GetIntSetting -> ", instance,
                    [](PropertyReader& read, CSettingInt& number) {
                        read.Long(L_PROP_SETTING_CURRENT_VALUE, number.m_lCurrentValue)
                            .Long(L_PROP_SETTING_DEFAULT_VALUE, number.m_lDefaultValue)
                            .Long(L_PROP_SETTING_MAX, number.m_lMax)
                            .Long(L_PROP_SETTING_MIN, number.m_lMin)
                            .Long(L_PROP_SETTING_STEP, number.m_lStep)
                            .Long(L_PROP_SETTING_BASE, number.m_lBase)
                            .Long(L_PROP_SETTING_SCALE, number.m_lScale);
                    });
}

HRESULT CQuillet::GetStringSetting(IWbemClassObject* instance, CSettingString* setting) {
    return ReadKind(GetSetting(instance, setting), setting, L"GetStringSetting -> ", instance,
                    [](PropertyReader& read, CSettingString& text) {
                        read.String(L_PROP_SETTING_CURRENT_VALUE, text.m_wsCurrentValue)
                            .String(L_PROP_SETTING_DEFAULT_VALUE, text.m_wsDefaultValue);
                        ReadNumberAsText(read, L_PROP_SETTING_MAX_LENGTH, text.m_wsMaxLength);
                    });
}

HRESULT CQuillet::GetEnumSetting(IWbemClassObject* instance, CSettingEnum* setting) {
    return ReadKind(GetSetting(instance, setting), setting, L"GetEnumSetting -> ", instance, kReadChoice);
}

HRESULT CQuillet::GetMultiSetting(IWbemClassObject* instance, CSettingMultiSelection* setting) {
    return ReadKind(GetSetting(instance, setting), setting, L"GetMultiSetting -> ", instance, kReadChoice);
}

HRESULT CQuillet::GetSliderSetting(IWbemClassObject* instance, CSettingSlider* setting) {
    return ReadKind(GetSetting(instance, setting), setting, L"GetSliderSetting -> ", instance,
                    [](PropertyReader& read, CSettingSlider& slider) {
                        std::vector<LONG> values;
                        read.Long(L_PROP_SETTING_CURRENT_VALUE, slider.m_lCurrentValue)
                            .Long(L_PROP_SETTING_DEFAULT_VALUE, slider.m_lDefaultValue)
                            // Texts on the wire; reading them as numbers converts each as decimal text.
                            .Array(L_PROP_SETTING_POSSIBLE_VALUES, values);
                        if (read.Found()) {
                            slider.m_vecPossibleValues = std::move(values);
                        }
                        read.String(L_PROP_SETTING_FIRST_LABEL, slider.m_wsFirstLabel)
                            .String(L_PROP_SETTING_LAST_LABEL, slider.m_wsLastLabel);
                    });
}

HRESULT CQuillet::GetMultiStringSetting(IWbemClassObject* instance, CSettingMultiString* setting) {
    return ReadKind(GetSetting(instance, setting), setting, L"GetMultiStringSetting -> ", instance,
                    [](PropertyReader& read, CSettingMultiString& texts) {
                        read.Texts(L_PROP_SETTING_CURRENT_VALUES, texts.m_vecCurrentValues)
                            .String(L_PROP_SETTING_DEFAULT_VALUE, texts.m_wsDefaultValue);
                        ReadNumberAsText(read, L_PROP_SETTING_MAX_LENGTH, texts.m_wsMaxLength);
                    });
}
