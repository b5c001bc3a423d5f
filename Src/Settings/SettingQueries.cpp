// Finding the advanced settings of an adapter, team, VLAN or boot agent.
#include <quillet/Quillet.h>

#include "Lum2InstUtility.h"
#include "Provider/MakeRecord.h"
#include "Provider/ObjectIds.h"
#include "Settings/OwnedSetting.h"
#include "Provider/ProviderInstance.h"
#include "Provider/Wql.h"

#include <algorithm>

using ATL::CComPtr;

namespace {

/// The selector that asks for every setting, and the one for the virtual-machine queues.
constexpr DWORD kAllSettings = 0xFFFFFFFF;
constexpr DWORD kVmqSettings = 256;

constexpr const wchar_t* kNoSetting = L"pSetting == NULL";
constexpr const wchar_t* kSettingsBrokeOff = L"pEnumSettings -> Next";

bool Contains(const std::vector<std::wstring>& objectIds, const std::wstring& objectId) {
    return std::any_of(objectIds.begin(), objectIds.end(),
                       [&](const std::wstring& each) { return IsSameObjectId(each, objectId); });
}

void AddOnce(std::vector<std::wstring>& objectIds, const std::wstring& objectId) {
    if (!Contains(objectIds, objectId)) {
        objectIds.push_back(objectId);
    }
}

/// Reads a setting of one kind and appends it. @param readerName what trace lines call the reader.
template <class Setting>
HRESULT Append(IWbemClassObject* instance, const ATL::CComBSTR& path, CSettings& settings,
               HRESULT (*reader)(IWbemClassObject*, Setting*), const wchar_t* readerName) {
    return AppendRecord<Setting>(settings, kNoSetting, [&](Setting& setting) {
        const HRESULT result = reader(instance, &setting);
        if (FAILED(result)) {
            TraceText(readerName);
            return result;
        }
        setting.m_wsPath.assign(path ? path.m_str : L"", path.Length());
        return S_OK;
    });
}

} // namespace

/// An owner of settings: the class of its settings, the kind of its path, and the trace text of an empty one.
struct CQuillet::SettingOwner {
    const ProviderName& settingClass;
    ObjectKind kind;
    const wchar_t* emptyId;
};

HRESULT CQuillet::GetSettingFromClassOnAdapter(const _bstr_t& className, const _bstr_t& parentId,
                                               const _bstr_t& caption, CSettings& settings, DWORD selector) {
    const OperationTrace trace(L"GetSettingFromClassOnAdapter");
    const ProviderSession session(
        *this, {className.length() == 0 || parentId.length() == 0, L"FillSettings -> Parameter Invalid"});
    if (session.Failed()) {
        return session.Result();
    }
    session.Retrieve(static_cast<LONG>(selector));
    const std::wstring query = wql::Settings(className, static_cast<const wchar_t*>(parentId),
                                             caption.length() ? static_cast<const wchar_t*>(caption) : L"");
    TraceText(query.c_str());
    return session.Query(query, L"Failed ExecQuery:")
        .ForEach(kSettingsBrokeOff,
                 [&](IWbemClassObject* instance) { return AppendSetting(instance, settings); });
}

HRESULT CQuillet::AppendSetting(IWbemClassObject* instance, CSettings& settings) {
    ATL::CComBSTR className;
    ATL::CComBSTR path;
    PropertyReader read(instance, L"pIWbemSetting");
    if (read.Text(L_ZOREL_CLASS, className).Text(L_ZOREL_PATH, path).Failed()) {
        return read.Result();
    }
    // The order decides for a name that holds two of the words.
    const std::wstring_view kind(className ? className.m_str : L"", className.Length());
    const auto isA = [kind](const wchar_t* word) { return kind.find(word) != kind.npos; };
    if (isA(L"Int")) {
        return Append(instance, path, settings, GetIntSetting, L"GetIntSetting");
    }
    if (isA(L"MultiString")) {
        return Append(instance, path, settings, GetMultiStringSetting, L"GetMultiStringSetting");
    }
    if (isA(L"String")) {
        return Append(instance, path, settings, GetStringSetting, L"GetStringSetting");
    }
    if (isA(L"Enum")) {
        return Append(instance, path, settings, GetEnumSetting, L"GetEnumSetting");
    }
    if (isA(L"Slider")) {
        return Append(instance, path, settings, GetSliderSetting, L"GetSliderSetting");
    }
    if (isA(L"Multi")) {
        return Append(instance, path, settings, GetMultiSetting, L"GetMultiSetting");
    }
    // A kind that a later provider knows must not hide the settings that are known.
    LumTrace().Print(L"PROBLEM%s", kind.data());
    return S_OK;
}

HRESULT CQuillet::GetSettingFromClassOnAdapter(const _bstr_t& className, const _bstr_t& parentId,
                                               const _bstr_t& caption, CSettings& settings) {
    return GetSettingFromClassOnAdapter(className, parentId, caption, settings, kAllSettings);
}

