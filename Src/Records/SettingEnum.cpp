// Enumerated settings: which value stands for enabled and disabled, and the texts of the values.
#include <quillet/Setting.h>

#include "LumDebug.h"
#include "Records/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

using quillet::EqualsIgnoringCase;

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

// What enables or disables the setting of a caption; the substitute for a caption that is not known. The
// trace always tells of a 1, even where the substitute is 0: readers of traces know the text.
LONG LookUp(const wchar_t* operation, const std::wstring& rwsCaption, LONG Switch::*pValue,
            LONG lSubstitute) {
    const Trace trace(operation);
    const auto found = std::find_if(switches.begin(), switches.end(), [&rwsCaption](const Switch& entry) {
        return entry.caption == rwsCaption;
    });
    if (found == switches.end()) {
        LumTrace().Print(L"Error occurred in CSettingValues::%s() - -1 returned, returning 1 as a result",
                         operation);
        return lSubstitute;
    }
    return (*found).*pValue;
}

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

LONG CSettingEnum::GetEnabledValue() const {
    return LookUp(L"GetEnabledValue", m_wsCaption, &Switch::enabled, 1);
}

LONG CSettingEnum::GetDisabledValue() const {
    return LookUp(L"GetDisabledValue", m_wsCaption, &Switch::disabled, 0);
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
