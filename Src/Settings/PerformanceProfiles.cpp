// Performance profiles: the setting "PerformanceProfile" as a list, and leaving the one for virtual machines.
#include <quillet/Quillet.h>

#include "Lum2InstUtility.h"
#include "Provider/MakeRecord.h"
#include "Records/Text.h"
#include "Provider/ResultCodes.h"

#include <algorithm>

namespace {

constexpr const wchar_t* PROFILE_SETTING = L"PerformanceProfile";
/// Errors of a client set are traced under the name of the facade.
constexpr const wchar_t* SOURCE = L".\\Src\\Quillet";

CPerformanceProfile* FindProfile(const CPerformanceProfiles& profiles, ePERFORMANCE_PROFILE number) {
    const auto found =
        std::find_if(profiles.m_vecItems.begin(), profiles.m_vecItems.end(),
                     [=](const CPerformanceProfile* profile) { return profile->m_eProfile == number; });
    return found != profiles.m_vecItems.end() ? *found : nullptr;
}

/// A client set for changes that are made one after another: opened before the first, and closed on every
/// path, also when an exception leaves between them.
class LazyClientSet {
  public:
    explicit LazyClientSet(CQuillet& quillet) : m_quillet(quillet) {}
    ~LazyClientSet() {
        try {
            Close();
        } catch (...) {
            // Whatever it was, something else is on its way already.
        }
    }
    LazyClientSet(const LazyClientSet&) = delete;
    LazyClientSet& operator=(const LazyClientSet&) = delete;

    /// Opens it unless it is open.
    HRESULT Open() {
        const HRESULT result = m_isOpen ? S_OK : m_quillet.BeginApply();
        if (FAILED(result)) {
            LumTrace().Error(SOURCE, __LINE__, L"BeginApply() call FAILED");
        } else {
            m_isOpen = true;
        }
        return result;
    }
    /// Closes it if it is open.
    HRESULT Close() {
        if (!m_isOpen) {
            return S_OK;
        }
        bool reboot = false;
        const HRESULT result = m_quillet.ApplyDone(reboot);
        m_isOpen =
            false; // only now: an exception leaves the set open, and the end of the scope tries once more
        LumTrace().Print(L"CAdvSettingPage::ChangeAllAdapterProfilesFromHyperV() bReboot %d", reboot ? 1 : 0);
        if (FAILED(result)) {
            LumTrace().Error(SOURCE, __LINE__, L"ApplyDone() call FAILED");
        }
        return result;
    }

  private:
    CQuillet& m_quillet;
    bool m_isOpen = false;
};

} // namespace

HRESULT CQuillet::RefreshProfileSetting(const std::wstring& adapterId, CSettingEnum& setting) {
    std::wstring objectId;
    GetGUI(adapterId, objectId); // without an identifier the refresh fails, and says so
    setting.m_wsCaption = PROFILE_SETTING;
    return GetAdapterSettingAsync(CLumString(objectId), &setting);
}

