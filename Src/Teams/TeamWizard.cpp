// What the team wizard offers: adapters, team modes, the best mode, and the test of the switch.
#include <quillet/Quillet.h>

#include "Adapters/CapabilityCodes.h"
#include "Provider/MakeRecord.h"
#include "Provider/ProviderInstance.h"
#include "Provider/ProviderMethod.h"
#include "Variants/SafeArray.h"
#include "Adapters/TeamMemberships.h"
#include "Variants/VariantValue.h"

#include <algorithm>

namespace {

/// What the provider is asked to retrieve for an adapter's capabilities.
constexpr LONG kCapabilitiesOnly = 16;
/// The flag of a mode whose switch can be tested.
constexpr LONG kSwitchTestSupported = 0x2000;
/// The most adapters for which switch fault tolerance is offered.
constexpr std::size_t kMostOfSwitchFaultTolerance = 2;
/// The coverage of a search whose provider does not tell it: the search went well, so it saw everything.
constexpr unsigned int kWholeCoverage = 100;

/// The capability codes that are team modes.
struct ModeCapability {
    LONG code;
    CTeam::TeamMode mode;
};
constexpr ModeCapability kModeCapabilities[] = {
    {4, CTeam::TeamMode0},  {5, CTeam::TeamMode1},  {9, CTeam::TeamMode2},  {8, CTeam::TeamMode3},
    {10, CTeam::TeamMode4}, {12, CTeam::TeamMode5}, {68, CTeam::TeamMode6},
};

bool Offers(const CTeamWizTeamModes& modes, LONG mode) {
    return std::any_of(modes.m_vecItems.begin(), modes.m_vecItems.end(),
                       [mode](const CTeamWizTeamMode* each) { return each && each->m_lTeamMode == mode; });
}

} // namespace

LONG CQuillet::TestSwitchSupport(CTeam::TeamMode mode) {
    const OperationTrace trace(L"TestSwitchSupport");
    return mode == CTeam::TeamMode4 || mode == CTeam::TeamMode5 ? kSwitchTestSupported : 0;
}

HRESULT CQuillet::FillTeamAttr(LONG capability, CTeamWizTeamModes* modes) {
    const auto known =
        std::find_if(std::begin(kModeCapabilities), std::end(kModeCapabilities),
                     [capability](const ModeCapability& each) { return each.code == capability; });
    if (!modes || known == std::end(kModeCapabilities)) {
        return S_OK; // nothing that could be added, or nowhere to add it
    }
    return AppendRecord<CTeamWizTeamMode>(*modes, L"(NULL == pTeamMode)", [&](CTeamWizTeamMode& mode) {
        mode.m_lTeamMode = known->mode;
        const HRESULT result =
            GetDataFromValues(L_CLASS_ZOREL_ETHERNETADAPTER, L_PROP_ETHERNETADAPTER_CAPABILITIES, capability,
                              mode.m_wsDescription);
        if (FAILED(result)) {
            TraceText(L"GetDataFromValues -> ", L_PROP_ETHERNETADAPTER_CAPABILITIES.symbol);
        }
        return result;
    });
}

