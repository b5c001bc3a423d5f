// Listing the teams, reading one, and the ways from a team to its identity and to its virtual adapter.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "Lum2InstUtility.h"
#include "ObjectIds.h"
#include "ProviderInstance.h"
#include "Trace.h"
#include "VariantValue.h"
#include "Wql.h"

#include <memory>
#include <new>

using ATL::CComBSTR;
using ATL::CComPtr;

namespace {

/// What trace lines call an instance of a team.
constexpr const wchar_t* TEAM_VARIABLE = L"pTeamInstance";
constexpr const wchar_t* EMPTY_TEAM = L"(wsTeamID.empty())";

} // namespace

void CQuillet::ReadTeam(PropertyReader& read, CTeam& team) {
    LONG mode = 0;
    read.String(L_ZOREL_PATH, team.m_wsTeamID)
        .String(L_PROP_TEAMOFADAPTERS_NAME, team.m_wsName)
        .String(L_PROP_TEAMOFADAPTERS_CAPTION, team.m_wsCaption);
    if (read.Long(L_PROP_TEAMOFADAPTERS_TEAMINGMODE, mode).Found()) {
        team.m_eTeamMode = GetTeamMode(mode);
    }
    read.Bool(L_PROP_TEAMOFADAPTERS_MFOENABLED, team.m_bMFOEnabled)
        .Bool(L_PROP_TEAMOFADAPTERS_LINKSECENABLED, team.m_bLinkSecEnabled);
}

HRESULT CQuillet::EnumerateTeams(CTeams& teams) {
    const OperationTrace trace(L"EnumerateTeams");
    const ProviderSession session(*this);
    ProviderEnum instances;
    const HRESULT result = session.Enumerate(L_CLASS_ZOREL_TEAMOFADAPTERS, instances,
                                             L"CreateInstanceEnum -> L_CLASS_ZOREL_TEAMOFADAPTERS");
    if (FAILED(result)) {
        return result;
    }
    CComPtr<IWbemClassObject> instance;
    while (instances.Next(instance)) {
        std::unique_ptr<CTeam> team(new (std::nothrow) CTeam);
        if (!team) {
            return trace.Fail(E_FAIL, L"pTeam == NULL");
        }
        PropertyReader read(instance, TEAM_VARIABLE, PropertyReader::OnNull::Fail);
        ReadTeam(read, *team);
        if (read.Failed()) {
            return read.Result();
        }
        AddRecord(teams, std::move(team));
    }
    // An enumeration that broke off is not a shorter list of teams.
    return FAILED(instances.Result()) ? trace.Fail(instances.Result(), L"pEnumTeams -> Next") : S_OK;
}

HRESULT CQuillet::GetTeamInfo(const std::wstring& teamId, CTeam& team) {
    const OperationTrace trace(L"GetTeamInfo");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, EMPTY_TEAM);
    }
    const ProviderInstance instance(session, teamId, L"GetObject -> wsTeamID");
    PropertyReader read = instance.Read(TEAM_VARIABLE, PropertyReader::OnNull::Fail);
    ReadTeam(read, team);
    read.String(L_PROP_TEAMOFADAPTERS_TEAMMACADDRESS, team.m_wsTeamMacAddress)
        .Bool(L_PROP_TEAMOFADAPTERS_BOUNDTOHYPERV, team.m_bBoundToHyperV);
    // One code for whatever went wrong; the trace has the step.
    return read.Failed() ? RESULT_WBEM_FAILED : S_OK;
}

HRESULT CQuillet::GetTeamStatus(const std::wstring& teamId, CTeam::TeamStatus& status) {
    const OperationTrace trace(L"GetTeamStatus");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, EMPTY_TEAM);
    }
    std::wstring path;
    if (!LogicalAdapterOfTeam(teamId, path)) {
        return trace.Fail(RESULT_WBEM_FAILED, L"GetObjectIdFromTeamOfAdapPath -> wsTeamID");
    }
    const ProviderInstance adapter(session, path, L"GetObject -> bstrLogicalAdapterPath");
    if (adapter.Failed()) {
        return RESULT_WBEM_FAILED;
    }
    int number = 0;
    PropertyReader read = adapter.Read(L"pLogicalAdapterInstance", PropertyReader::OnNull::Fail);
    if (read.Int(L_PROP_LOGICALETHERNETADAPTER_STATUSINFO, number).Failed()) {
        return read.Result();
    }
    status = static_cast<CTeam::TeamStatus>(number);
    return S_OK;
}

HRESULT CQuillet::GetTeamID(const std::wstring& objectId, std::wstring& teamId) {
    const OperationTrace trace(L"GetTeamID");
    CComBSTR path;
    CZorel_EthernetAdapterMgrHelper::MakeTeamOfAdapPathFromObjectId(1, objectId.c_str(), path);
    AddNameSpace(TextOf(path), teamId);
    return S_OK;
}

HRESULT CQuillet::GetTeamsEthernetAdapterPath(const std::wstring& teamId, _bstr_t& path) {
    const OperationTrace trace(L"GetTeamsEthernetAdapterPath");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, EMPTY_TEAM);
    }
    ProviderEnum instances;
    const HRESULT result =
        session.Query(Wql::SelectReferring(L_CLASS_ZOREL_NETWORKVIRTUALADAPTER.name,
                                           L_PROP_NETWORKVIRTUALADAPTER_SAMEELEMENT.name, teamId),
                      instances, L"ExecQuery -> L_CLASS_ZOREL_NETWORKVIRTUALADAPTER");
    if (FAILED(result)) {
        return result;
    }
    CComPtr<IWbemClassObject> instance;
    if (!instances.Next(instance)) {
        // The misspelling is what readers of the trace know.
        return trace.Fail(FAILED(instances.Result()) ? instances.Result() : RESULT_WBEM_FAILED,
                          L"(pNetVertualAdapterInst == NULL)");
    }
    std::wstring found;
    PropertyReader read(instance, L"pNetVertualAdapterInst", PropertyReader::OnNull::Fail);
    if (read.String(L_ZOREL_PATH, found).Failed()) {
        return read.Result();
    }
    path = found.c_str();
    return S_OK;
}

bool CQuillet::CheckIfAdapterIsTeamed(const std::wstring& adapterId, std::wstring& teamId,
                                      const CAdapterPorts& ports) {
    const OperationTrace trace(L"CheckIfAdapterIsTeamed");
    for (const CAdapterPort* port : ports.m_vecItems) {
        if (port && port->m_bTeamed && port->m_wsAdapterID == adapterId) {
            TraceText(L"CQuillet::CheckIfAdapterIsTeamed - adapter is part of a team.");
            teamId = port->m_wsTeamID;
            return true;
        }
    }
    return false;
}