HRESULT CQuillet::AppendProfiles(const CSettingEnum& setting, CPerformanceProfiles& profiles) {
    for (std::size_t i = 0; i < setting.m_vecPossibleValues.size(); ++i) {
        if (i >= setting.m_vecDescriptionMap.size()) {
            TraceText(L"GetAdapterProfiles() - DescriptionMap is shorter than PossibleValues");
            return E_FAIL;
        }
        const auto fill = [&](CPerformanceProfile& profile) {
            profile.m_wsDescription = setting.m_vecDescriptionMap[i];
            profile.m_eProfile =
                static_cast<ePERFORMANCE_PROFILE>(quillet::ParseDecimal(setting.m_vecPossibleValues[i]));
            profile.m_bIsCurrent = setting.m_lCurrentValue == profile.m_eProfile;
            return S_OK;
        };
        const HRESULT result = AppendRecord<CPerformanceProfile>(profiles, L"pProfile == NULL", fill);
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

HRESULT CQuillet::GetAdapterProfiles(const std::wstring& adapterId, CPerformanceProfiles& profiles) {
    // The closing line is that of the entry, as those who read traces know it.
    const OperationTrace trace(L"Entering CQuillet::GetAdapterProfiles",
                               L"Entering CQuillet::GetAdapterProfiles");
    if (adapterId.empty()) {
        return trace.Fail(E_FAIL, L"((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterCapabilities))");
    }
    profiles.RemoveAll();
    std::wstring objectId;
    if (FAILED(GetGUI(adapterId, objectId))) {
        return trace.Fail(RESULT_WBEM_FAILED, L"GetAdapterProfiles() - error getting the adapter guid");
    }
    CSettingEnum setting;
    setting.m_wsCaption = PROFILE_SETTING;
    if (FAILED(GetAdapterSettingAsync(CLumString(objectId), &setting))) {
        return trace.Fail(RESULT_WBEM_FAILED,
                          L"GetAdapterProfiles() - error calling GetAdapterSettingAsync()");
    }
    return AppendProfiles(setting, profiles);
}

bool CQuillet::IsPerformanceProfileSupported(const CPerformanceProfiles* profiles) {
    TraceText(L"Entry CQuillet::IsPerformanceProfileSupported()");
    const bool supported = profiles && !profiles->m_vecItems.empty() && profiles->m_vecItems.front() &&
                           profiles->m_vecItems.front()->m_eProfile != PERFORMANCE_PROFILE_NOT_SUPPORTED;
    LumTrace().Print(L"Exit CQuillet::IsPerformanceProfileSupported()=%d", supported ? 1 : 0);
    return supported;
}

bool CQuillet::IsCurrentPerformanceProfileCustom(const CPerformanceProfiles* profiles) {
    // The lines leave out the word "Current".
    TraceText(L"Entry CQuillet::IsPerformanceProfileCustom()");
    const bool custom = IsPerformanceProfileSupported(profiles) &&
                        std::any_of(profiles->m_vecItems.begin(), profiles->m_vecItems.end(),
                                    [](const CPerformanceProfile* profile) {
                                        return profile && profile->m_eProfile == PERFORMANCE_PROFILE_CUSTOM &&
                                               profile->m_bIsCurrent;
                                    });
    LumTrace().Print(L"Exit CQuillet::IsPerformanceProfileCustom()=%d", custom ? 1 : 0);
    return custom;
}

HRESULT CQuillet::ChangeAllAdapterProfilesFromHyperV(ePERFORMANCE_PROFILE newProfile) {
    const OperationTrace trace(L"ChangeAllAdapterProfilesFromHyperV");
    CAdapters adapters;
    HRESULT result = EnumerateAdapters(adapters);
    if (FAILED(result)) {
        return trace.Fail(result, L"EnumerateAdapters failed");
    }
    HRESULT firstFailure = S_OK;
    const auto keep = [&](HRESULT code) {
        if (FAILED(code) && SUCCEEDED(firstFailure)) {
            firstFailure = code;
        }
    };
    LazyClientSet clientSet(*this);
    for (const CAdapter* adapter : adapters.m_vecItems) {
        CSettingEnum setting;
        if (FAILED(RefreshProfileSetting(adapter->m_wsAdapterID, setting))) {
            TraceText(L"ChangeAllAdapterProfilesFromHyperV() - error calling GetAdapterSettingAsync()");
            continue;
        }
        if (setting.m_lCurrentValue != PERFORMANCE_PROFILE_HYPERV) {
            continue;
        }
        TraceText(L"ChangeAllAdapterProfilesFromHyperV - found hyper-v profie ... seting it to standard");
        result = clientSet.Open();
        if (FAILED(result)) {
            return result;
        }
        setting.SetCurrentValue(static_cast<LONG>(newProfile));
        keep(SetSetting(setting.m_wsPath, setting));
    }
    keep(clientSet.Close());
    return firstFailure;
}

HRESULT CQuillet::GetCompatibleTeamProfilesWithAdapters(const CAdapters& adapters,
                                                        CPerformanceProfiles& profiles) {
    const OperationTrace trace(L"GetCompatibleTeamProfilesWithAdapters");
    profiles.RemoveAll();
    if (adapters.m_vecItems.empty()) {
        return trace.Fail(E_FAIL, L"(rAdapters.m_vecItems.empty())");
    }
    CPerformanceProfiles common;
    for (const CAdapter* adapter : adapters.m_vecItems) {
        CSettingEnum setting;
        HRESULT result = adapter ? RefreshProfileSetting(adapter->m_wsAdapterID, setting) : E_FAIL;
        if (result == RESULT_WBEM_NOT_FOUND) {
            return S_OK; // no such setting: there is nothing that all of them offer
        }
        CPerformanceProfiles offered;
        if (SUCCEEDED(result)) {
            result = AppendProfiles(setting, offered);
        }
        if (FAILED(result)) {
            return trace.Fail(result,
                              L"GetCompatibleTeamProfilesWithAdapters() - error reading the profiles");
        }
        if (!IsPerformanceProfileSupported(&offered)) {
            return S_OK;
        }
        if (adapter == adapters.m_vecItems.front()) {
            common = std::move(offered);
            continue;
        }
        std::erase_if(common.m_vecItems, [&](CPerformanceProfile* profile) {
            const CPerformanceProfile* same = FindProfile(offered, profile->m_eProfile);
            if (!same) {
                delete profile;
                return true;
            }
            profile->m_bIsCurrent = profile->m_bIsCurrent && same->m_bIsCurrent;
            return false;
        });
    }
    profiles = std::move(common);
    return S_OK;
}
