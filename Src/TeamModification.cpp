// Changing and removing a team: its members, mode, name, and the priority of a member.
#include <quillet/Quillet.h>

#include "ObjectIds.h"
#include "ProviderInstance.h"
#include "Trace.h"
#include "VariantValue.h"
#include "Wql.h"

#include <algorithm>

using ATL::CComPtr;

namespace {

constexpr const wchar_t* MEMBERSHIP_VARIABLE = L"pTeamedMemberAdapter";
constexpr const wchar_t* CALL_STATUS = L"pWbemCallResult -> GetCallStatus";

bool Contains(const CTeamedAdapters& members, const std::wstring& adapterId) {
    return std::any_of(members.m_vecItems.begin(), members.m_vecItems.end(),
                       [&](const CTeamedAdapter* each) { return each && each->m_wsAdapterID == adapterId; });
}

bool Contains(const CAdapters& adapters, const std::wstring& adapterId) {
    return std::any_of(adapters.m_vecItems.begin(), adapters.m_vecItems.end(),
                       [&](const CAdapter* each) { return each && each->m_wsAdapterID == adapterId; });
}

} // namespace

void CQuillet::GetNewAdaptersAddedToTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                         std::vector<std::wstring>& added) {
    const OperationTrace trace(L"GetNewAdaptersAddedToTeam");
    for (const CAdapter* adapter : wanted.m_vecItems) {
        if (adapter && !Contains(current, adapter->m_wsAdapterID)) {
            TraceText(L"GetNewAdaptersAddedToTeam() - new adapter added to the team!");
            added.push_back(adapter->m_wsAdapterID);
        }
    }
}

void CQuillet::GetCurrentAdaptersStillInNewTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                                std::vector<std::wstring>& staying) {
    const OperationTrace trace(L"GetCurrentAdaptersStillInNewTeam");
    for (const CTeamedAdapter* member : current.m_vecItems) {
        if (member && Contains(wanted, member->m_wsAdapterID)) {
            staying.push_back(member->m_wsAdapterID);
        }
    }
}

HRESULT CQuillet::RemoveMembers(const ProviderSession& session, const std::wstring& teamId,
                                const std::vector<std::wstring>& removed) {
    if (removed.empty()) {
        return S_OK;
    }
    ProviderEnum memberships;
    HRESULT result = session.Query(Wql::References(teamId, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name),
                                   memberships, L"ExecQuery -> BSTR_QUERY_REFERENCE");
    CComPtr<IWbemClassObject> membership;
    while (SUCCEEDED(result) && memberships.Next(membership)) {
        std::wstring part;
        PropertyReader read(membership, MEMBERSHIP_VARIABLE, PropertyReader::OnNull::Fail);
        if (read.String(L_PROP_TEAMEDMEMBERADAPTER_PARTCOMPONENT, part).Failed()) {
            return read.Result();
        }
        if (std::none_of(removed.begin(), removed.end(),
                         [&part](const std::wstring& each) { return NameTheSameObject(each, part); })) {
            continue;
        }
        _variant_t path;
        if (read.Plain(L_ZOREL_PATH, path).Failed()) {
            return read.Result();
        }
        _bstr_t text;
        if (!ReadVariant(path, text)) {
            TraceText(L"ModifyMemberList() - vPath.vt INVALID");
            return RESULT_WBEM_FAILED;
        }
        result = session.Delete(std::wstring(text.length() ? text.GetBSTR() : L"", text.length()),
                                L"ModifyMemberList() - DeleteInstance failed");
    }
    if (SUCCEEDED(result) && FAILED(memberships.Result())) {
        TraceText(L"pEnumTeamedMemberAdapters -> Next");
        result = memberships.Result();
    }
    return result;
}

