// The members of a team: who they are, which role they have, and in what state they are.
#include <quillet/Quillet.h>

#include "Teams/CircularSearch.h"
#include "Provider/MakeRecord.h"
#include "Provider/ObjectIds.h"
#include "Provider/ProviderInstance.h"
#include "Adapters/TeamMemberships.h"

#include "Lum2InstUtility.h"

#include <algorithm>

namespace {

using OnNull = PropertyReader::OnNull;

/// Asks for the few properties that identify an adapter, as the list of adapters does.
constexpr LONG kMemberIdentity = 1;
/// The priority of the primary member.
constexpr LONG kPrimary = 1;
/// "AdapterStatus" of an adapter that works.
constexpr LONG kAdapterEnabled = 1;

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
    const PartialRetrieval identityOnly(session, kMemberIdentity);
    const auto fill = [&](IWbemClassObject* adapter, CTeamedAdapter& member) -> HRESULT {
        PropertyReader read(adapter, L"pAdapterInstance");
        if (read.When(OnNull::Fail).String(L_ZOREL_PATH, member.m_wsAdapterID).Failed()) {
            return read.Result();
        }
        member.m_wsTeamID = teamId;
        TraceText(L"Got UniqueId and team ID");
        // An adapter without a name is a member all the same.
        read.When(OnNull::Note)
            .String(L_PROP_ETHERNETADAPTER_CAPTION, member.m_wsCaption)
            .String(L_PROP_ETHERNETADAPTER_ORIGNAME, member.m_wsDisplayName)
            .String(L_PROP_ETHERNETADAPTER_DEVICEID, member.m_wsDeviceID);
        if (read.Failed()) {
            return read.Result();
        }
        const ProviderInstance team(session, teamId, L"GetObject -> wsTeamID");
        if (team.Failed()) {
            return kResultWbemFailed;
        }
        return team.Read(L"pTeamInstance")
            .When(OnNull::Note)
            .String(L_PROP_TEAMOFADAPTERS_CAPTION, member.m_wsTeamCaption)
            .Result();
    };
    return session
        .Query(wql::Associators(teamId, L_CLASS_ZOREL_ETHERNETADAPTER.name),
               L"ExecQuery -> BSTR_QUERY_ASSOCIATOR")
        .ForEach(L"pEnumAdapters -> Next", [&](IWbemClassObject* adapter) {
            return AppendRecord<CTeamedAdapter>(
                members, L"pTeamedAdapter == NULL",
                [&](CTeamedAdapter& member) { return fill(adapter, member); });
        });
}

HRESULT CQuillet::ReadMembership(IWbemClassObject* membership, CTeamedAdapter& member) {
    LONG status = CTeamedAdapter::MemberStatusUnknown;
    PropertyReader read(membership, kMembershipVariable);
    read.Long(L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION, member.m_lMemberRole)
        .Long(L_PROP_TEAMEDMEMBERADAPTER_ADAPTERSTATUS, status);
    if (read.Failed()) {
        return read.Result();
    }
    member.m_lMemberStatus = status;
    if (!read.IsNull() && !TraceStatus(status)) {
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
    const ProviderSession session(*this, NoTeam(teamId).OnceConnected());
    if (session.Failed()) {
        return session.Result();
    }
    // Members that the list held before are another call's.
    const std::size_t first = members.m_vecItems.size();
    const HRESULT result = AppendMembers(session, teamId, members);
    if (FAILED(result)) {
        return result;
    }
    CircularSearch search(members.m_vecItems.size() - first);
    return Memberships(session, teamId).ForEach(kMembershipsBrokeOff, [&](IWbemClassObject* membership) {
        std::wstring part;
        PropertyReader read(membership, kMembershipVariable);
        if (read.When(OnNull::Fail).String(L_PROP_TEAMEDMEMBERADAPTER_PARTCOMPONENT, part).Failed()) {
            return read.Result();
        }
        const auto found = search.Find([&](std::size_t position) {
            const std::wstring& adapterId = members.m_vecItems[first + position]->m_wsAdapterID;
            // A part that is no path by itself may still hold one.
            return NameTheSameObject(adapterId, part) ||
                   (!adapterId.empty() && part.find(adapterId) != std::wstring::npos);
        });
        if (!found) {
            LumTrace().Print(L"ERROR:  Unable to locate the device ID %s in the adapter array!",
                             part.c_str());
            return S_OK;
        }
        LumTrace().Print(L"Found adapter at index:%d", static_cast<int>(first + *found));
        return ReadMembership(membership, *members.m_vecItems[first + *found]);
    });
}

HRESULT CQuillet::GetMemberAdaptersStatus(const std::wstring& teamId, CTeamedAdapters& members) {
    const OperationTrace trace(L"GetMemberAdaptersStatus");
    const ProviderSession session(*this, NoTeam(teamId).OnceConnected());
    if (session.Failed()) {
        return session.Result();
    }
    if (members.m_vecItems.empty()) {
        return trace.Fail(kResultWbemFailed, L"rAdapters.size() <= 0");
    }
    return Memberships(session, teamId).ForEach(kMembershipsBrokeOff, [&](IWbemClassObject* membership) {
        std::wstring path;
        PropertyReader read(membership, kMembershipVariable);
        if (read.When(OnNull::Fail).String(L_ZOREL_PATH, path).Failed()) {
            return read.Result();
        }
        const std::wstring objectId = MemberOf(path);
        const auto found = std::find_if(
            members.m_vecItems.begin(), members.m_vecItems.end(), [&objectId](const CTeamedAdapter* member) {
                std::wstring candidate;
                return member && ObjectIdFromPath(ObjectKind::Adapter, member->m_wsAdapterID, candidate) &&
                       IsSameObjectId(candidate, objectId);
            });
        if (found == members.m_vecItems.end()) {
            TraceText(L"Adapter Not Found!!!");
            return S_OK;
        }
        return ReadMembership(membership, **found);
    });
}

HRESULT CQuillet::IsPrimaryAdapter(const std::wstring& adapterId, bool& primary) {
    const OperationTrace trace(L"IsPrimaryAdapter");
    primary = false;
    Refusal refusal = NoAdapter(adapterId).OnceConnected();
    refusal.code = kResultWbemFailed;
    const ProviderSession session(*this, refusal);
    ProviderEnum memberships = Memberships(session, adapterId);
    if (memberships.Failed()) {
        return memberships.Result();
    }
    ATL::CComPtr<IWbemClassObject> membership;
    if (!memberships.Next(membership)) {
        return memberships.End(kMembershipsBrokeOff);
    }
    LONG role = 0;
    PropertyReader read(membership, kMembershipVariable);
    if (read.Long(L_PROP_TEAMEDMEMBERADAPTER_ADAPTERFUNCTION, role).Failed()) {
        return read.Result();
    }
    primary = role == kPrimary;
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
        } else if (adapter.m_pAdapterDynamicInfo->m_lAdapterStatus == kAdapterEnabled) {
            ++count;
        }
    }
    return S_OK;
}
