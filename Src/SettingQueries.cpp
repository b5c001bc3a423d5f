// Finding the advanced settings of an adapter, team, VLAN or boot agent.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "Lum2InstUtility.h"
#include "ObjectIds.h"
#include "ProviderInstance.h"
#include "Trace.h"
#include "Wql.h"

#include <algorithm>
#include <memory>
#include <new>
#include <set>

using ATL::CComPtr;

namespace {

/// The selector that asks for every setting, and the one for the virtual-machine queues.
constexpr DWORD ALL_SETTINGS = 0xFFFFFFFF;
constexpr DWORD VMQ_SETTINGS = 256;

/// Makes an empty setting of one kind; null without memory.
using MakeSetting = std::unique_ptr<CSetting> (*)();

template <typename Setting>
std::unique_ptr<CSetting> Make() {
    return std::unique_ptr<CSetting>(new (std::nothrow) Setting);
}

/// The kind of a setting by its class name; null for a name that holds none of the words. The order decides
/// for one that holds two.
MakeSetting KindOfClass(const std::wstring& className) {
    struct Kind {
        const wchar_t* word;
        MakeSetting make;
    };
    static constexpr Kind kinds[] = {
        {L"Int", Make<CSettingInt>},       {L"MultiString", Make<CSettingMultiString>},
        {L"String", Make<CSettingString>}, {L"Enum", Make<CSettingEnum>},
        {L"Slider", Make<CSettingSlider>}, {L"Multi", Make<CSettingMultiSelection>},
    };
    for (const Kind& kind : kinds) {
        if (className.find(kind.word) != std::wstring::npos) {
            return kind.make;
        }
    }
    return nullptr;
}

} // namespace

/// An owner of settings: the class of its settings, the kind of its path, and the trace text of an empty one.
struct CQuillet::SettingOwner {
    const ProviderName& settingClass;
    ObjectKind kind;
    const wchar_t* emptyId;
};

HRESULT CQuillet::ReadSetting(IWbemClassObject* instance, CSetting* setting, const wchar_t*& reader) {
    switch (setting->GetSettingType()) {
    case CSetting::SettingTypeInt:
        reader = L"GetIntSetting";
        return GetIntSetting(instance, static_cast<CSettingInt*>(setting));
    case CSetting::SettingTypeEnum:
        reader = L"GetEnumSetting";
        return GetEnumSetting(instance, static_cast<CSettingEnum*>(setting));
    case CSetting::SettingTypeSlider:
        reader = L"GetSliderSetting";
        return GetSliderSetting(instance, static_cast<CSettingSlider*>(setting));
    case CSetting::SettingTypeString:
        reader = L"GetStringSetting";
        return GetStringSetting(instance, static_cast<CSettingString*>(setting));
    case CSetting::SettingTypeMultiSelection:
        reader = L"GetMultiSetting";
        return GetMultiSetting(instance, static_cast<CSettingMultiSelection*>(setting));
    case CSetting::SettingTypeMultiString:
        reader = L"GetMultiStringSetting";
        return GetMultiStringSetting(instance, static_cast<CSettingMultiString*>(setting));
    }
    reader = L"GetSetting";
    return E_FAIL;
}

HRESULT CQuillet::GetSettingFromClassOnAdapter(const _bstr_t& className, const _bstr_t& parentId,
                                               const _bstr_t& caption, CSettings& settings, DWORD selector) {
    const OperationTrace trace(L"GetSettingFromClassOnAdapter");
    if (className.length() == 0 || parentId.length() == 0) {
        return trace.Fail(E_FAIL, L"FillSettings -> Parameter Invalid");
    }
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    session.Retrieve(static_cast<LONG>(selector));
    const std::wstring query = Wql::Settings(className, static_cast<const wchar_t*>(parentId),
                                             caption.length() ? static_cast<const wchar_t*>(caption) : L"");
    TraceText(query.c_str());
    ProviderEnum instances;
    HRESULT result = session.Query(query, instances, L"Failed ExecQuery:");
    CComPtr<IWbemClassObject> instance;
    while (SUCCEEDED(result) && instances.Next(instance)) {
        result = AppendSetting(instance, settings);
    }
    if (FAILED(result)) {
        return result;
    }
    return FAILED(instances.Result()) ? trace.Fail(instances.Result(), L"pEnumSettings -> Next") : S_OK;
}

HRESULT CQuillet::AppendSetting(IWbemClassObject* instance, CSettings& settings) {
    std::wstring className;
    std::wstring path;
    PropertyReader read(instance, L"pIWbemSetting");
    if (read.String(L_ZOREL_CLASS, className).String(L_ZOREL_PATH, path).Failed()) {
        return read.Result();
    }
    const MakeSetting make = KindOfClass(className);
    if (!make) {
        // A kind that a later provider knows must not hide the settings that are known.
        LumTrace().Print(L"PROBLEM%s", className.c_str());
        return S_OK;
    }
    std::unique_ptr<CSetting> setting = make();
    if (!setting) {
        TraceText(L"pSetting == NULL");
        return E_FAIL;
    }
    const wchar_t* reader = nullptr;
    const HRESULT result = ReadSetting(instance, setting.get(), reader);
    if (FAILED(result)) {
        TraceText(reader);
        return result;
    }
    setting->m_wsPath = std::move(path);
    AddRecord(settings, std::move(setting));
    return S_OK;
}