HRESULT CQuillet::GetSettingsOfOwner(const SettingOwner& owner, const std::wstring& id, CSettings& settings,
                                     DWORD selector) {
    if (id.empty()) {
        TraceText(owner.emptyId);
        return E_FAIL;
    }
    settings.RemoveAll();
    std::wstring objectId;
    if (!ObjectIdFromPath(owner.kind, id, objectId)) {
        return E_FAIL;
    }
    const HRESULT result = GetSettingFromClassOnAdapter(owner.settingClass.name, objectId.c_str(), _bstr_t(),
                                                        settings, selector);
    if (FAILED(result)) {
        TraceText(L"Error for -> ", owner.settingClass.symbol);
        return result;
    }
    return S_OK;
}

HRESULT CQuillet::GetAdapterSettings(const std::wstring& adapterId, CSettings& settings, DWORD selector) {
    const OperationTrace trace(L"GetAdapterSettings");
    return GetSettingsOfOwner({L_CLASS_ZOREL_ADAPTER_SETTING, ObjectKind::Adapter, L"(wsAdapterID.empty())"},
                              adapterId, settings, selector);
}

HRESULT CQuillet::GetAdapterSettings(const std::wstring& adapterId, CSettings& settings) {
    return GetAdapterSettings(adapterId, settings, kAllSettings);
}

HRESULT CQuillet::GetAdapterVmqSettings(const CLumString& adapterId, CSettings& settings) {
    const OperationTrace trace(L"GetAdapterVmqSettings");
    return GetAdapterSettings(static_cast<const wchar_t*>(adapterId), settings, kVmqSettings);
}

HRESULT CQuillet::GetTeamSettings(const std::wstring& teamId, CSettings& settings) {
    const OperationTrace trace(L"GetTeamSettings");
    return GetSettingsOfOwner({L_CLASS_ZOREL_TEAM_SETTING, ObjectKind::Team, L"(wsTeamID.empty())"}, teamId,
                              settings, kAllSettings);
}

HRESULT CQuillet::GetVlanSettings(const std::wstring& vlanId, CSettings& settings) {
    const OperationTrace trace(L"GetVlanSettings");
    return GetSettingsOfOwner({L_CLASS_ZOREL_VLAN_SETTING, ObjectKind::Vlan, L"(wsVlanID.empty())"}, vlanId,
                              settings, kAllSettings);
}

HRESULT CQuillet::GetBootAgentSettings(const std::wstring& bootAgentId, CSettings& settings) {
    const OperationTrace trace(L"GetBootAgentSettings");
    return GetSettingsOfOwner(
        {L_CLASS_ZOREL_BOOTAGENT_SETTING, ObjectKind::AdapterOrBootAgent, L"(wsBootAgentID.empty())"},
        bootAgentId, settings, kAllSettings);
}

HRESULT CQuillet::GetSpeedDuplexSetting(const std::wstring& adapterId, CSettingEnum& setting,
                                        bool standardKeywords) {
    const OperationTrace trace(L"GetSpeedDuplexSetting");
    // The lists of values are left alone: only a setting that was found replaces them.
    const CSettingEnum blank;
    static_cast<CSetting&>(setting) = static_cast<const CSetting&>(blank);
    setting.m_lCurrentValue = 0;
    setting.m_lDefaultValue = 0;
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"GetSpeedDuplexSetting() - adapter guid is invalid.");
    }
    const std::wstring keyword =
        CAdvancedSettingNames(standardKeywords).GetSettingName(SettingName::SpeedDuplex);
    if (keyword.empty()) {
        return trace.Fail(E_FAIL, L"GetSpeedDuplexSetting() - setting name is invalid.");
    }
    std::wstring objectId;
    if (!ObjectIdFromPath(ObjectKind::Adapter, adapterId, objectId)) {
        return trace.Fail(E_FAIL, L"GetSpeedDuplexSetting() - unable to get the device's guid.");
    }
    CSettings found;
    const HRESULT result = GetSettingFromClassOnAdapter(L_CLASS_ZOREL_ADAPTER_SETTING.name, objectId.c_str(),
                                                        keyword.c_str(), found);
    if (FAILED(result)) {
        return trace.Fail(result,
                          L"GetSpeedDuplexSetting() - call to GetSettingFromClassOnAdapter() failed.");
    }
    for (const CSetting* candidate : found.m_vecItems) {
        if (candidate->GetSettingType() == CSetting::SettingTypeEnum) {
            setting = *static_cast<const CSettingEnum*>(candidate);
            return S_OK;
        }
    }
    return trace.Fail(kResultWbemNotFound, L"GetSpeedDuplexSetting() - the adapter has no such setting.");
}

