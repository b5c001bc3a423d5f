// Enumerated settings: which value stands for enabled and disabled, and the texts of the values.
#include <quillet/Setting.h>

#include "LumDebug.h"
#include "Text.h"

#include <array>
#include <cstddef>
#include <string_view>

using quillet::EqualsIgnoringCase;
using quillet::FormatDecimal;
using quillet::ParseDecimal;

namespace {

struct Switch {
    std::wstring_view caption;
    LONG enabled;
    LONG disabled;
};

// Both values of "WaitAutoNegComplete" are 1 on purpose: it can not be disabled this way.
constexpr std::array<Switch, 23> switches{{
    {L"*RSS", 1, 0},
    {L"RssMode", 65535, 0},
    {L"EnableDca", 1, 0},
    {L"InitiatorDHCP", 1, 0},
    {L"TargetDHCP", 1, 0},
    {L"Authentication", 1, 0},
    {L"*TCPChecksumOffloadIPv4", 3, 0},
    {L"*TCPChecksumOffloadIPv6", 3, 0},
    {L"*UDPChecksumOffloadIPv4", 3, 0},
    {L"*IPChecksumOffloadIPv4", 3, 0},
    {L"LogLinkStateEvent", 51, 16},
    {L"WaitAutoNegComplete", 1, 1},
    {L"*InterruptModeration", 1, 0},
    {L"*PriorityVLANTag", 1, 0},
    {L"TcpSegmentation", 1, 0},
    {L"ChecksumTxTcp", 1, 0},
    {L"ChecksumRxTcp", 1, 0},
    {L"ChecksumRxIp", 1, 0},
    {L"ChecksumTxIp", 1, 0},
    {L"*UDPChecksumOffloadIPv6", 3, 0},
    {L"*IPsecOffloadV2", 3, 0},
    {L"BootTargets", 1, 0},
    {L"FCoEBootEnabled", 1, 0},
}};

constexpr LONG unknownCaption = -1;

LONG LookUp(const std::wstring& rwsCaption, LONG Switch::*pValue) {
    for (const Switch& entry : switches) {
        if (entry.caption == rwsCaption) {
            return entry.*pValue;
        }
    }
    return unknownCaption;
}

// The entry and exit lines of one operation.
class Trace {
  public:
    explicit Trace(const wchar_t* operation) : m_operation(operation) {
        LumTrace().Print(L"Entering CSettingEnum::%s()", m_operation);
    }
    ~Trace() { LumTrace().Print(L"Exiting CSettingEnum::%s()", m_operation); }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

  private:
    const wchar_t* m_operation;
};

// What stands in one list where the other list has the text.
std::wstring Translate(const std::vector<std::wstring>& rvecFrom, const std::vector<std::wstring>& rvecTo,
                       const std::wstring& rwsText) {
    for (std::size_t index = 0; index < rvecFrom.size(); ++index) {
        if (EqualsIgnoringCase(rvecFrom[index], rwsText)) {
            return index < rvecTo.size() ? rvecTo[index] : std::wstring();
        }
    }
    return {};
}

} // namespace

CSettingEnum::~CSettingEnum() = default;

bool CSettingEnum::GetCurrentVal(LONG& rlValue) const {
    rlValue = m_lCurrentValue;
    return true;
}

CSettingEnum* CSettingEnum::Copy() const {
    return new CSettingEnum(*this);
}

std::wstring CSettingEnum::CurrentValueToSTRING() const {
    return FormatDecimal(m_lCurrentValue);
}

void CSettingEnum::SetCurrentValue(const CSetting* pOther) {
    if (pOther != nullptr && pOther->GetSettingType() == GetSettingType()) {
        pOther->GetCurrentVal(m_lCurrentValue);
    }
}

void CSettingEnum::SetCurrentValue(const std::wstring& rwsValue) {
    m_lCurrentValue = ParseDecimal(rwsValue);
}

bool CSettingEnum::ClearValues() {
    m_lCurrentValue = 0;
    m_lDefaultValue = 0;
    m_vecPossibleValues.clear();
    m_vecDescriptionMap.clear();
    return true;
}

CSetting::tagSettingType CSettingEnum::GetSettingType() const {
    return SettingTypeEnum;
}

void CSettingEnum::SetCurrentValue(LONG lValue) {
    m_lCurrentValue = lValue;
}

LONG CSettingEnum::GetEnabledValue() const {
    const Trace trace(L"GetEnabledValue");
    const LONG lValue = LookUp(m_wsCaption, &Switch::enabled);
    if (lValue == unknownCaption) {
        LumTrace().Print(
            L"Error occurred in CSettingValues::GetEnabledValue() - -1 returned, returning 1 as a result");
        return 1;
    }
    return lValue;
}

LONG CSettingEnum::GetDisabledValue() const {
    const Trace trace(L"GetDisabledValue");
    const LONG lValue = LookUp(m_wsCaption, &Switch::disabled);
    if (lValue == unknownCaption) {
        // The text says 1 although the value is 0. Both are kept: readers of traces know the text.
        LumTrace().Print(
            L"Error occurred in CSettingValues::GetDisabledValue() - -1 returned, returning 1 as a result");
        return 0;
    }
    return lValue;
}

void CSettingEnum::Enable(bool bEnable) {
    const Trace trace(L"Enable");
    m_lCurrentValue = bEnable ? GetEnabledValue() : GetDisabledValue();
}

bool CSettingEnum::IsEnabled() const {
    const Trace trace(L"IsEnabled");
    return m_lCurrentValue == GetEnabledValue();
}

std::wstring CSettingEnum::GetDesc(const std::wstring& rwsValue) const {
    const Trace trace(L"GetDesc");
    return Translate(m_vecPossibleValues, m_vecDescriptionMap, rwsValue);
}

std::wstring CSettingEnum::GetValue(const std::wstring& rwsDesc) const {
    const Trace trace(L"GetValue");
    return Translate(m_vecDescriptionMap, m_vecPossibleValues, rwsDesc);
}

std::wstring CSettingEnum::GetDescForCurrentValue() const {
    const Trace trace(L"GetDescForCurrentValue");
    return GetDesc(GetCurrentValue());
}