HRESULT CQuillet::GetSettingFromClassOnAdapter(const _bstr_t& className, const _bstr_t& parentId,
                                               const _bstr_t& caption, CSettings& settings) {
    return GetSettingFromClassOnAdapter(className, parentId, caption, settings, ALL_SETTINGS);
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
    return GetSettingsOfOwner({L_CLASS_ZOREL_ADAPTER_SETTING, ObjectKind::Ethernet, L"(wsAdapterID.empty())"},
                              adapterId, settings, selector);
}

HRESULT CQuillet::GetAdapterSettings(const std::wstring& adapterId, CSettings& settings) {
    return GetAdapterSettings(adapterId, settings, ALL_SETTINGS);
}

HRESULT CQuillet::GetAdapterVmqSettings(const CLumString& adapterId, CSettings& settings) {
    const OperationTrace trace(L"GetAdapterVmqSettings");
    return GetAdapterSettings(static_cast<const wchar_t*>(adapterId), settings, VMQ_SETTINGS);
}

HRESULT CQuillet::GetTeamSettings(const std::wstring& teamId, CSettings& settings) {
    const OperationTrace trace(L"GetTeamSettings");
    return GetSettingsOfOwner({L_CLASS_ZOREL_TEAM_SETTING, ObjectKind::Team, L"(wsTeamID.empty())"}, teamId,
                              settings, ALL_SETTINGS);
}

HRESULT CQuillet::GetVlanSettings(const std::wstring& vlanId, CSettings& settings) {
    const OperationTrace trace(L"GetVlanSettings");
    return GetSettingsOfOwner({L_CLASS_ZOREL_VLAN_SETTING, ObjectKind::Vlan, L"(wsVlanID.empty())"}, vlanId,
                              settings, ALL_SETTINGS);
}

HRESULT CQuillet::GetBootAgentSettings(const std::wstring& bootAgentId, CSettings& settings) {
    const OperationTrace trace(L"GetBootAgentSettings");
    return GetSettingsOfOwner(
        {L_CLASS_ZOREL_BOOTAGENT_SETTING, ObjectKind::Ethernet, L"(wsBootAgentID.empty())"}, bootAgentId,
        settings, ALL_SETTINGS);
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
    if (!ObjectIdFromPath(ObjectKind::Ethernet, adapterId, objectId)) {
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
    return trace.Fail(RESULT_WBEM_NOT_FOUND, L"GetSpeedDuplexSetting() - the adapter has no such setting.");
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
    if (FAILED(session.Result())) {
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
        result = RESULT_WBEM_FAILED;
    }
    if (FAILED(result)) {
        return trace.Fail(result, L"GetAdapterSettingAsync() -> call to GetObject failed.");
    }
    return GetEnumSetting(instance, static_cast<CSettingEnum*>(setting));
}

HRESULT CQuillet::GetSettingOnTeamOrAdapter(const std::vector<std::wstring>& adapterIds, CSettings& settings,
                                            bool& onAll, SettingName name) {
    const OperationTrace trace(L"GetSettingOnTeamOrAdapter");
    onAll = false;
    const ProviderSession session(*this);
    ProviderEnum instances;
    HRESULT result = session.Enumerate(L_CLASS_ZOREL_ADAPTER_SETTING_ENUM, instances,
                                       L"CreateInstanceEnum -> L_CLASS_ZOREL_ADAPTER_SETTING_ENUM");
    if (FAILED(result)) {
        return result;
    }
    std::set<std::wstring> parents;
    for (const std::wstring& adapterId : adapterIds) {
        std::wstring objectId;
        parents.insert(ObjectIdFromPath(ObjectKind::Ethernet, adapterId, objectId) ? objectId : adapterId);
    }

    // The first pass only looks at the owners: reading a setting whole costs ten properties, and on a machine
    // with many adapters most instances belong to others.
    TraceText(L"Pass 1");
    std::vector<std::pair<std::wstring, CComPtr<IWbemClassObject>>> owned;
    CComPtr<IWbemClassObject> instance;
    while (instances.Next(instance)) {
        std::wstring parent;
        PropertyReader read(instance, L"pIWbemSetting");
        if (read.String(L_PROP_SETTING_PARENT_ID, parent).Failed()) {
            return read.Result();
        }
        if (parents.count(parent) != 0) {
            owned.emplace_back(parent, instance);
        }
    }
    if (FAILED(instances.Result())) {
        return trace.Fail(instances.Result(), L"pEnumSettings -> Next");
    }
    TraceText(L"Pass count");
    const CAdvancedSettingNames names;
    std::set<std::wstring> carriers;
    for (const auto& [parent, object] : owned) {
        auto setting = std::make_unique<CSettingEnum>();
        result = GetEnumSetting(object, setting.get());
        if (FAILED(result)) {
            return trace.Fail(result, L"GetEnumSetting");
        }
        if (names.IsSettingName(name, setting->m_wsCaption)) {
            carriers.insert(parent);
            AddRecord(settings, std::move(setting));
        }
    }
    onAll = carriers.size() == parents.size();
    return S_OK;
}
