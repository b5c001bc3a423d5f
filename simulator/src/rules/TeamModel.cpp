// What belongs to a team, and what follows when a part of it changes.
#include "rules/TeamModel.h"

#include "repository/StoreQueries.h"
#include "rules/VlanModel.h"

#include <algorithm>

namespace quillet::simulator {

namespace {

constexpr const wchar_t* kMembership = L"Zorel_TeamedMemberAdapter";
constexpr const wchar_t* kTeam = L"Zorel_TeamOfAdapters";

/// "AdapterStatus" of a membership.
constexpr std::int64_t kMemberUnknown = 0;
constexpr std::int64_t kMemberActive = 1;
constexpr std::int64_t kMemberInactive = 3;

std::int64_t MemberStatus(const Instance& adapter) {
    const auto state = adapter.Number(L"HardwareStatus", kHardwareMissing);
    if (state == kLinkPresent) {
        return kMemberActive;
    }
    return state == kHardwareMissing ? kMemberUnknown : kMemberInactive;
}

/// What joins a team with its logical adapter.
std::vector<InstancePtr> VirtualAdaptersOf(const Repository& store, const Instance& team) {
    return ReferencesTo(store, RelativePath(team), L"Zorel_NetworkVirtualAdapter");
}

/// Stores a changed copy of an instance, unless it is as it was.
HRESULT Change(Repository& store, const Instance& instance,
               std::initializer_list<std::pair<const wchar_t*, Value>> values) {
    Instance changed = instance;
    for (const auto& [property, value] : values) {
        changed.Set(property, value);
    }
    return changed.values == instance.values ? S_OK
                                             : store.PutInstance(std::move(changed), WriteMode::UpdateOnly);
}

void Delete(Repository& store, const Instance& instance) {
    if (const auto path = ObjectPath::Parse(RelativePath(instance))) {
        store.DeleteInstance(*path);
    }
}

InstancePtr TeamOf(const Repository& store, const Instance& membership) {
    return store.FindInstance(membership.Text(L"GroupComponent"));
}

InstancePtr HolderOf(const Repository& store, const Instance& team, std::int64_t role) {
    const auto memberships = MembershipsOf(store, team);
    const auto holder = std::find_if(memberships.begin(), memberships.end(), [role](const InstancePtr& each) {
        return each->Number(L"AdapterFunction", kRoleNone) == role;
    });
    return holder != memberships.end() ? *holder : nullptr;
}

} // namespace

std::wstring VlanServiceCaption(const std::wstring& team) {
    return L"VLAN service of " + team;
}

Instance MakeInstance(const Repository& store, std::wstring_view className,
                      std::initializer_list<std::pair<const wchar_t*, Value>> values) {
    Instance made(store.FindClass(className));
    for (const auto& [property, value] : values) {
        made.Set(property, value);
    }
    return made;
}

InstancePtr FindAdapter(const Repository& store, std::wstring_view path) {
    const auto found = store.FindInstance(path);
    return found != nullptr && found->definition->IsA(L"Zorel_PhysicalEthernetAdapter") ? found : nullptr;
}

std::vector<InstancePtr> MembershipsOf(const Repository& store, const Instance& teamOrAdapter) {
    return ReferencesTo(store, RelativePath(teamOrAdapter), kMembership);
}

std::vector<InstancePtr> MembersOf(const Repository& store, const Instance& team) {
    std::vector<InstancePtr> members;
    for (const auto& membership : MembershipsOf(store, team)) {
        if (auto adapter = FindAdapter(store, membership->Text(L"PartComponent"))) {
            members.push_back(std::move(adapter));
        }
    }
    return members;
}

InstancePtr LogicalAdapterOf(const Repository& store, const Instance& team) {
    const auto found = VirtualAdaptersOf(store, team);
    return found.empty() ? nullptr : store.FindInstance(found.front()->Text(L"SystemElement"));
}

bool IsTeamNameTaken(const Repository& store, std::wstring_view caption, const Instance* except) {
    const auto teams = store.Instances(kTeam);
    return std::any_of(teams.begin(), teams.end(), [&](const InstancePtr& team) {
        return team->Text(L"Caption") == caption &&
               (except == nullptr || !SameName(team->Text(L"Name"), except->Text(L"Name")));
    });
}

bool HasCapability(const Instance& adapter, std::int64_t code) {
    const auto* capabilities = adapter.Find(L"Capabilities");
    const auto* codes = capabilities != nullptr ? capabilities->AsArray() : nullptr;
    return codes != nullptr && std::any_of(codes->begin(), codes->end(), [code](const auto& element) {
               const auto* number = element ? std::get_if<std::uint64_t>(&*element) : nullptr;
               return number != nullptr && *number == static_cast<std::uint64_t>(code);
           });
}

bool SupportsMode(const Instance& adapter, std::int64_t mode) {
    static constexpr std::int64_t kCodes[] = {4, 5, 9, 8, 10, 12, 68};
    return mode >= 0 && mode <= kLastTeamMode && HasCapability(adapter, kCodes[mode]);
}

HRESULT AddMember(Repository& store, const Instance& team, const Instance& adapter,
                  std::optional<std::int64_t> role) {
    if (!role) {
        role = kRoleNone;
        for (const auto free : {kRolePrimary, kRoleSecondary}) {
            if (HolderOf(store, team, free) == nullptr) {
                role = free;
                break;
            }
        }
    }
    const auto membership = MakeInstance(store, kMembership,
                                         {{L"GroupComponent", Value::Text(store.FullPath(team))},
                                          {L"PartComponent", Value::Text(store.FullPath(adapter))},
                                          {L"AdapterFunction", Value::Signed(kRoleNone)},
                                          {L"AdapterStatus", Value::Signed(MemberStatus(adapter))}});
    const HRESULT result = store.PutInstance(membership, WriteMode::CreateOnly);
    return FAILED(result) ? result : SetRole(store, membership, *role);
}

HRESULT SetRole(Repository& store, const Instance& membership, std::int64_t role) {
    const auto before = membership.Number(L"AdapterFunction", kRoleNone);
    const auto team = TeamOf(store, membership);
    if (role != kRoleNone && role != before && team != nullptr) {
        if (const auto holder = HolderOf(store, *team, role)) {
            Change(store, *holder, {{L"AdapterFunction", Value::Signed(before)}});
        }
    }
    return Change(store, membership, {{L"AdapterFunction", Value::Signed(role)}});
}

HRESULT RemoveMember(Repository& store, const Instance& membership) {
    const auto team = TeamOf(store, membership);
    const bool primary = membership.Number(L"AdapterFunction", kRoleNone) == kRolePrimary;
    Delete(store, membership);
    if (team == nullptr) {
        return S_OK;
    }
    if (primary) {
        if (const auto successor = HolderOf(store, *team, kRoleSecondary)) {
            Change(store, *successor, {{L"AdapterFunction", Value::Signed(kRolePrimary)}});
        }
    }
    RefreshTeam(store, *team);
    return S_OK;
}

void RefreshTeam(Repository& store, const Instance& team) {
    bool present = false;
    InstancePtr fastest;
    for (const auto& membership : MembershipsOf(store, team)) {
        const auto adapter = FindAdapter(store, membership->Text(L"PartComponent"));
        if (adapter == nullptr) {
            continue;
        }
        const auto status = MemberStatus(*adapter);
        Change(store, *membership, {{L"AdapterStatus", Value::Signed(status)}});
        present = present || status != kMemberUnknown;
        if (status == kMemberActive &&
            (fastest == nullptr || adapter->Number(L"Speed") > fastest->Number(L"Speed"))) {
            fastest = adapter;
        }
    }
    if (const auto logical = LogicalAdapterOf(store, team)) {
        const auto speed = fastest != nullptr ? fastest->Number(L"Speed") : 0;
        Change(store, *logical,
               {{L"Status", Value::Text(present ? L"OK" : L"Lost Comm")},
                {L"StatusInfo", Value::Unsigned(present ? 3 : 4)},
                {L"Availability", Value::Unsigned(present ? 3 : 8)},
                {L"Speed", Value::Unsigned(static_cast<std::uint64_t>(speed))},
                {L"FullDuplex", Value::Bool(fastest != nullptr && fastest->Number(L"FullDuplex") != 0)}});
    }
}

void RefreshTeamOf(Repository& store, const Instance& adapter) {
    for (const auto& membership : MembershipsOf(store, adapter)) {
        if (const auto team = TeamOf(store, *membership)) {
            RefreshTeam(store, *team);
        }
    }
}

HRESULT RenameTeam(Repository& store, const Instance& team, const std::wstring& caption) {
    const auto id = team.Text(L"Name");
    const HRESULT result = Change(store, team, {{L"Caption", Value::Text(caption)}});
    if (FAILED(result)) {
        return result;
    }
    if (const auto logical = LogicalAdapterOf(store, team)) {
        Change(store, *logical, {{L"Name", Value::Text(caption)}, {L"Caption", Value::Text(caption)}});
    }
    for (const auto& service : InstancesWhere(store, L"Zorel_802dot1QVLANService", L"Name", id)) {
        Change(store, *service, {{L"Caption", Value::Text(VlanServiceCaption(caption))}});
    }
    for (const auto& vlan : VlansOf(store, id)) {
        Change(store, *vlan, {{L"Caption", Value::Text(VlanCaption(store, id, vlan->Text(L"VLANName")))}});
    }
    return S_OK;
}

HRESULT RemoveTeamFrom(Repository& store, const Instance& team) {
    const auto id = team.Text(L"Name");
    RemoveVlansOf(store, id);
    for (const auto& service : InstancesWhere(store, L"Zorel_802dot1QVLANService", L"Name", id)) {
        Delete(store, *service);
    }
    for (const auto& setting : InstancesWhere(store, L"Zorel_TeamSetting", L"ParentId", id)) {
        Delete(store, *setting);
    }
    for (const auto& membership : MembershipsOf(store, team)) {
        Delete(store, *membership);
    }
    const auto logical = LogicalAdapterOf(store, team);
    for (const auto& element : VirtualAdaptersOf(store, team)) {
        Delete(store, *element);
    }
    if (logical != nullptr) {
        Delete(store, *logical);
    }
    const auto path = ObjectPath::Parse(RelativePath(team));
    return path ? store.DeleteInstance(*path) : HRESULT(WBEM_E_INVALID_OBJECT_PATH);
}

} // namespace quillet::simulator
