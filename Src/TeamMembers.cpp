// The members of a team: who they are, which role they have, and in what state they are.
#include <quillet/Quillet.h>

#include "AddRecord.h"
#include "CircularSearch.h"
#include "ObjectIds.h"
#include "ProviderInstance.h"
#include "Records/Text.h"
#include "Trace.h"
#include "Wql.h"

#include "Lum2InstUtility.h"

#include <algorithm>
#include <memory>
#include <new>

using ATL::CComPtr;

namespace {

/// Asks for the few properties that identify an adapter, as the list of adapters does.
constexpr LONG IDENTITY_ONLY = 1;
/// The priority of the primary member.
constexpr LONG PRIMARY = 1;
/// "AdapterStatus" of an adapter that works.
constexpr LONG ADAPTER_ENABLED = 1;

constexpr const wchar_t* EMPTY_TEAM = L"(wsTeamID.empty())";
constexpr const wchar_t* REFERENCE_QUERY_FAILED = L"ExecQuery -> BSTR_QUERY_REFERENCE";
constexpr const wchar_t* MEMBERSHIP_VARIABLE = L"pTeamedMemberAdapter";
constexpr const wchar_t* MEMBERSHIPS_BROKE_OFF = L"pEnumTeamedMemberAdapters -> Next";

/// "HardwareStatus": what the port itself says.
enum AdapterState : LONG { HardwareMissing = 0, DriverNotLoaded = 1, CableRemoved = 2, LinkPresent = 3 };

/// A member's status after a look at its adapter. The provider's word lags behind the port.
LONG Reconciled(LONG told, LONG state) {
    switch (state) {
    case HardwareMissing:
        return CTeamedAdapter::MemberStatusMissing;
    case DriverNotLoaded:
    case CableRemoved:
        return CTeamedAdapter::MemberStatusInactive;
    case LinkPresent:
        // An inactive member with a link may still be in its activation delay.
        return told == CTeamedAdapter::MemberStatusInactive ? told : LONG{CTeamedAdapter::MemberStatusActive};
    default:
        return told;
    }
}

/// The line for a status of the provider's; whether it is one to be reconciled.
bool TraceStatus(LONG status) {
    switch (status) {
    case CTeamedAdapter::MemberStatusActive:
        TraceText(L"QRT Returned StatusActive");
        return true;
    case CTeamedAdapter::MemberStatusInactive:
        TraceText(L"QRT Returned StatusInActive");
        return true;
    case CTeamedAdapter::MemberStatusUnknown:
        TraceText(L"QRT Returned StatusUnknown");
        return true;
    default:
        TraceText(L"Status is other than Active InActive  or UnKnown");
        return false;
    }
}

/// The object identifier of the adapter that a membership's own path names; empty when it names none.
std::wstring MemberOf(const std::wstring& membershipPath) {
    CLumWmiAutoParsedObjectPath parsed;
    if (parsed.Parse(membershipPath.c_str()) != 0) {
        return {};
    }
    const wchar_t* objectId = CZorel_EthernetAdapterMgrHelper::GetAdapterIdFromMemberAdapterPath(&parsed);
    return objectId ? objectId : L"";
}

} // namespace

