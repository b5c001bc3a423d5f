// Changing and removing a team: its members, mode, name, and the priority of a member.
#include <quillet/Quillet.h>

#include "Adapters/AdapterIds.h"
#include "Provider/ObjectIds.h"
#include "Provider/ProviderInstance.h"
#include "Adapters/TeamMemberships.h"
#include "Variants/VariantValue.h"

#include <algorithm>

using ATL::CComPtr;

namespace {

constexpr const wchar_t* CALL_STATUS = L"pWbemCallResult -> GetCallStatus";

} // namespace

void CQuillet::GetNewAdaptersAddedToTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                         std::vector<std::wstring>& added) {
    const OperationTrace trace(L"GetNewAdaptersAddedToTeam");
    for (const CAdapter* adapter : wanted.m_vecItems) {
        if (adapter && !HasAdapter(current, adapter->m_wsAdapterID)) {
            TraceText(L"GetNewAdaptersAddedToTeam() - new adapter added to the team!");
            added.push_back(adapter->m_wsAdapterID);
        }
    }
}

void CQuillet::GetCurrentAdaptersStillInNewTeam(const CTeamedAdapters& current, const CAdapters& wanted,
                                                std::vector<std::wstring>& staying) {
    const OperationTrace trace(L"GetCurrentAdaptersStillInNewTeam");
    for (const CTeamedAdapter* member : current.m_vecItems) {
        if (member && HasAdapter(wanted, member->m_wsAdapterID)) {
            staying.push_back(member->m_wsAdapterID);
        }
    }
}

HRESULT CQuillet::RemoveMembers(const ProviderSession& session, const std::wstring& teamId,
                                const std::vector<std::wstring>& removed) {
    if (removed.empty()) {
        return S_OK;
    }
    return Memberships(session, teamId).ForEach(MEMBERSHIPS_BROKE_OFF, [&](IWbemClassObject* membership) {
        std::wstring part;
        PropertyReader read(membership, MEMBERSHIP_VARIABLE);
        read.When(PropertyReader::OnNull::Fail).String(L_PROP_TEAMEDMEMBERADAPTER_PARTCOMPONENT, part);
        if (read.Failed() || std::none_of(removed.begin(), removed.end(), [&part](const std::wstring& each) {
                return NameTheSameObject(each, part);
            })) {
            return read.Result();
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
        return session.Delete(std::wstring(text.length() ? text.GetBSTR() : L"", text.length()),
                              L"ModifyMemberList() - DeleteInstance failed");
    });
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
    const ProviderSession session(
        *this, {teamId.empty(), L"(ModifyMemberList()- wsTeamID.empty())", RESULT_WBEM_FAILED},
        L"ModifyMemberList() - pIWbemService is NULL) or pIWbemContext is NULL");
    if (session.Failed()) {
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
    const ProviderSession session(*this, NoTeam(teamId));
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
    const ProviderSession session(*this, {memberId.empty(), L"(wsMemberID.empty())", RESULT_WBEM_FAILED});
    ProviderEnum memberships = Memberships(session, memberId);
    if (memberships.Failed()) {
        return memberships.Result();
    }
    CComPtr<IWbemClassObject> membership;
    if (!memberships.Next(membership)) {
        const HRESULT result = memberships.End(MEMBERSHIPS_BROKE_OFF);
        return FAILED(result) ? result
                              : trace.Fail(RESULT_WBEM_FAILED, L"pEnumTeamedMemberAdapters -> Next -> NULL");
    }
    const HRESULT result =
        PutProperty(membership, L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION, VariantOfLong(priority));
    return FAILED(result) ? result
                          : session.Commit(membership, L"PutInstance -> pTeamedMemberAdapter", CALL_STATUS);
}

HRESULT CQuillet::RemoveTeam(const std::wstring& teamId) {
    const OperationTrace trace(L"RemoveTeam");
    const ProviderSession session(*this, NoTeam(teamId));
    return session.Delete(teamId, L"DeleteInstance -> wsTeamID");
}
