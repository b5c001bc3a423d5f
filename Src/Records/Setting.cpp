// Settings: the common part, and the kinds whose values need no table.
#include <quillet/Setting.h>

#include "Text.h"

#include <utility>

using quillet::EqualsIgnoringCase;
using quillet::FormatDecimal;
using quillet::ParseDecimal;

namespace {

// The other setting's value is asked for through its accessor, so that a class of the caller's own that
// reports one of our kinds is as good as ours.
template <class TValue>
void TakeValue(const CSetting& rSetting, const CSetting* pOther, TValue& rValue) {
    if (pOther != nullptr && pOther->GetSettingType() == rSetting.GetSettingType()) {
        pOther->GetCurrentVal(rValue);
    }
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

CSettingInt::~CSettingInt() = default;

bool CSettingInt::GetCurrentVal(LONG& rlValue) const {
    rlValue = m_lCurrentValue;
    return true;
}

CSettingInt* CSettingInt::Copy() const {
    return new CSettingInt(*this);
}

std::wstring CSettingInt::CurrentValueToSTRING() const {
    return FormatDecimal(m_lCurrentValue);
}

void CSettingInt::SetCurrentValue(const CSetting* pOther) {
    TakeValue(*this, pOther, m_lCurrentValue);
}

void CSettingInt::SetCurrentValue(const std::wstring& rwsValue) {
    m_lCurrentValue = ParseDecimal(rwsValue);
}

CSetting::tagSettingType CSettingInt::GetSettingType() const {
    return SettingTypeInt;
}

void CSettingInt::SetCurrentValue(LONG lValue) {
    m_lCurrentValue = lValue;
}

CSettingSlider::~CSettingSlider() = default;

bool CSettingSlider::GetCurrentVal(LONG& rlValue) const {
    rlValue = m_lCurrentValue;
    return true;
}

CSettingSlider* CSettingSlider::Copy() const {
    return new CSettingSlider(*this);
}

std::wstring CSettingSlider::CurrentValueToSTRING() const {
    return FormatDecimal(m_lCurrentValue);
}

void CSettingSlider::SetCurrentValue(const CSetting* pOther) {
    TakeValue(*this, pOther, m_lCurrentValue);
}

void CSettingSlider::SetCurrentValue(const std::wstring& rwsValue) {
    m_lCurrentValue = ParseDecimal(rwsValue);
}

bool CSettingSlider::ClearValues() {
    m_lCurrentValue = 0;
    m_lDefaultValue = 0;
    m_wsFirstLabel.clear();
    m_wsLastLabel.clear();
    m_vecPossibleValues.clear();
    return true;
}

CSetting::tagSettingType CSettingSlider::GetSettingType() const {
    return SettingTypeSlider;
}

CSettingString::~CSettingString() = default;

bool CSettingString::GetCurrentVal(std::wstring& rwsValue) const {
    rwsValue = m_wsCurrentValue;
    return true;
}

CSettingString* CSettingString::Copy() const {
    return new CSettingString(*this);
}

std::wstring CSettingString::CurrentValueToSTRING() const {
    return m_wsCurrentValue;
}

void CSettingString::SetCurrentValue(const CSetting* pOther) {
    TakeValue(*this, pOther, m_wsCurrentValue);
}

void CSettingString::SetCurrentValue(const std::wstring& rwsValue) {
    m_wsCurrentValue = rwsValue;
}

bool CSettingString::ClearValues() {
    m_wsCurrentValue.clear();
    m_wsDefaultValue.clear();
    m_wsMaxLength.clear();
    return true;
}

CSetting::tagSettingType CSettingString::GetSettingType() const {
    return SettingTypeString;
}

CSettingMultiSelection::~CSettingMultiSelection() = default;

bool CSettingMultiSelection::GetCurrentVal(LONG& rlValue) const {
    rlValue = m_lCurrentValue;
    return true;
}

CSettingMultiSelection* CSettingMultiSelection::Copy() const {
    return new CSettingMultiSelection(*this);
}

std::wstring CSettingMultiSelection::CurrentValueToSTRING() const {
    return FormatDecimal(m_lCurrentValue);
}

void CSettingMultiSelection::SetCurrentValue(const CSetting* pOther) {
    TakeValue(*this, pOther, m_lCurrentValue);
}

void CSettingMultiSelection::SetCurrentValue(const std::wstring& rwsValue) {
    m_lCurrentValue = ParseDecimal(rwsValue);
}

bool CSettingMultiSelection::ClearValues() {
    m_lCurrentValue = 0;
    m_lDefaultValue = 0;
    m_vecPossibleValues.clear();
    m_vecDescriptionMap.clear();
    return true;
}

CSetting::tagSettingType CSettingMultiSelection::GetSettingType() const {
    return SettingTypeMultiSelection;
}

CSettingMultiString::~CSettingMultiString() = default;

bool CSettingMultiString::GetCurrentVal(std::vector<std::wstring>& rvecValues) const {
    rvecValues = m_vecCurrentValues;
    return true;
}

CSettingMultiString* CSettingMultiString::Copy() const {
    return new CSettingMultiString(*this);
}

std::wstring CSettingMultiString::CurrentValueToSTRING() const {
    std::wstring text;
    for (const std::wstring& value : m_vecCurrentValues) {
        if (&value != &m_vecCurrentValues.front()) {
            text += L',';
        }
        text += value;
    }
    return text;
}

void CSettingMultiString::SetCurrentValue(const CSetting* pOther) {
    TakeValue(*this, pOther, m_vecCurrentValues);
}

void CSettingMultiString::SetCurrentValue(const std::wstring& rwsValue) {
    std::vector<std::wstring> values;
    std::wstring::size_type start = 0;
    std::wstring::size_type comma = rwsValue.find(L',');
    // Kept on purpose: a single value without a separator is not stored, and leaves the list empty.
    if (comma != std::wstring::npos) {
        for (; comma != std::wstring::npos; comma = rwsValue.find(L',', start)) {
            values.push_back(rwsValue.substr(start, comma - start));
            start = comma + 1;
        }
        values.push_back(rwsValue.substr(start));
    }
    // The text may be one of the list's own, so the list goes last.
    m_vecCurrentValues = std::move(values);
}

bool CSettingMultiString::ClearValues() {
    m_vecCurrentValues.clear();
    m_wsDefaultValue.clear();
    m_wsMaxLength.clear();
    return true;
}

CSetting::tagSettingType CSettingMultiString::GetSettingType() const {
    return SettingTypeMultiString;
}

CSettings* CSettings::Copy() const {
    return new CSettings(*this);
}

CSetting* CSettings::GetSettingByCaption(const std::wstring& rwsCaption) const {
    for (CSetting* pSetting : m_vecItems) {
        if (pSetting != nullptr && EqualsIgnoringCase(pSetting->m_wsCaption, rwsCaption)) {
            return pSetting;
        }
    }
    return nullptr;
}
