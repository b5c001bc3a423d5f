// The one way in for tests of what is private in the facade.
#pragma once

#include <quillet/Quillet.h>

/// Each function is the private operation of the same name. Interfaces that a caller would have to release
/// come back as owners.
struct QuilletTestAccess {
    // --- settings ---
    static HRESULT GetSettingOnTeamOrAdapter(CQuillet& quillet, const std::vector<std::wstring>& adapterIds,
                                             CSettings& settings, bool& onAll, SettingName name) {
        return quillet.GetSettingOnTeamOrAdapter(adapterIds, settings, onAll, name);
    }
    static HRESULT GetDataFromValues(CQuillet& quillet, const ProviderName& className,
                                     const ProviderName& property, LONG code, std::wstring& text) {
        return quillet.GetDataFromValues(className, property, code, text);
    }
    static HRESULT GetDataFromValueMap(CQuillet& quillet, const ProviderName& className,
                                       const ProviderName& property, LONG code, std::wstring& text) {
        return quillet.GetDataFromValueMap(className, property, code, text);
    }

    // --- settings ---
    static HRESULT GetSetting(IWbemClassObject* instance, CSetting* setting) {
        return CQuillet::GetSetting(instance, setting);
    }
    static HRESULT GetIntSetting(IWbemClassObject* instance, CSettingInt* setting) {
        return CQuillet::GetIntSetting(instance, setting);
    }
    static HRESULT GetStringSetting(IWbemClassObject* instance, CSettingString* setting) {
        return CQuillet::GetStringSetting(instance, setting);
    }
    static HRESULT GetEnumSetting(IWbemClassObject* instance, CSettingEnum* setting) {
        return CQuillet::GetEnumSetting(instance, setting);
    }
    static HRESULT GetSliderSetting(IWbemClassObject* instance, CSettingSlider* setting) {
        return CQuillet::GetSliderSetting(instance, setting);
    }
    static HRESULT GetMultiSetting(IWbemClassObject* instance, CSettingMultiSelection* setting) {
        return CQuillet::GetMultiSetting(instance, setting);
    }
    static HRESULT GetMultiStringSetting(IWbemClassObject* instance, CSettingMultiString* setting) {
        return CQuillet::GetMultiStringSetting(instance, setting);
    }