HRESULT CQuillet::GetAdapterSettingAsync(const CLumString& adapterId, CSetting* setting) {
    const OperationTrace trace(L"GetAdapterSettingAsync");
    if (!setting) {
        return trace.Fail(E_FAIL, L"GetAdapterSettingAsync() -> setting is invalid");
    }
    const std::wstring parent = static_cast<const wchar_t*>(adapterId);
    if (parent.empty()) {
        return trace.Fail(E_FAIL, L"GetAdapterSettingAsync() -> adapter guid is invalid");
    }
    if (setting->GetSettingType() != CSetting::SettingTypeEnum) {
        return trace.Fail(E_FAIL,
                          L"GetAdapterSettingAsync() -> this function currenlty only support ENUM settings.");
    }
    setting->ClearValues();
    if (setting->m_wsCaption.empty()) {
        return trace.Fail(E_FAIL, L"GetAdapterSettingAsync() -> setting name is invalid.");
    }
    const ProviderSession session(*this,
                                  L"GetAdapterSettingAsync() - IWbemServices or IWbemContext is invalid");
    if (session.Failed()) {
        return session.Result();
    }
    CLumString path(L"");
    path.FormatString(L"Zorel_AdapterSettingEnum.Caption='%s',ParentId='%s',ParentType='NIC'",
                      setting->m_wsCaption.c_str(), parent.c_str());
    CComPtr<IWbemClassObject> instance;
    CComPtr<IWbemCallResult> callResult;
    HRESULT result = session.Service()->GetObject(_bstr_t(static_cast<const wchar_t*>(path)), 0,
                                                  session.Context(), &instance, &callResult);
    if (SUCCEEDED(result) && callResult) {
        instance.Release();
        result = callResult->GetResultObject(static_cast<LONG>(WBEM_INFINITE), &instance);
    }
    if (SUCCEEDED(result) && !instance) {
        result = kResultWbemFailed;
    }
    if (FAILED(result)) {
        return trace.Fail(result, L"GetAdapterSettingAsync() -> call to GetObject failed.");
    }
    return GetEnumSetting(instance, static_cast<CSettingEnum*>(setting));
}

HRESULT CQuillet::FindSettings(const std::vector<std::wstring>& adapterIds, SettingName name,
                               std::vector<OwnedSetting>& found, bool& onAll) {
    const OperationTrace trace(L"GetSettingOnTeamOrAdapter");
    onAll = false;
    const ProviderSession session(*this);
    ProviderEnum instances = session.Enumerate(L_CLASS_ZOREL_ADAPTER_SETTING_ENUM,
                                               L"CreateInstanceEnum -> L_CLASS_ZOREL_ADAPTER_SETTING_ENUM");
    if (instances.Failed()) {
        return instances.Result();
    }
    std::vector<std::wstring> parents;
    for (const std::wstring& adapterId : adapterIds) {
        AddOnce(parents, ParentIdOf(adapterId));
    }

    // The first pass only looks at the owners: reading a setting whole costs ten properties, and on a machine
    // with many adapters most instances belong to others.
    TraceText(L"Pass 1");
    std::vector<std::pair<std::wstring, CComPtr<IWbemClassObject>>> owned;
    HRESULT result = instances.ForEach(kSettingsBrokeOff, [&](IWbemClassObject* instance) {
        std::wstring parent;
        PropertyReader read(instance, L"pIWbemSetting");
        read.String(L_PROP_SETTING_PARENT_ID, parent);
        if (!read.Failed() && Contains(parents, parent)) {
            owned.emplace_back(parent, instance);
        }
        return read.Result();
    });
    if (FAILED(result)) {
        return result;
    }
    TraceText(L"Pass count");
    const CAdvancedSettingNames names;
    std::vector<std::wstring> carriers;
    for (const auto& [parent, object] : owned) {
        std::unique_ptr<CSettingEnum> setting = MakeRecord<CSettingEnum>(kNoSetting);
        if (!setting) {
            return E_FAIL;
        }
        result = GetEnumSetting(object, setting.get());
        if (FAILED(result)) {
            return trace.Fail(result, L"GetEnumSetting");
        }
        if (names.IsSettingName(name, setting->m_wsCaption)) {
            AddOnce(carriers, parent);
            found.push_back({parent, std::move(setting)});
        }
    }
    onAll = carriers.size() == parents.size();
    return S_OK;
}

HRESULT CQuillet::GetSettingOnTeamOrAdapter(const std::vector<std::wstring>& adapterIds, CSettings& settings,
                                            bool& onAll, SettingName name) {
    std::vector<OwnedSetting> found;
    HRESULT result = FindSettings(adapterIds, name, found, onAll);
    for (OwnedSetting& each : found) {
        const HRESULT added = AddRecord(settings, std::move(each.setting), kNoSetting);
        result = SUCCEEDED(result) ? added : result;
    }
    return result;
}
