// Filling a setting of each kind from its provider instance.
#include <quillet/Quillet.h>

#include "PropertyReader.h"
#include "SafeArray.h"
#include "Trace.h"

using ATL::CComBSTR;

namespace {

constexpr const wchar_t* INSTANCE = L"pIWbemSetting";

/// Reads a list of texts, in the provider's order.
void ReadTexts(PropertyReader& read, const ProviderName& property, std::vector<std::wstring>& texts) {
    std::vector<CComBSTR> elements;
    if (read.Array(property, elements).Found()) {
        texts = TextsOf(elements);
    }
}

/// Reads a number that the record keeps as decimal text.
void ReadNumberAsText(PropertyReader& read, const ProviderName& property, std::wstring& text) {
    LONG number = 0;
    if (read.Long(property, number).Found()) {
        // std::to_wstring goes through a format and costs more than the read.
        const std::string digits = std::to_string(number);
        text.assign(digits.begin(), digits.end());
    }
}

/// An enumeration and a selection of several are described alike.
template <typename Setting>
HRESULT ReadChoice(PropertyReader& read, Setting& setting) {
    read.Long(L_PROP_SETTING_CURRENT_VALUE, setting.m_lCurrentValue)
        .Long(L_PROP_SETTING_DEFAULT_VALUE, setting.m_lDefaultValue);
    ReadTexts(read, L_PROP_SETTING_DESCRIPTION_MAP, setting.m_vecDescriptionMap);
    ReadTexts(read, L_PROP_SETTING_POSSIBLE_VALUES, setting.m_vecPossibleValues);
    return read.Result();
}

} // namespace

HRESULT CQuillet::GetSetting(IWbemClassObject* instance, CSetting* setting) {
    if (!instance || !setting) {
        TraceText(L"GetSetting -> ((pIWbemSetting == NULL) || (pSetting == NULL))");
        return E_FAIL;
    }
    PropertyReader read(instance, INSTANCE, PropertyReader::OnNull::Keep, L"GetSetting -> ");
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
        int group = setting->m_lGroupId;
        read.Int(L_PROP_SETTING_GROUP_ID, group);
        setting->m_lGroupId = group;
    }
    return read.Result();
}

HRESULT CQuillet::GetIntSetting(IWbemClassObject* instance, CSettingInt* setting) {
    PropertyReader read(instance, INSTANCE, PropertyReader::OnNull::Keep, L"GetIntSetting -> ");
    read.After(GetSetting(instance, setting));
    if (read.Failed()) {
        return read.Result();
    }
    return read.Long(L_PROP_SETTING_CURRENT_VALUE, setting->m_lCurrentValue)
        .Long(L_PROP_SETTING_DEFAULT_VALUE, setting->m_lDefaultValue)
        .Long(L_PROP_SETTING_MAX, setting->m_lMax)
        .Long(L_PROP_SETTING_MIN, setting->m_lMin)
        .Long(L_PROP_SETTING_STEP, setting->m_lStep)
        .Long(L_PROP_SETTING_BASE, setting->m_lBase)
        .Long(L_PROP_SETTING_SCALE, setting->m_lScale)
        .Result();
}

HRESULT CQuillet::GetStringSetting(IWbemClassObject* instance, CSettingString* setting) {
    PropertyReader read(instance, INSTANCE, PropertyReader::OnNull::Keep, L"GetStringSetting -> ");
    read.After(GetSetting(instance, setting));
    if (read.Failed()) {
        return read.Result();
    }
    read.String(L_PROP_SETTING_CURRENT_VALUE, setting->m_wsCurrentValue)
        .String(L_PROP_SETTING_DEFAULT_VALUE, setting->m_wsDefaultValue);
    ReadNumberAsText(read, L_PROP_SETTING_MAX_LENGTH, setting->m_wsMaxLength);
    return read.Result();
}

HRESULT CQuillet::GetEnumSetting(IWbemClassObject* instance, CSettingEnum* setting) {
    PropertyReader read(instance, INSTANCE, PropertyReader::OnNull::Keep, L"GetEnumSetting -> ");
    read.After(GetSetting(instance, setting));
    return read.Failed() ? read.Result() : ReadChoice(read, *setting);
}

HRESULT CQuillet::GetMultiSetting(IWbemClassObject* instance, CSettingMultiSelection* setting) {
    PropertyReader read(instance, INSTANCE, PropertyReader::OnNull::Keep, L"GetMultiSetting -> ");
    read.After(GetSetting(instance, setting));
    return read.Failed() ? read.Result() : ReadChoice(read, *setting);
}

HRESULT CQuillet::GetSliderSetting(IWbemClassObject* instance, CSettingSlider* setting) {
    PropertyReader read(instance, INSTANCE, PropertyReader::OnNull::Keep, L"GetSliderSetting -> ");
    read.After(GetSetting(instance, setting));
    if (read.Failed()) {
        return read.Result();
    }
    std::vector<LONG> values;
    if (read.Long(L_PROP_SETTING_CURRENT_VALUE, setting->m_lCurrentValue)
            .Long(L_PROP_SETTING_DEFAULT_VALUE, setting->m_lDefaultValue)
            // Texts on the wire; reading them as numbers converts each as decimal text.
            .Array(L_PROP_SETTING_POSSIBLE_VALUES, values)
            .Found()) {
        setting->m_vecPossibleValues = std::move(values);
    }
    return read.String(L_PROP_SETTING_FIRST_LABEL, setting->m_wsFirstLabel)
        .String(L_PROP_SETTING_LAST_LABEL, setting->m_wsLastLabel)
        .Result();
}

HRESULT CQuillet::GetMultiStringSetting(IWbemClassObject* instance, CSettingMultiString* setting) {
    PropertyReader read(instance, INSTANCE, PropertyReader::OnNull::Keep, L"GetMultiStringSetting -> ");
    read.After(GetSetting(instance, setting));
    if (read.Failed()) {
        return read.Result();
    }
    ReadTexts(read, L_PROP_SETTING_CURRENT_VALUES, setting->m_vecCurrentValues);
    read.String(L_PROP_SETTING_DEFAULT_VALUE, setting->m_wsDefaultValue);
    ReadNumberAsText(read, L_PROP_SETTING_MAX_LENGTH, setting->m_wsMaxLength);
    return read.Result();
}