    // --- teams ---
    static CTeam::TeamMode GetTeamMode(LONG mode) { return CQuillet::GetTeamMode(mode); }
    static HRESULT GetTeamsEthernetAdapterPath(CQuillet& quillet, const std::wstring& teamId, _bstr_t& path) {
        return quillet.GetTeamsEthernetAdapterPath(teamId, path);
    }
    static bool CheckIfAdapterIsTeamed(CQuillet& quillet, const std::wstring& adapterId, std::wstring& teamId,
                                       const CAdapterPorts& ports) {
        return quillet.CheckIfAdapterIsTeamed(adapterId, teamId, ports);
    }
    static void GetNewAdaptersAddedToTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                          std::vector<std::wstring>& added) {
        CQuillet::GetNewAdaptersAddedToTeam(current, wanted, added);
    }
    static void GetCurrentAdaptersStillInNewTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                                 std::vector<std::wstring>& staying) {
        CQuillet::GetCurrentAdaptersStillInNewTeam(current, wanted, staying);
    }
    static HRESULT FillTeamAttr(CQuillet& quillet, LONG capability, CTeamWizTeamModes* modes) {
        return quillet.FillTeamAttr(capability, modes);
    }

    // --- checks of settings ---
    static bool CheckForValueMismatch(const CSettings& settings, bool exact) {
        return CQuillet::CheckForValueMismatch(settings, exact);
    }
    static bool IsScalableNetworkingPackInstalled(CQuillet& quillet, const CAdapters& adapters) {
        return quillet.IsScalableNetworkingPackInstalled(adapters);
    }
    static HRESULT GetJumboFrameSettings(CQuillet& quillet, const std::vector<std::wstring>& adapterIds,
                                         CSettings& settings, bool& onAll) {
        return quillet.GetJumboFrameSettings(adapterIds, settings, onAll);
    }
    static bool IsTeamCapableOfAdvancedSetting(CQuillet& quillet, const std::vector<std::wstring>& adapterIds,
                                               SettingName name, LONG& capable, LONG& enabled) {
        return quillet.IsTeamCapableOfAdvancedSetting(adapterIds, name, capable, enabled);
    }
    static bool IsOldTeamCapableOfSetting(CQuillet& quillet, const CTeamedAdapters& members,
                                          SettingName name) {
        return quillet.IsOldTeamCapableOfSetting(members, name);
    }

    // --- performance profiles ---
    static bool IsPerformanceProfileSupported(const CPerformanceProfiles* profiles) {
        return CQuillet::IsPerformanceProfileSupported(profiles);
    }
    static bool IsCurrentPerformanceProfileCustom(const CPerformanceProfiles* profiles) {
        return CQuillet::IsCurrentPerformanceProfileCustom(profiles);
    }

    // --- session ---
    static ATL::CComPtr<IWbemServices> GetWbemService(CQuillet& quillet) {
        return Owned(quillet.GetWbemService());
    }
    static ATL::CComPtr<IWbemContext> GetContext(CQuillet& quillet) { return Owned(quillet.GetContext()); }
    static ATL::CComPtr<IWbemClassObject> GetNetService(CQuillet& quillet) {
        return Owned(quillet.GetNetService());
    }
    static HRESULT MarshalWbemService(CQuillet& quillet, IWbemServices* service) {
        return quillet.MarshalWbemService(service);
    }
    static HRESULT MarshalWbemContext(CQuillet& quillet, IWbemContext* context) {
        return quillet.MarshalWbemContext(context);
    }
    static HRESULT MarshalNetService(CQuillet& quillet, IWbemClassObject* netService) {
        return quillet.MarshalNetService(netService);
    }
    static HRESULT RevokeWbemService(CQuillet& quillet) { return quillet.RevokeWbemService(); }
    static HRESULT RevokeWbemContext(CQuillet& quillet) { return quillet.RevokeWbemContext(); }
    static HRESULT RevokeNetService(CQuillet& quillet) { return quillet.RevokeNetService(); }
    static HRESULT CreateContext(CQuillet& quillet) { return quillet.CreateContext(); }
    static HRESULT CreateNetServices(CQuillet& quillet) { return quillet.CreateNetServices(); }
    static HRESULT SetInitialSecurityAttribute(CQuillet& quillet) {
        return quillet.SetInitialSecurityAttribute();
    }
    static std::wstring GetNamespace(CQuillet& quillet) {
        return std::wstring(static_cast<const wchar_t*>(quillet.GetNamespace()));
    }
    static std::wstring AddNameSpace(CQuillet& quillet, const std::wstring& relativePath) {
        std::wstring fullPath;
        quillet.AddNameSpace(relativePath, fullPath);
        return fullPath;
    }

    // --- property access ---
    static HRESULT GetPropertyAsBool(IWbemClassObject* instance, const wchar_t* name, bool& value,
                                     bool& isNull) {
        return CQuillet::GetPropertyAsBool(instance, name, value, isNull);
    }
    static HRESULT GetPropertyAsInt(IWbemClassObject* instance, const wchar_t* name, int& value,
                                    bool& isNull) {
        return CQuillet::GetPropertyAsInt(instance, name, value, isNull);
    }
    static HRESULT GetPropertyAsLong(IWbemClassObject* instance, const wchar_t* name, LONG& value,
                                     bool& isNull) {
        return CQuillet::GetPropertyAsLong(instance, name, value, isNull);
    }
    static HRESULT GetPropertyAsUINT64(IWbemClassObject* instance, const wchar_t* name, ULONGLONG& value,
                                       bool& isNull) {
        return CQuillet::GetPropertyAsUINT64(instance, name, value, isNull);
    }
    static HRESULT GetPropertyAsString(IWbemClassObject* instance, const wchar_t* name, _bstr_t& value,
                                       bool& isNull) {
        return CQuillet::GetPropertyAsString(instance, name, value, isNull);
    }
    static HRESULT GetPropertyArray(IWbemClassObject* instance, const wchar_t* name,
                                    std::vector<LONG>& values, int* count) {
        return CQuillet::GetPropertyArray(instance, name, values, count);
    }
    static HRESULT GetPropertyArray(IWbemClassObject* instance, const wchar_t* name,
                                    std::vector<ATL::CComBSTR>& values, int* count) {
        return CQuillet::GetPropertyArray(instance, name, values, count);
    }
    static HRESULT SetPropertyAsLong(CQuillet& quillet, IWbemClassObject* instance, const wchar_t* name,
                                     LONG value) {
        return quillet.SetPropertyAsLong(instance, name, value);
    }
    static HRESULT SetPropertyAsInt(CQuillet& quillet, IWbemClassObject* instance, const wchar_t* name,
                                    int value) {
        return quillet.SetPropertyAsInt(instance, name, value);
    }
    static HRESULT SetPropertyAsBool(CQuillet& quillet, IWbemClassObject* instance, const wchar_t* name,
                                     bool value) {
        return quillet.SetPropertyAsBool(instance, name, value);
    }
    static HRESULT SetPropertyAsString(CQuillet& quillet, IWbemClassObject* instance, const wchar_t* name,
                                       const _bstr_t& value) {
        return quillet.SetPropertyAsString(instance, name, value);
    }
    static HRESULT SetPropertyAsMultiString(CQuillet& quillet, IWbemClassObject* instance,
                                            const wchar_t* name, const std::vector<std::wstring>& values) {
        return quillet.SetPropertyAsMultiString(instance, name, values);
    }
    static HRESULT ChangeContext(IWbemContext* context, LONG mode) {
        return CQuillet::ChangeContext(context, mode);
    }

    // --- provider numbers to enumerations ---
    static CAdapterDynamicInfo::DuplexMode GetDuplex(bool bFullDuplex) {
        return CQuillet::GetDuplex(bFullDuplex);
    }
    static CAdapterDynamicInfo::LinkSpeed GetLinkSpeed(LONG lSpeed) { return CQuillet::GetLinkSpeed(lSpeed); }
    static CAdapterDynamicInfo::LinkSecStatus GetLinkSecStatus(LONG lStatus) {
        return CQuillet::GetLinkSecStatus(lStatus);
    }
    static CDataCenter::DCBStatus GetDCBStatus(LONG lStatus) { return CQuillet::GetDCBStatus(lStatus); }

    // --- VLANs ---
    static HRESULT EnumerateVLANsOfComponent(CQuillet& quillet, const _bstr_t& parentId, CVLANs& vlans) {
        return quillet.EnumerateVLANsOfComponent(parentId, vlans);
    }
    static HRESULT GetVLANInfo(const ATL::CComPtr<IWbemClassObject>& instance, CVLAN& vlan) {
        return CQuillet::GetVLANInfo(instance, vlan);
    }
    static HRESULT GetVLANService(CQuillet& quillet, const std::wstring& componentId,
                                  ATL::CComPtr<IWbemClassObject>& service) {
        return quillet.GetVLANService(componentId, service);
    }
    static HRESULT AddVLANToComponent(CQuillet& quillet, const std::wstring& componentId, CVLAN& vlan) {
        return quillet.AddVLANToComponent(componentId, vlan);
    }
    static ULONGLONG CheckForUniqueID(CQuillet& quillet, const std::wstring& parentId, bool isTeam,
                                      const CVLAN& vlan) {
        return quillet.CheckForUniqueID(parentId, isTeam, vlan);
    }

    // --- members ---
    static DWORD& ServiceCookie(CQuillet& quillet) { return quillet.m_dwService; }
    static DWORD& NetServiceCookie(CQuillet& quillet) { return quillet.m_dwNetService; }
    static DWORD& ContextCookie(CQuillet& quillet) { return quillet.m_dwContext; }
    static const std::wstring& MachineName(const CQuillet& quillet) { return quillet.m_strMachineName; }
    static ATL::CComPtr<IGlobalInterfaceTable>& InterfaceTable(CQuillet& quillet) { return quillet.m_pGIT; }
    static LONG& ClientSetId(CQuillet& quillet) { return quillet.m_lClientSetId; }
    static ATL::CComPtr<IUnknown>& Reserved1(CQuillet& quillet) { return quillet.m_pReserved1; }
    static ATL::CComPtr<IUnknown>& Reserved2(CQuillet& quillet) { return quillet.m_pReserved2; }
    static bool& VlanIsModify(CQuillet& quillet) { return quillet.m_bVlanIsModify; }

  private:
    template <class Interface>
    static ATL::CComPtr<Interface> Owned(Interface* object) {
        ATL::CComPtr<Interface> owner;
        owner.Attach(object);
        return owner;
    }
};
