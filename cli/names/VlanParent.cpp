// Listing what can carry VLANs, and finding one.
#include "names/VlanParent.h"

#include "ending/Failure.h"
#include "names/AdapterLookup.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/Text.h"

#include <optional>

namespace quilletctl {

namespace {

VlanParent Of(const CTeam& team) {
    const std::string path = ToUtf8(team.m_wsTeamID);
    return {true, path, NameInPath(path).key, Called(team)};
}

VlanParent Of(const ListedAdapter& adapter) {
    return {false, adapter.path, adapter.objectId, adapter.Called()};
}

/// Teams and adapters side by side: a name that one of each has is as ambiguous as any other.
class ParentFinder {
  public:
    explicit ParentFinder(CQuillet& session)
        : m_session(session), m_teams(ReadTeams(session)), m_adapters(session), m_names(NamesOf(m_teams)) {
        for (const ListedAdapter& adapter : m_adapters.Adapters()) {
            m_names.push_back(NamesOf(adapter));
        }
    }

    VlanParent One(const std::string& text) {
        if (text.empty()) {
            throw UsageError("an adapter or a team is needed: its name, object ID or path");
        }
        if (const std::optional<CTeam> team = TeamAtPath(m_session, m_teams, text)) {
            return Of(*team);
        }
        const std::optional<std::size_t> found = FindOneNamed(m_names, text, "adapters and teams");
        return found ? At(*found) : Of(m_adapters.One(text));
    }
    std::vector<VlanParent> Several(const std::string& text) {
        const std::vector<std::size_t> found = FindNamed(m_names, text, Match::Pattern);
        if (!IsPattern(text) || IsObjectPath(text) || found.empty() ||
            !FindNamed(m_names, text, Match::Whole).empty()) {
            return {One(text)};
        }
        std::vector<VlanParent> parents;
        parents.reserve(found.size());
        for (const std::size_t i : found) {
            parents.push_back(At(i));
        }
        return parents;
    }

  private:
    VlanParent At(std::size_t i) const {
        const std::size_t teams = m_teams.m_vecItems.size();
        return i < teams ? Of(*m_teams.m_vecItems[i]) : Of(m_adapters.Adapters()[i - teams]);
    }

    CQuillet& m_session;
    CTeams m_teams;
    AdapterFinder m_adapters;
    std::vector<Named> m_names;
};

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
    return ParentFinder(session).One(text);
}

std::vector<VlanParent> FindVlanParents(CQuillet& session, const std::string& text) {
    return ParentFinder(session).Several(text);
}

CVLANs ReadVlans(CQuillet& session, const VlanParent& parent) {
    CVLANs vlans;
    const std::wstring path = ToWide(parent.path);
    ThrowIfRefused(parent.isTeam ? session.EnumerateVLANsOfTeam(path, vlans)
                                 : session.EnumerateVLANsOfAdapter(path, vlans),
                   "list the VLANs of " + parent.name);
    return vlans;
}

std::string NumberText(const CVLAN& vlan) {
    return vlan.m_lVLANNumber == 0 ? "untagged" : std::to_string(vlan.m_lVLANNumber);
}

Named NamesOf(const CVLAN& vlan, const VlanParent& parent) {
    const std::string objectId = ToUtf8(vlan.m_wsName);
    return {objectId,
            Called(vlan) + " of " + parent.name,
            {ToUtf8(vlan.m_wsVLANID), objectId, NumberText(vlan), std::to_string(vlan.m_lVLANNumber),
             ToUtf8(vlan.m_wsVLANName), ToUtf8(vlan.m_wsCaption)}};
}

CVLAN FindVlan(CQuillet& session, const VlanParent& parent, const std::string& text) {
    const CVLANs vlans = ReadVlans(session, parent);
    std::vector<Named> names;
    for (const CVLAN* vlan : vlans.m_vecItems) {
        names.push_back(NamesOf(*vlan, parent));
    }
    if (const std::optional<std::size_t> found = FindOneNamed(names, text, "VLANs of " + parent.name)) {
        return *vlans.m_vecItems[*found];
    }
    const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
    throw UsageError(parent.name + " has no VLAN " + (isNumber ? text : '"' + text + '"') +
                     "; see quilletctl vlan list");
}

std::optional<CVLAN> LookForVlan(CQuillet& session, const VlanParent& parent, LONG number) {
    const CVLANs vlans = ReadVlans(session, parent);
    for (const CVLAN* vlan : vlans.m_vecItems) {
        if (vlan->m_lVLANNumber == number) {
            return *vlan;
        }
    }
    return std::nullopt;
}

std::string Called(const CVLAN& vlan) {
    return (vlan.m_lVLANNumber == 0 ? std::string("the untagged VLAN")
                                    : "VLAN " + std::to_string(vlan.m_lVLANNumber)) +
           " \"" + ToUtf8(vlan.m_wsVLANName) + '"';
}

} // namespace quilletctl