HRESULT CQuillet::GetAdapterTeamModes(const std::wstring& adapterId, CAdapter& adapter) {
    const OperationTrace trace(L"GetAdapterTeamModes");
    // The line ends like this in every trace.
    const ProviderSession session(*this, {adapterId.empty(), L"((wsAdapterID.empty()) "});
    if (session.Failed()) {
        return session.Result();
    }
    _variant_t value;
    {
        const PartialRetrieval capabilitiesOnly(session, kCapabilitiesOnly);
        const ProviderInstance instance(session, adapterId, L"GetObject -> wsAdapterID");
        PropertyReader read = instance.Read(L"pInstanceHandle");
        if (read.Plain(L_PROP_ETHERNETADAPTER_CAPABILITIES, value).Failed()) {
            return read.Result();
        }
    }
    SAFEARRAY* array = value.vt == (VT_ARRAY | VT_I4) ? ArrayOf(value) : nullptr;
    if (!array) {
        return trace.Fail(kResultWbemFailed, L"vAdapterCapabilities.vt INVALID");
    }
    std::vector<LONG> codes;
    HRESULT result = ReadCapabilityCodes(array, codes);
    if (FAILED(result)) {
        return result;
    }
    if (adapter.m_pTeamModes) {
        adapter.m_pTeamModes->RemoveAll();
    } else {
        adapter.m_pTeamModes = MakeRecord<CTeamWizTeamModes>(L"rAdapter.m_pTeamModes == NULL").release();
        if (!adapter.m_pTeamModes) {
            return E_FAIL;
        }
    }
    for (const LONG code : codes) {
        result = FillTeamAttr(code, adapter.m_pTeamModes);
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

HRESULT CQuillet::GetCompatibleTeamModesWithAdapters(const CAdapters& adapters, CTeamWizTeamModes& modes,
                                                     bool refresh) {
    const OperationTrace trace(L"GetCompatibleTeamModesWithAdapters");
    modes.RemoveAll();
    // Views and records of our own: the given adapters stay as they are.
    std::vector<CAdapter> own(adapters.m_vecItems.size());
    std::vector<const CTeamWizTeamModes*> offered;
    for (std::size_t i = 0; i < adapters.m_vecItems.size(); ++i) {
        const CAdapter* adapter = adapters.m_vecItems[i];
        if (!adapter) {
            continue;
        }
        if (!refresh && adapter->m_pTeamModes) {
            offered.push_back(adapter->m_pTeamModes);
            continue;
        }
        const HRESULT result = GetAdapterTeamModes(adapter->m_wsAdapterID, own[i]);
        if (FAILED(result)) {
            return trace.Fail(result, L"GetAdapterTeamModes -> wsAdapterID");
        }
        offered.push_back(own[i].m_pTeamModes);
    }
    if (offered.empty()) {
        return trace.Fail(E_FAIL, L"rAdapters.size() <= 0");
    }
    for (const CTeamWizTeamMode* mode : offered.front()->m_vecItems) {
        const bool tooMany =
            mode && mode->m_lTeamMode == CTeam::TeamMode5 && offered.size() > kMostOfSwitchFaultTolerance;
        if (!mode || tooMany || Offers(modes, mode->m_lTeamMode) ||
            !std::all_of(offered.begin(), offered.end(), [mode](const CTeamWizTeamModes* each) {
                return Offers(*each, mode->m_lTeamMode);
            })) {
            continue;
        }
        constexpr const wchar_t* kFailure = L"(NULL == pTeamModeComp)";
        std::unique_ptr<CTeamWizTeamMode> compatible = MakeRecord<CTeamWizTeamMode>(kFailure, *mode);
        const HRESULT result = compatible ? AddRecord(modes, std::move(compatible), kFailure) : E_FAIL;
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

HRESULT CQuillet::GetTeamableAdapters(CAdapters& adapters) {
    const OperationTrace trace(L"GetTeamableAdapters");
    const ProviderSession session(*this);
    if (session.Failed()) {
        return session.Result();
    }
    for (CAdapter* adapter : adapters.m_vecItems) {
        if (!adapter) {
            continue;
        }
        adapter->m_bTeamed = false;
        ProviderEnum memberships = Memberships(session, adapter->m_wsAdapterID, L" Phantom adapter!!");
        if (memberships.Failed()) {
            continue;
        }
        ATL::CComPtr<IWbemClassObject> membership;
        adapter->m_bTeamed = memberships.Next(membership);
        const HRESULT result = memberships.End(kMembershipsBrokeOff);
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

HRESULT CQuillet::GetBestTeamMode(const std::wstring& teamId, CTeamWizTeamMode& mode,
                                  CTeam::TeamAutoDetectStatus& status, unsigned int& coverage) {
    const OperationTrace trace(L"GetBestTeamMode");
    const ProviderSession session(*this, NoTeam(teamId));
    ProviderMethod method(session, L_CLASS_ZOREL_TEAMOFADAPTERS, L_METHOD_TEAMOFADAPTERS_GETBESTTEAMMODE);
    PropertyReader read = method.Exec(teamId).NeedAnswer(L"Outparam of method is NULL").Read();
    LONG verdict = 0;
    if (read.Long(L_METHOD_RETURN, verdict).Failed()) {
        return read.Result();
    }
    if (verdict != 0) {
        return trace.Fail(verdict, L"(0 != lValue) -> GetBestTeamMode Method failure");
    }
    read.Code(L_PARAM_TEAM_STATUS, status).Code(L_PARAM_TEAM_PERCENTOFCOVERAGE, coverage);
    if (!read.Failed() && !read.Found()) {
        coverage = kWholeCoverage;
    }
    LONG messageId = 0;
    if (read.Long(L_PARAM_TEAM_ERRORMESSAGEID, messageId).Found()) {
        LumTrace().Print(L"GetBestTeamMode -> ErrorMessageId %ld", messageId);
    }
    if (read.Long(L_PARAM_TEAM_TEAMINGMODE, mode.m_lTeamMode).Failed()) {
        return read.Result();
    }
    const HRESULT result =
        GetDataFromValueMap(L_CLASS_ZOREL_TEAMOFADAPTERS, L_PROP_TEAMOFADAPTERS_TEAMINGMODE, mode.m_lTeamMode,
                            mode.m_wsDescription);
    return FAILED(result) ? trace.Fail(result, L"GetDataFromValueMap -> L_PROP_TEAMOFADAPTERS_TEAMINGMODE")
                          : S_OK;
}

HRESULT CQuillet::TestSwitchConfiguration(const std::wstring& teamId, CTeam::SwitchCmd command,
                                          CTeam::SwitchCmdStatus& status, std::vector<std::wstring>& causes,
                                          std::vector<std::wstring>& solutions, std::vector<int>& causeIds,
                                          std::vector<int>& solutionIds) {
    const OperationTrace trace(L"TestSwitchConfiguration");
    causes.clear();
    solutions.clear();
    causeIds.clear();
    solutionIds.clear();
    const ProviderSession session(*this, NoTeam(teamId));
    ProviderMethod method(session, L_CLASS_ZOREL_TEAMOFADAPTERS,
                          L_METHOD_TEAMOFADAPTERS_TESTSWITCHCONFIGURATION);
    std::vector<LONG> causeNumbers;
    std::vector<LONG> solutionNumbers;
    const HRESULT result = method.Put(L_PARAM_TEAM_CMD, VariantOfLong(command))
                               .Exec(teamId)
                               .Read()
                               .Code(L_PARAM_TEAM_STATUS, status)
                               .Texts(L_PARAM_TEAM_CAUSE, causes)
                               .Texts(L_PARAM_TEAM_SOLUTION, solutions)
                               .Verdict(L"TestSwitchConfiguration")
                               .Array(L_PARAM_TEAM_CAUSEMESSAGEID, causeNumbers)
                               .Array(L_PARAM_TEAM_SOLUTIONMESSAGEID, solutionNumbers)
                               .Result();
    causeIds.assign(causeNumbers.begin(), causeNumbers.end());
    solutionIds.assign(solutionNumbers.begin(), solutionNumbers.end());
    return result;
}
