// Power-saving and wake-on-LAN options of an adapter.
#include <quillet/Quillet.h>

#include "Provider/ProviderMethod.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

namespace {

/// An option: the parameter that it travels in, and its place in the record.
template <class Record>
struct Option {
    const ProviderName& parameter;
    DWORD Record::*field;
};

/// The order in which the options travel, both ways.
constexpr Option<CAdapterPowerUsageInfo> POWER_OPTIONS[] = {
    {L_PARAM_ETHERNETADAPTER_PWR_AUTOPWRSAVEENB, &CAdapterPowerUsageInfo::m_dwAutoPowerSaveModeEnabled},
    {L_PARAM_ETHERNETADAPTER_PWR_REDUCESPEED, &CAdapterPowerUsageInfo::m_dwReduceSpeedOnPowerDown},
    {L_PARAM_ETHERNETADAPTER_PWR_SMARTPWRDOWN, &CAdapterPowerUsageInfo::m_dwSmartPowerDown},
    {L_PARAM_ETHERMETADAPTER_PWR_ASPMPWRSVR, &CAdapterPowerUsageInfo::m_dwEnhancedASPMPowerSaver},
    {L_PARAM_ETHERNETADAPTER_PWR_ACBSMODE, &CAdapterPowerUsageInfo::m_dwACBSMode},
    {L_PARAM_ETHERNETADAPTER_PWR_LNKSPDBATSVR, &CAdapterPowerUsageInfo::m_dwLinkSpeedBatterySaver},
    {L_PARAM_ETHERNETADAPTER_PWR_SYSIDLEPWRSVR, &CAdapterPowerUsageInfo::m_dwSystemIdlePowerSaver},
};
constexpr Option<CAdapterWakeOnLanInfo> WAKE_OPTIONS[] = {
    {L_PARAM_ETHERNETADAPTER_WOL_FROMPWROFF, &CAdapterWakeOnLanInfo::m_dwWakeFromPowerOff},
    {L_PARAM_ETHERNETADAPTER_WOL_LINK, &CAdapterWakeOnLanInfo::m_dwWakeOnLink},
    {L_PARAM_ETHERNETADAPTER_WOL_MAGICPKT, &CAdapterWakeOnLanInfo::m_dwWakeOnMagicPacket},
    {L_PARAM_ETHERNETADAPTER_WOL_DIRECTEDPKT, &CAdapterWakeOnLanInfo::m_dwWakeOnDirectedPacket},
    {L_PARAM_ETHERNETADAPTER_WOL_PATTERN, &CAdapterWakeOnLanInfo::m_dwWakeOnPattern},
};

template <class Record, std::size_t Size>
void ReadOptions(PropertyReader& read, const Option<Record> (&options)[Size], Record& record) {
    for (const Option<Record>& option : options) {
        // What has no value is not available.
        LONG value = static_cast<LONG>(Record::NotAvailable);
        if (read.Long(option.parameter, value).Failed()) {
            return;
        }
        record.*option.field = static_cast<DWORD>(value);
    }
}

template <class Record, std::size_t Size>
void PutOptions(ProviderMethod& method, const Option<Record> (&options)[Size], const Record& record) {
    for (const Option<Record>& option : options) {
        if (const DWORD value = record.*option.field; value != Record::NotAvailable) {
            method.Put(option.parameter, VariantOfLong(value != 0 ? 1 : 0));
        }
    }
}

} // namespace

HRESULT CQuillet::GetAdapterPowerUsageOptions(const std::wstring& adapterId, CAdapterPowerUsageInfo& info) {
    const OperationTrace trace(L"GetAdapterPowerUsageOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETPWRUSAGE);
    PropertyReader read = method.Exec(adapterId, L"wsAdapterID").Read();
    LONG mode = CAdapterPowerUsageInfo::SavePower0;
    if (read.Long(L_PARAM_ETHERNETADAPTER_PWR_SAVEPWRENB, mode).Failed()) {
        return read.Result();
    }
    info.m_eSavePower = static_cast<CAdapterPowerUsageInfo::SavePower>(mode);
    ReadOptions(read, POWER_OPTIONS, info);
    return SuccessOr(read.Verdict(L"GetAdapterPowerUsageOptions").Result());
}

HRESULT CQuillet::SetAdapterPowerUsageOptions(const std::wstring& adapterId,
                                              const CAdapterPowerUsageInfo& info) {
    const OperationTrace trace(L"SetAdapterPowerUsageOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_SETPWRUSAGE);
    if (method.Spawn().Failed()) {
        return method.Result();
    }
    const DWORD mode = info.m_eSavePower;
    if (mode > CAdapterPowerUsageInfo::SavePower2) {
        return trace.Fail(E_FAIL, L"m_eSavePower out of range");
    }
    method.Put(L_PARAM_ETHERNETADAPTER_PWR_SAVEPWRENB, VariantOfLong(static_cast<LONG>(mode)));
    PutOptions(method, POWER_OPTIONS, info);
    PropertyReader read = method.Exec(adapterId, L"wsAdapterID").Read();
    return SuccessOr(read.Verdict(L"SetAdapterPowerUsageOptions").Result());
}

HRESULT CQuillet::GetAdapterWakeOnLanOptions(const std::wstring& adapterId, CAdapterWakeOnLanInfo& info) {
    const OperationTrace trace(L"GetAdapterWakeOnLanOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_METHOD_ETHERNETADAPTER_GETWAKEONLANUSAGE);
    PropertyReader read = method.Exec(adapterId, L"wsAdapterID").Read();
    ReadOptions(read, WAKE_OPTIONS, info);
    return SuccessOr(read.Verdict(L"GetAdapterWakeOnLanOptions").Result());
}

HRESULT CQuillet::SetAdapterWakeOnLanOptions(const std::wstring& adapterId,
                                             const CAdapterWakeOnLanInfo& info) {
    const OperationTrace trace(L"SetAdapterWakeOnLanOptions");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_SETWAKEONLANUSAGE);
    PutOptions(method.Spawn(), WAKE_OPTIONS, info);
    PropertyReader read = method.Exec(adapterId, L"wsAdapterID").Read();
    return SuccessOr(read.Verdict(L"SetAdapterWakeOnLanOptions").Result());
}

HRESULT CQuillet::SetAdapterPowerManagementCapabilities(const std::wstring& adapterId) {
    const OperationTrace trace(L"SetAdapterPowerManagementCapabilities");
    const ProviderSession session(*this, NoAdapter(adapterId));
    ProviderMethod method(session, L_CLASS_ZOREL_ETHERNETADAPTER, L_METHOD_ETHERNETADAPTER_SETPOWERMGMTCAP);
    // The line names another method on purpose: whoever searches trace files knows it so.
    return SuccessOr(method
                         .Exec(adapterId, L"wsAdapterID",
                               L"ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_SETWAKEONLANUSAGE")
                         .Read()
                         .Verdict(L"SetAdapterPowerManagementCapabilities")
                         .Result());
}
