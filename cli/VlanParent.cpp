// Listing what can carry VLANs, and finding one.
#include "VlanParent.h"

#include "AdapterLookup.h"
#include "Invocation.h"
#include "ObjectPath.h"
#include "TeamLookup.h"
#include "Text.h"

namespace quilletctl {

namespace {

VlanParent Of(const CTeam& team) {
    const std::string path = ToUtf8(team.m_wsTeamID);
    return {true, path, NameInPath(path).key, Called(team)};
}

VlanParent Of(const ListedAdapter& adapter) {
    return {false, adapter.path, adapter.objectId, adapter.Called()};
}

} // namespace

std::vector<VlanParent> ReadVlanParents(CQuillet& session) {
    std::vector<VlanParent> parents;
    for (const ListedAdapter& adapter : ReadAdapters(session)) {
        parents.push_back(Of(adapter));
    }
    const CTeams teams = ReadTeams(session);
    for (const CTeam* team : teams.m_vecItems) {
        parents.push_back(Of(*team));
    }
    return parents;
}

VlanParent FindVlanParent(CQuillet& session, const std::string& text) {
    if (text.empty()) {
        throw UsageError("an adapter or a team is needed: its name, object ID or path");
    }
    if (const std::optional<CTeam> team = LookForTeam(session, text)) {
        return Of(*team);
    }
    return Of(FindAdapter(session, text));
}

CVLANs ReadVlans(CQuillet& session, const VlanParent& parent) {
    CVLANs vlans;
    const std::wstring path = ToWide(parent.path);
    Invocation::Check(parent.isTeam ? session.EnumerateVLANsOfTeam(path, vlans)
                                    : session.EnumerateVLANsOfAdapter(path, vlans),
                      "list the VLANs of " + parent.name);
    return vlans;
}

CVLAN FindVlan(CQuillet& session, const VlanParent& parent, LONG number) {
    const CVLANs vlans = ReadVlans(session, parent);
    for (const CVLAN* vlan : vlans.m_vecItems) {
        if (vlan->m_lVLANNumber == number) {
            return *vlan;
        }
    }
    throw UsageError(parent.name + " has no VLAN " + std::to_string(number) + "; see quilletctl vlan list");
}

} // namespace quilletctl