HRESULT CQuillet::AppendMembers(const ProviderSession& session, const std::wstring& teamId,
                                CTeamedAdapters& members) {
    const PartialRetrieval identityOnly(session, IDENTITY_ONLY);
    ProviderEnum adapters;
    HRESULT result = session.Query(Wql::Associators(teamId, L_CLASS_ZOREL_ETHERNETADAPTER.name), adapters,
                                   L"ExecQuery -> BSTR_QUERY_ASSOCIATOR");
    if (FAILED(result)) {
        return result;
    }
    CComPtr<IWbemClassObject> adapter;
    while (adapters.Next(adapter)) {
        std::unique_ptr<CTeamedAdapter> member(new (std::nothrow) CTeamedAdapter);
        if (!member) {
            TraceText(L"pTeamedAdapter == NULL");
            return E_FAIL;
        }
        PropertyReader read(adapter, L"pAdapterInstance", PropertyReader::OnNull::Fail);
        if (read.String(L_ZOREL_PATH, member->m_wsAdapterID).Failed()) {
            return read.Result();
        }
        member->m_wsTeamID = teamId;
        TraceText(L"Got UniqueId and team ID");
        // An adapter without a name is a member all the same.
        read.When(PropertyReader::OnNull::Note)
            .String(L_PROP_ETHERNETADAPTER_CAPTION, member->m_wsCaption)
            .String(L_PROP_ETHERNETADAPTER_ORIGNAME, member->m_wsDisplayName)
            .String(L_PROP_ETHERNETADAPTER_DEVICEID, member->m_wsDeviceID);
        if (read.Failed()) {
            return read.Result();
        }
        const ProviderInstance team(session, teamId, L"GetObject -> wsTeamID");
        if (team.Failed()) {
            return RESULT_WBEM_FAILED;
        }
        result = team.Read(L"pTeamInstance", PropertyReader::OnNull::Note)
                     .String(L_PROP_TEAMOFADAPTERS_CAPTION, member->m_wsTeamCaption)
                     .Result();
        if (FAILED(result)) {
            return result;
        }
        AddRecord(members, std::move(member));
    }
    if (FAILED(adapters.Result())) {
        TraceText(L"pEnumAdapters -> Next");
        return adapters.Result();
    }
    return S_OK;
}

HRESULT CQuillet::ReadMembership(IWbemClassObject* membership, CTeamedAdapter& member) {
    LONG status = CTeamedAdapter::MemberStatusUnknown;
    PropertyReader read(membership, MEMBERSHIP_VARIABLE);
    read.Long(L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION, member.m_lMemberRole)
        .Long(L_PROP_TEAMEDMEMBERADAPTER_ADAPTERSTATUS, status);
    if (read.Failed()) {
        return read.Result();
    }
    member.m_lMemberStatus = status;
    if (read.Found() && !TraceStatus(status)) {
        return S_OK;
    }
    CAdapter adapter;
    const HRESULT result = GetAdapterDynamicInfo(member.m_wsAdapterID, adapter);
    if (FAILED(result)) {
        TraceText(L"GetAdapterDynamicInfo() call FAILED");
        return result;
    }
    member.m_lMemberStatus = Reconciled(status, adapter.m_pAdapterDynamicInfo->m_lHardwareStatus);
    return S_OK;
}

HRESULT CQuillet::GetMemberAdapters(const std::wstring& teamId, CTeamedAdapters& members) {
    const OperationTrace trace(L"GetMemberAdapters");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, EMPTY_TEAM);
    }
    // Members that the list held before are another call's.
    const std::size_t first = members.m_vecItems.size();
    HRESULT result = AppendMembers(session, teamId, members);
    if (FAILED(result)) {
        return result;
    }
    ProviderEnum memberships;
    result = session.Query(Wql::References(teamId, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name), memberships,
                           REFERENCE_QUERY_FAILED);
    CircularSearch search(members.m_vecItems.size() - first);
    CComPtr<IWbemClassObject> membership;
    while (SUCCEEDED(result) && memberships.Next(membership)) {
        std::wstring part;
        PropertyReader read(membership, MEMBERSHIP_VARIABLE, PropertyReader::OnNull::Fail);
        if (read.String(L_PROP_TEAMEDMEMBERADAPTER_PARTCOMPONENT, part).Failed()) {
            return read.Result();
        }
        const auto found = search.Find([&](std::size_t position) {
            const std::wstring& adapterId = members.m_vecItems[first + position]->m_wsAdapterID;
            return !adapterId.empty() && part.find(adapterId) != std::wstring::npos;
        });
        if (!found) {
            LumTrace().Print(L"ERROR:  Unable to locate the device ID %s in the adapter array!",
                             part.c_str());
            continue;
        }
        LumTrace().Print(L"Found adapter at index:%d", static_cast<int>(first + *found));
        result = ReadMembership(membership, *members.m_vecItems[first + *found]);
    }
    if (FAILED(result)) {
        return result;
    }
    return FAILED(memberships.Result()) ? trace.Fail(memberships.Result(), MEMBERSHIPS_BROKE_OFF) : S_OK;
}

