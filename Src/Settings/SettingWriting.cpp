// Writing a setting back, and asking the team or the VLAN whether it may be written.
#include <quillet/Quillet.h>

#include "Provider/ObjectIds.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderMethod.h"
#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

HRESULT CQuillet::SetSetting(const std::wstring& settingId, const CSetting& setting) {
    const OperationTrace trace(L"SetSetting");
    const ProviderSession session(*this, {settingId.empty(), L"(wsSettingID.empty())"});
    const ProviderInstance instance(session, settingId, L"GetObject -> wsSettingID");
    if (instance.Failed()) {
        return instance.Result();
    }
    // Takes the current value out of the setting and hands it to the write for its type.
    const auto write = [&](auto value, const auto& put, const wchar_t* failure) -> HRESULT {
        if (!setting.GetCurrentVal(value)) {
            return trace.Fail(RESULT_WBEM_FAILED, L"(rSetting.GetCurrentVal(wsCurrVal))");
        }
        const HRESULT result = put(value);
        return FAILED(result) ? trace.Fail(result, failure) : S_OK;
    };
    constexpr LONG NO_CLASS_HAS_THIS_TYPE = 5;
    constexpr const wchar_t* TEXT_FAILED =
        L"SetPropertyAsString -> pSettingInstance, L_PROP_SETTING_CURRENT_VALUE";
    switch (static_cast<LONG>(setting.GetSettingType())) {
    case CSetting::SettingTypeString:
        return write(
            std::wstring(),
            [&](const std::wstring& value) {
                return SetPropertyAsString(instance.Get(), L_PROP_SETTING_CURRENT_VALUE.name, value.c_str());
            },
            TEXT_FAILED);
    case CSetting::SettingTypeMultiString:
        return write(
            std::vector<std::wstring>(),
            [&](const std::vector<std::wstring>& values) {
                return SetPropertyAsMultiString(instance.Get(), L_PROP_SETTING_CURRENT_VALUES.name, values);
            },
            TEXT_FAILED);
    case NO_CLASS_HAS_THIS_TYPE:
        return RESULT_WBEM_FAILED;
    default:
        return write(
            LONG(),
            [&](LONG value) {
                return SetPropertyAsLong(instance.Get(), L_PROP_SETTING_CURRENT_VALUE.name, value);
            },
            L"SetPropertyAsLong -> pSettingInstance, L_PROP_SETTING_CURRENT_VALUE");
    }
}

HRESULT CQuillet::FindTeamOfAdapter(const std::wstring& adapterId, bool& isTeamed, std::wstring& teamId) {
    isTeamed = false;
    CAdapterPorts ports;
    const HRESULT result = EnumerateOtherPortOfAdapter(adapterId, ports);
    if (FAILED(result)) {
        TraceText(L"EnumerateOtherPortOfAdapter() call FAILED");
        return result;
    }
    isTeamed = CheckIfAdapterIsTeamed(adapterId, teamId, ports);
    return S_OK;
}

HRESULT CQuillet::ValidateSetSetting(const std::wstring& adapterId, bool& isTeamed,
                                     const std::wstring& settingName, LONG value, ULONGLONG& warnings) {
    const OperationTrace trace(L"ValidateSetSetting");
    warnings = 0;
    std::wstring teamId;
    const HRESULT result = FindTeamOfAdapter(adapterId, isTeamed, teamId);
    if (FAILED(result) || !isTeamed) {
        return result;
    }
    const ProviderSession session(*this);
    ProviderMethod method(session, L_CLASS_ZOREL_TEAMOFADAPTERS, L_METHOD_TEAMOFADAPTERS_VALIDATESETTING);
    return method.Put(L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_ADAPTERID, VariantOfText(adapterId))
        .Put(L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGNAME, VariantOfText(settingName))
        .Put(L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_SETTINGVALUE, VariantOfLong(value))
        .Exec(teamId, L"wsTeamID")
        .Read(L"pWbemClassObject_OutParams")
        // The line names the accessor of 32-bit numbers although the mask has 64.
        .UInt64(L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_RESULT, warnings,
                L"GetPropertyAsLong -> pWbemClassObject_OutParams, "
                L"L_PARAM_TEAMOFADAPTERS_VALIDATESETTING_RESULT")
        .Result();
}

HRESULT CQuillet::ValidateSetSettingOnVlan(const std::wstring& vlanId, const std::wstring& settingName,
                                           LONG value, ULONGLONG& warnings) {
    const OperationTrace trace(L"ValidateSetSettingOnVlan");
    warnings = 0;
    const ProviderSession session(*this, NoAdapter(vlanId)); // the line says so of a VLAN on purpose
    if (session.Failed()) {
        return session.Result();
    }
    // Callers have the path of a VLAN at hand as often as its object identifier, and a path they were given
    // also holds on a connection to another machine.
    std::wstring path = vlanId;
    if (std::wstring objectId; !ObjectIdFromPath(ObjectKind::Vlan, vlanId, objectId)) {
        const HRESULT result = GetVLANID(vlanId, path);
        if (FAILED(result)) {
            return result;
        }
    }
    ProviderMethod method(session, L_CLASS_ZOREL_VLAN, L_METHOD_VLAN_VALIDATESETTING);
    return method.Put(L_PARAM_VLAN_VALIDATESETTING_SETTINGNAME, VariantOfText(settingName))
        .Put(L_PARAM_VLAN_VALIDATESETTING_SETTINGVALUE, VariantOfLong(value))
        .Exec(path, L"wsVlanID")
        .NeedAnswer(L"Outparam of method is NULL")
        .Read(L"pWbemClassObject_OutParams")
        .UInt64(L_PARAM_VLAN_VALIDATESETTING_RESULT, warnings)
        .Result();
}
