// Listing the teams, reading one, and the ways from a team to its identity and to its virtual adapter.
#include <quillet/Quillet.h>

#include "Lum2InstUtility.h"
#include "Provider/MakeRecord.h"
#include "Provider/ObjectIds.h"
#include "Provider/ProviderInstance.h"
#include "Variants/VariantValue.h"
#include "Provider/Wql.h"

using ATL::CComBSTR;

namespace {

using OnNull = PropertyReader::OnNull;

/// What trace lines call an instance of a team.
constexpr const wchar_t* TEAM_VARIABLE = L"pTeamInstance";

} // namespace

void CQuillet::ReadTeam(PropertyReader& read, CTeam& team) {
    read.When(OnNull::Fail)
        .String(L_ZOREL_PATH, team.m_wsTeamID)
        .String(L_PROP_TEAMOFADAPTERS_NAME, team.m_wsName)
        .String(L_PROP_TEAMOFADAPTERS_CAPTION, team.m_wsCaption)
        .Code(L_PROP_TEAMOFADAPTERS_TEAMINGMODE, team.m_eTeamMode, GetTeamMode)
        .Bool(L_PROP_TEAMOFADAPTERS_MFOENABLED, team.m_bMFOEnabled)
        .Bool(L_PROP_TEAMOFADAPTERS_LINKSECENABLED, team.m_bLinkSecEnabled);
}

HRESULT CQuillet::EnumerateTeams(CTeams& teams) {
    const OperationTrace trace(L"EnumerateTeams");
    const ProviderSession session(*this);
    return session
        .Enumerate(L_CLASS_ZOREL_TEAMOFADAPTERS, L"CreateInstanceEnum -> L_CLASS_ZOREL_TEAMOFADAPTERS")
        .ForEach(L"pEnumTeams -> Next", [&](IWbemClassObject* instance) {
            return AppendRecord<CTeam>(teams, L"pTeam == NULL", [&](CTeam& team) {
                PropertyReader read(instance, TEAM_VARIABLE);
                ReadTeam(read, team);
                return read.Result();
            });
        });
}

HRESULT CQuillet::GetTeamInfo(const std::wstring& teamId, CTeam& team) {
    const OperationTrace trace(L"GetTeamInfo");
    const ProviderSession session(*this, NoTeam(teamId).OnceConnected());
    const ProviderInstance instance(session, teamId, L"GetObject -> wsTeamID");
    PropertyReader read = instance.Read(TEAM_VARIABLE);
    ReadTeam(read, team);
    read.String(L_PROP_TEAMOFADAPTERS_TEAMMACADDRESS, team.m_wsTeamMacAddress)
        .Bool(L_PROP_TEAMOFADAPTERS_BOUNDTOHYPERV, team.m_bBoundToHyperV);
    // One code for whatever went wrong; the trace has the step.
    return read.Failed() ? RESULT_WBEM_FAILED : S_OK;
}

HRESULT CQuillet::GetTeamStatus(const std::wstring& teamId, CTeam::TeamStatus& status) {
    const OperationTrace trace(L"GetTeamStatus");
    const ProviderSession session(*this, NoTeam(teamId).OnceConnected());
    if (session.Failed()) {
        return session.Result();
    }
    std::wstring path;
    if (!LogicalAdapterOfTeam(teamId, path)) {
        return trace.Fail(RESULT_WBEM_FAILED, L"GetObjectIdFromTeamOfAdapPath -> wsTeamID");
    }
    const ProviderInstance adapter(session, path, L"GetObject -> bstrLogicalAdapterPath");
    if (adapter.Failed()) {
        return RESULT_WBEM_FAILED;
    }
    return SuccessOr(adapter.Read(L"pLogicalAdapterInstance")
                         .When(OnNull::Fail)
                         .IntCode(L_PROP_LOGICALETHERNETADAPTER_STATUSINFO, status)
                         .Result());
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
    const ProviderSession session(*this, NoTeam(teamId).OnceConnected());
    ProviderEnum instances =
        session.Query(Wql::SelectReferring(L_CLASS_ZOREL_NETWORKVIRTUALADAPTER.name,
                                           L_PROP_NETWORKVIRTUALADAPTER_SAMEELEMENT.name, teamId),
                      L"ExecQuery -> L_CLASS_ZOREL_NETWORKVIRTUALADAPTER");
    if (instances.Failed()) {
        return instances.Result();
    }
    ATL::CComPtr<IWbemClassObject> instance;
    if (!instances.Next(instance)) {
        // The misspelling is what readers of the trace know.
        return trace.Fail(instances.Failed() ? instances.Result() : RESULT_WBEM_FAILED,
                          L"(pNetVertualAdapterInst == NULL)");
    }
    std::wstring found;
    PropertyReader read(instance, L"pNetVertualAdapterInst");
    if (read.When(OnNull::Fail).String(L_ZOREL_PATH, found).Failed()) {
        return read.Result();
    }
    path = found.c_str();
    return S_OK;
}

bool CQuillet::CheckIfAdapterIsTeamed(const std::wstring& adapterId, std::wstring& teamId,
                                      const CAdapterPorts& ports) {
    const OperationTrace trace(L"CheckIfAdapterIsTeamed");
    for (const CAdapterPort* port : ports.m_vecItems) {
        if (port && port->m_bTeamed && NameTheSameObject(port->m_wsAdapterID, adapterId)) {
            TraceText(L"CQuillet::CheckIfAdapterIsTeamed - adapter is part of a team.");
            teamId = port->m_wsTeamID;
            return true;
        }
    }
    return false;
}
