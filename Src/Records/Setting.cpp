// Settings: the common part, the values of the kinds, and the look-up by caption.
#include <quillet/Setting.h>

#include "Records/Text.h"

#include <utility>

using quillet::EqualsIgnoringCase;
using quillet::FormatDecimal;
using quillet::ParseDecimal;

namespace {

std::wstring ToText(LONG lValue) {
    return FormatDecimal(lValue);
}

const std::wstring& ToText(const std::wstring& rwsValue) {
    return rwsValue;
}

std::wstring ToText(const std::vector<std::wstring>& rvecValues) {
    std::wstring text;
    for (const std::wstring& value : rvecValues) {
        if (&value != &rvecValues.front()) {
            text += L',';
        }
        text += value;
    }
    return text;
}

void FromText(const std::wstring& rwsText, LONG& rlValue) {
    rlValue = ParseDecimal(rwsText);
}

void FromText(const std::wstring& rwsText, std::wstring& rwsValue) {
    rwsValue = rwsText;
}

void FromText(const std::wstring& rwsText, std::vector<std::wstring>& rvecValues) {
    std::vector<std::wstring> values;
    std::wstring::size_type start = 0;
    std::wstring::size_type comma = rwsText.find(L',');
    // Kept on purpose: a single value without a separator is not stored, and leaves the list empty.
    if (comma != std::wstring::npos) {
        for (; comma != std::wstring::npos; comma = rwsText.find(L',', start)) {
            values.push_back(rwsText.substr(start, comma - start));
            start = comma + 1;
        }
        values.push_back(rwsText.substr(start));
    }
    // The text may be one of the list's own, so the list goes last.
    rvecValues = std::move(values);
}

template <class... TValues>
bool Clear(TValues&... rValues) {
    ((rValues = TValues()), ...);
    return true;
}

} // namespace

CSetting::~CSetting() = default;

bool CSetting::GetCurrentVal(std::vector<std::wstring>& /*rvecValues*/) const {
    return false;
}

bool CSetting::GetCurrentVal(LONG& /*rlValue*/) const {
    return false;
}

bool CSetting::GetCurrentVal(std::wstring& /*rwsValue*/) const {
    return false;
}

CSetting* CSetting::Copy() const {
    return nullptr;
}

std::wstring CSetting::CurrentValueToSTRING() const {
    return {};
}

std::wstring CSetting::GetCurrentValue() const {
    return CurrentValueToSTRING();
}

void CSetting::SetCurrentValue(const CSetting* /*pOther*/) {}

void CSetting::SetCurrentValue(const std::wstring& /*rwsValue*/) {}

LONG CSetting::GetExposeLevel() const {
    return ParseDecimal(m_wsExposeLevel);
}

bool CSetting::ClearValues() {
    return false;
}

// What every kind does with its current value. The other setting's value is asked for through its accessor,
// so that a class of the caller's own that reports one of our kinds is as good as ours.
// NOLINTBEGIN(bugprone-macro-parentheses): types cannot stand in parentheses.
#define QUILLET_DEFINE_KIND(Class, Type, TValue, Current)                                                    \
    Class::~Class() = default;                                                                               \
    bool Class::GetCurrentVal(TValue& rValue) const {                                                        \
        rValue = Current;                                                                                    \
        return true;                                                                                         \
    }                                                                                                        \
    Class* Class::Copy() const {                                                                             \
        return new Class(*this);                                                                             \
    }                                                                                                        \
    std::wstring Class::CurrentValueToSTRING() const {                                                       \
        return ToText(Current);                                                                              \
    }                                                                                                        \
    void Class::SetCurrentValue(const CSetting* pOther) {                                                    \
        if (pOther != nullptr && pOther->GetSettingType() == GetSettingType()) {                             \
            pOther->GetCurrentVal(Current);                                                                  \
        }                                                                                                    \
    }                                                                                                        \
    void Class::SetCurrentValue(const std::wstring& rwsValue) {                                              \
        FromText(rwsValue, Current);                                                                         \
    }                                                                                                        \
    CSetting::tagSettingType Class::GetSettingType() const {                                                 \
        return Type;                                                                                         \
    }
// NOLINTEND(bugprone-macro-parentheses)

QUILLET_DEFINE_KIND(CSettingInt, SettingTypeInt, LONG, m_lCurrentValue)
QUILLET_DEFINE_KIND(CSettingEnum, SettingTypeEnum, LONG, m_lCurrentValue)
QUILLET_DEFINE_KIND(CSettingSlider, SettingTypeSlider, LONG, m_lCurrentValue)
QUILLET_DEFINE_KIND(CSettingString, SettingTypeString, std::wstring, m_wsCurrentValue)
QUILLET_DEFINE_KIND(CSettingMultiSelection, SettingTypeMultiSelection, LONG, m_lCurrentValue)
QUILLET_DEFINE_KIND(CSettingMultiString, SettingTypeMultiString, std::vector<std::wstring>,
                    m_vecCurrentValues)

void CSettingInt::SetCurrentValue(LONG lValue) {
    m_lCurrentValue = lValue;
}

void CSettingEnum::SetCurrentValue(LONG lValue) {
    m_lCurrentValue = lValue;
}

bool CSettingEnum::ClearValues() {
    return Clear(m_lCurrentValue, m_lDefaultValue, m_vecPossibleValues, m_vecDescriptionMap);
}

bool CSettingSlider::ClearValues() {
    return Clear(m_lCurrentValue, m_lDefaultValue, m_wsFirstLabel, m_wsLastLabel, m_vecPossibleValues);
}

bool CSettingString::ClearValues() {
    return Clear(m_wsCurrentValue, m_wsDefaultValue, m_wsMaxLength);
}

bool CSettingMultiSelection::ClearValues() {
    return Clear(m_lCurrentValue, m_lDefaultValue, m_vecPossibleValues, m_vecDescriptionMap);
}

bool CSettingMultiString::ClearValues() {
    return Clear(m_vecCurrentValues, m_wsDefaultValue, m_wsMaxLength);
}

CSetting* CSettings::GetSettingByCaption(const std::wstring& rwsCaption) const {
    for (CSetting* pSetting : m_vecItems) {
        if (pSetting != nullptr && EqualsIgnoringCase(pSetting->m_wsCaption, rwsCaption)) {
            return pSetting;
        }
    }
    return nullptr;
}
