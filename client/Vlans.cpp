// VLANs and their checks.
#include "Operations.h"

namespace quillet {

namespace {

Vlan FromRecord(CVLAN&& record) {
    return {VlanId(std::move(record.m_wsVLANID)),
            std::move(record.m_wsName),
            std::move(record.m_wsCaption),
            std::move(record.m_wsParentID),
            std::move(record.m_wsVLANName),
            record.m_lVLANNumber,
            static_cast<StatusInfo>(record.m_eStatus)};
}

CVLAN ToRecord(const NewVlan& vlan) {
    CVLAN record;
    record.m_lVLANNumber = vlan.id;
    record.m_wsVLANName = vlan.name;
    return record;
}

CVLANs ToRecords(std::span<const NewVlan> vlans) {
    CVLANs records;
    records.m_vecItems.reserve(vlans.size());
    for (const NewVlan& vlan : vlans) {
        records.m_vecItems.push_back(new CVLAN(ToRecord(vlan)));
    }
    return records;
}

Flags<VlanProblem> VlanProblemsIn(ULONGLONG mask) {
    return Flags<VlanProblem>::FromMask(mask);
}

ULONGLONG Check(CQuillet& quillet, const VlanParentId& parent, const CVLAN& vlan) {
    const std::wstring& path = PathOf(parent);
    if (vlan.m_lVLANNumber == 0) {
        return IsTeam(parent) ? quillet.CreateUnTaggedVLANTeamCheck(path, vlan)
                              : quillet.CreateUnTaggedVLANAdapterCheck(path, vlan);
    }
    return IsTeam(parent) ? quillet.CreateVLANTeamCheck(path, vlan)
                          : quillet.CreateVLANAdapterCheck(path, vlan);
}

} // namespace

const std::wstring& PathOf(const VlanParentId& parent) noexcept {
    const auto* team = std::get_if<TeamId>(&parent);
    return team != nullptr ? team->Path() : std::get_if<AdapterId>(&parent)->Path();
}

bool IsTeam(const VlanParentId& parent) noexcept {
    return std::holds_alternative<TeamId>(parent);
}

std::vector<Vlan> Session::Vlans(const VlanParentId& parent) {
    const std::wstring& path = PathOf(parent);
    CQuillet& quillet = m_state->quillet;
    return ReadList<CVLANs>(
        IsTeam(parent) ? "EnumerateVLANsOfTeam" : "EnumerateVLANsOfAdapter", path,
        [&](CVLANs& vlans) {
            return IsTeam(parent) ? quillet.EnumerateVLANsOfTeam(path, vlans)
                                  : quillet.EnumerateVLANsOfAdapter(path, vlans);
        },
        [](CVLAN&& record) { return FromRecord(std::move(record)); });
}

Vlan Session::ReadVlan(const VlanId& vlan) {
    CVLAN record;
    DoInParts(
        "GetVLANInfo", vlan.Path(), [&] { return m_state->quillet.GetVLANInfo(vlan.Path(), record); },
        [&] { return FromRecord(std::move(record)); });
    return FromRecord(std::move(record));
}

StatusInfo Session::ReadStatus(const VlanId& vlan) {
    CVLAN::VlanStatus status{};
    Do("GetVlanStatus", vlan.Path(), [&] { return m_state->quillet.GetVlanStatus(vlan.Path(), status); });
    return static_cast<StatusInfo>(status);
}

VlanId Session::VlanByObjectId(const std::wstring& objectId) {
    std::wstring path;
    Do("GetVLANID", objectId, [&] { return m_state->quillet.GetVLANID(objectId, path); });
    return VlanId(std::move(path));
}

VlanSupport Session::SupportsVlans(const VlanParentId& parent) {
    const HRESULT result = Guarded("ParentSupportingVLAN", PathOf(parent),
                                   [&] { return m_state->quillet.ParentSupportingVLAN(PathOf(parent)); });
    if (result == CVLAN::ParentIsTeamMember) {
        return VlanSupport::TeamMember;
    }
    if (result == static_cast<HRESULT>(WBEM_E_NOT_FOUND)) {
        return VlanSupport::None;
    }
    if (FAILED(result)) {
        throw Error(result, "ParentSupportingVLAN", PathOf(parent));
    }
    return VlanSupport::Supported;
}

int Session::TaggedVlans(const VlanParentId& parent) {
    CQuillet& quillet = m_state->quillet;
    return Guarded("CheckForTaggedVLAN", PathOf(parent), [&] {
        return IsTeam(parent) ? quillet.CheckForTaggedVLANOnTeam(PathOf(parent))
                              : quillet.CheckForTaggedVLANOnAdapter(PathOf(parent));
    });
}

bool Session::HasVlan(const VlanParentId& parent, std::int32_t id) {
    CQuillet& quillet = m_state->quillet;
    return Guarded("CheckForUntaggedVLAN", PathOf(parent), [&] {
               return IsTeam(parent) ? quillet.CheckForUntaggedVLANOnTeam(PathOf(parent), id)
                                     : quillet.CheckForUntaggedVLANOnAdapter(PathOf(parent), id);
           }) != 0;
}

Flags<VlanProblem> Session::CheckVlan(const VlanParentId& parent, const NewVlan& vlan) {
    const std::lock_guard lock(m_state->vlanChecks);
    return VlanProblemsIn(Guarded("CreateVLANCheck", PathOf(parent),
                                  [&] { return Check(m_state->quillet, parent, ToRecord(vlan)); }));
}

Flags<VlanProblem> Session::CheckVlans(const VlanParentId& parent, std::span<const NewVlan> vlans) {
    const std::lock_guard lock(m_state->vlanChecks);
    CQuillet& quillet = m_state->quillet;
    return VlanProblemsIn(Guarded("CreateMultipleVLANCheck", PathOf(parent), [&] {
        return IsTeam(parent) ? quillet.CreateMultipleVLANTeamCheck(PathOf(parent), ToRecords(vlans))
                              : quillet.CreateMultipleVLANAdapterCheck(PathOf(parent), ToRecords(vlans));
    }));
}

Flags<VlanProblem> Session::CheckVlanChange(const VlanParentId& parent, const Vlan& vlan,
                                            const NewVlan& changed) {
    CVLAN record = ToRecord(changed);
    record.m_wsName = vlan.objectId; // by which it is not compared with itself
    record.m_wsVLANID = vlan.id.Path();
    const std::lock_guard lock(m_state->vlanChecks);
    CQuillet& quillet = m_state->quillet;
    return VlanProblemsIn(Guarded("CreateVLANCheck", PathOf(parent), [&] {
        struct Modifying {
            explicit Modifying(CQuillet& of) : quillet(of) { quillet.SetVlanIsModify(true); }
            ~Modifying() { quillet.SetVlanIsModify(false); }
            Modifying(const Modifying&) = delete;
            Modifying& operator=(const Modifying&) = delete;
            CQuillet& quillet;
        };
        const Modifying modifying(quillet);
        return Check(quillet, parent, record);
    }));
}

Vlan Session::AddVlan(const VlanParentId& parent, const NewVlan& vlan) {
    CVLAN record = ToRecord(vlan);
    CQuillet& quillet = m_state->quillet;
    Do(IsTeam(parent) ? "AddVLANToTeam" : "AddVLANToAdapter", PathOf(parent), [&] {
        return IsTeam(parent) ? quillet.AddVLANToTeam(PathOf(parent), record)
                              : quillet.AddVLANToAdapter(PathOf(parent), record);
    });
    return FromRecord(std::move(record));
}

void Session::ModifyVlan(const VlanId& vlan, const NewVlan& changed) {
    Do("ModifyVLANProperty", vlan.Path(),
       [&] { return m_state->quillet.ModifyVLANProperty(vlan.Path(), ToRecord(changed)); });
}

void Session::RemoveVlan(const VlanId& vlan) {
    Do("RemoveVLAN", vlan.Path(), [&] { return m_state->quillet.RemoveVLAN(vlan.Path()); });
}

std::vector<std::wstring> Texts(Flags<VlanProblem> problems) {
    return CVLANTexts::Problems(problems.Mask());
}

std::wstring Text(VlanSupport support) {
    switch (support) {
    case VlanSupport::Supported:
        break;
    case VlanSupport::TeamMember:
        return CVLANTexts::ParentIsTeamMember();
    case VlanSupport::None:
        return L"there is no VLAN service for it";
    }
    return {};
}

} // namespace quillet