HRESULT CQuillet::AddMembers(const ProviderSession& session, const std::wstring& teamId,
                             const std::vector<std::wstring>& added) {
    if (added.empty()) {
        return S_OK;
    }
    const ProviderInstance membershipClass(session, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name,
                                           L"GetObject -> L_CLASS_ZOREL_TEAMEDMEMBERADAPTER");
    if (membershipClass.Failed()) {
        return membershipClass.Result();
    }
    for (const std::wstring& adapterId : added) {
        CComPtr<IWbemClassObject> membership;
        HRESULT result = membershipClass.Get()->SpawnInstance(0, &membership);
        if (FAILED(result) || !membership) {
            TraceText(L"ModifyMemberList() - SpawnInstance failed -> pTeamMemAdapter_Instance");
            return FAILED(result) ? result : RESULT_WBEM_FAILED;
        }
        result = PutProperty(membership, L_PROP_TEAMEDMEMBERADAPTER_GROUPCOMPONENT, VariantOfText(teamId));
        if (SUCCEEDED(result)) {
            result =
                PutProperty(membership, L_PROP_TEAMEDMEMBERADAPTER_PARTCOMPONENT, VariantOfText(adapterId));
        }
        if (SUCCEEDED(result)) {
            constexpr const wchar_t* failure = L"ModifyMemberList() - PutInstance failed -> "
                                               L"pTeamMemAdapter_Instance";
            result = session.Commit(membership, failure, failure);
        }
        if (FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}

HRESULT CQuillet::ModifyMemberList(const std::wstring& teamId, const CTeamedAdapters& current,
                                   const CAdapters& wanted) {
    const OperationTrace trace(L"ModifyMemberList");
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(ModifyMemberList()- wsTeamID.empty())");
    }
    const ProviderSession session(*this,
                                  L"ModifyMemberList() - pIWbemService is NULL) or pIWbemContext is NULL");
    if (FAILED(session.Result())) {
        return session.Result();
    }
    std::vector<std::wstring> staying;
    GetCurrentAdaptersStillInNewTeam(current, wanted, staying);
    std::vector<std::wstring> removed;
    for (const CTeamedAdapter* member : current.m_vecItems) {
        if (member && std::find(staying.begin(), staying.end(), member->m_wsAdapterID) == staying.end()) {
            LumTrace().Print(L"ModifyMemberList() - deleting %s", member->m_wsAdapterID.c_str());
            removed.push_back(member->m_wsAdapterID);
        }
    }
    std::vector<std::wstring> added;
    GetNewAdaptersAddedToTeam(current, wanted, added);
    for (const std::wstring& adapterId : added) {
        LumTrace().Print(L"ModifyMemberList() - adding %s", adapterId.c_str());
    }
    // All that leave go first: a full team has no room for those that come.
    const HRESULT result = RemoveMembers(session, teamId, removed);
    return FAILED(result) ? result : AddMembers(session, teamId, added);
}

HRESULT CQuillet::ModifyTeamInfo(const std::wstring& teamId, const CTeam& team) {
    const OperationTrace trace(L"ModifyTeamInfo");
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsTeamID.empty())");
    }
    const ProviderSession session(*this);
    const ProviderInstance instance(session, teamId, L"GetObject -> wsTeamID");
    HRESULT result = instance.Put(L_PROP_TEAMOFADAPTERS_TEAMINGMODE, VariantOfLong(team.m_eTeamMode));
    if (SUCCEEDED(result)) {
        result = instance.Put(L_PROP_TEAMOFADAPTERS_CAPTION, VariantOfText(team.m_wsCaption));
    }
    return FAILED(result) ? result
                          : session.Commit(instance.Get(), L"PutInstance -> pTeamInstance", CALL_STATUS);
}

HRESULT CQuillet::SetTeamedAdapterPriority(const std::wstring& memberId, LONG priority) {
    const OperationTrace trace(L"SetTeamedAdapterPriority");
    if (memberId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsMemberID.empty())");
    }
    const ProviderSession session(*this);
    ProviderEnum memberships;
    HRESULT result = session.Query(Wql::References(memberId, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name),
                                   memberships, L"ExecQuery -> BSTR_QUERY_REFERENCE");
    if (FAILED(result)) {
        return result;
    }
    CComPtr<IWbemClassObject> membership;
    if (!memberships.Next(membership)) {
        return FAILED(memberships.Result())
                   ? trace.Fail(memberships.Result(), L"pEnumTeamedMemberAdapters -> Next")
                   : trace.Fail(RESULT_WBEM_FAILED, L"pEnumTeamedMemberAdapters -> Next -> NULL");
    }
    result = PutProperty(membership, L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION, VariantOfLong(priority));
    return FAILED(result) ? result
                          : session.Commit(membership, L"PutInstance -> pTeamedMemberAdapter", CALL_STATUS);
}

HRESULT CQuillet::RemoveTeam(const std::wstring& teamId) {
    const OperationTrace trace(L"RemoveTeam");
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsTeamID.empty())");
    }
    const ProviderSession session(*this);
    return session.Delete(teamId, L"DeleteInstance -> wsTeamID");
}