HRESULT CQuillet::GetMemberAdaptersStatus(const std::wstring& teamId, CTeamedAdapters& members) {
    const OperationTrace trace(L"GetMemberAdaptersStatus");
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (teamId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, EMPTY_TEAM);
    }
    if (members.m_vecItems.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"rAdapters.size() <= 0");
    }
    std::vector<std::wstring> objectIds;
    for (const CTeamedAdapter* member : members.m_vecItems) {
        ObjectIdFromPath(ObjectKind::Ethernet, member ? member->m_wsAdapterID : std::wstring(),
                         objectIds.emplace_back());
    }
    ProviderEnum memberships;
    HRESULT result = session.Query(Wql::References(teamId, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name),
                                   memberships, REFERENCE_QUERY_FAILED);
    CComPtr<IWbemClassObject> membership;
    while (SUCCEEDED(result) && memberships.Next(membership)) {
        std::wstring path;
        PropertyReader read(membership, MEMBERSHIP_VARIABLE, PropertyReader::OnNull::Fail);
        if (read.String(L_ZOREL_PATH, path).Failed()) {
            return read.Result();
        }
        const std::wstring objectId = MemberOf(path);
        const auto found =
            std::find_if(objectIds.begin(), objectIds.end(), [&objectId](const std::wstring& candidate) {
                return !candidate.empty() && quillet::EqualsIgnoringCase(candidate, objectId);
            });
        if (found == objectIds.end()) {
            TraceText(L"Adapter Not Found!!!");
            continue;
        }
        result = ReadMembership(membership,
                                *members.m_vecItems[static_cast<std::size_t>(found - objectIds.begin())]);
    }
    if (FAILED(result)) {
        return result;
    }
    return FAILED(memberships.Result()) ? trace.Fail(memberships.Result(), MEMBERSHIPS_BROKE_OFF) : S_OK;
}

HRESULT CQuillet::IsPrimaryAdapter(const std::wstring& adapterId, bool& primary) {
    const OperationTrace trace(L"IsPrimaryAdapter");
    primary = false;
    const ProviderSession session(*this);
    if (FAILED(session.Result())) {
        return session.Result();
    }
    if (adapterId.empty()) {
        return trace.Fail(RESULT_WBEM_FAILED, L"(wsAdapterID.empty())");
    }
    ProviderEnum memberships;
    const HRESULT result = session.Query(Wql::References(adapterId, L_CLASS_ZOREL_TEAMEDMEMBERADAPTER.name),
                                         memberships, REFERENCE_QUERY_FAILED);
    if (FAILED(result)) {
        return result;
    }
    CComPtr<IWbemClassObject> membership;
    if (!memberships.Next(membership)) {
        return FAILED(memberships.Result()) ? trace.Fail(memberships.Result(), MEMBERSHIPS_BROKE_OFF) : S_OK;
    }
    LONG role = 0;
    PropertyReader read(membership, MEMBERSHIP_VARIABLE);
    if (read.Long(L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION, role).Failed()) {
        return read.Result();
    }
    primary = role == PRIMARY;
    return S_OK;
}

HRESULT CQuillet::GetNumberEnabledMembers(const std::wstring& teamId, int& count) {
    const OperationTrace trace(L"GetNumberEnabledMembers");
    count = 0;
    CTeamedAdapters members;
    const HRESULT result = GetMemberAdapters(teamId, members);
    if (FAILED(result)) {
        return trace.Fail(result, L"GetMemberAdapters() call FAILED");
    }
    for (const CTeamedAdapter* member : members.m_vecItems) {
        CAdapter adapter;
        if (FAILED(GetAdapterStatus(member->m_wsAdapterID, adapter))) {
            TraceText(L"GetAdapterStatus() call FAILED");
        } else if (adapter.m_pAdapterDynamicInfo->m_lAdapterStatus == ADAPTER_ENABLED) {
            ++count;
        }
    }
    return S_OK;
}
