// Listing what can carry VLANs, and finding one.
#include "names/VlanParent.h"

#include "ending/Failure.h"
#include "names/AdapterLookup.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/States.h"
#include "texts/Text.h"

#include <optional>

namespace quilletctl {

namespace {

VlanParent Of(const quillet::Team& team) {
    const std::string path = PathOf(team.id);
    return {team.id, path, NameInPath(path).key, Called(team)};
}

VlanParent Of(const ListedAdapter& adapter) {
    return {adapter.id, adapter.path, adapter.objectId, adapter.Called()};
}

/// Teams and adapters side by side: a name that one of each has is as ambiguous as any other.
class ParentFinder {
  public:
    explicit ParentFinder(quillet::Session& session)
        : m_session(session), m_teams(ReadTeams(session)), m_adapters(session), m_names(NamesOf(m_teams)) {
        for (const ListedAdapter& adapter : m_adapters.Adapters()) {
            m_names.push_back(NamesOf(adapter));
        }
    }

    VlanParent One(const std::string& text) {
        if (text.empty()) {
            throw UsageError("an adapter or a team is needed: its name, object ID or path");
        }
        if (const std::optional<quillet::Team> team = TeamAtPath(m_session, m_teams, text)) {
            return Of(*team);
        }
        const std::optional<std::size_t> found = FindOneNamed(m_names, text, "adapters and teams");
        return found ? At(*found) : Of(m_adapters.One(text, m_names));
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
        return i < m_teams.size() ? Of(m_teams[i]) : Of(m_adapters.Adapters()[i - m_teams.size()]);
    }

    quillet::Session& m_session;
    std::vector<quillet::Team> m_teams;
    AdapterFinder m_adapters;
    std::vector<Named> m_names;
};

/// Nothing where the adapter does not tell, which keeps nobody from telling of others.
std::optional<bool> LinkOf(quillet::Session& session, const quillet::AdapterId& adapter) {
    try {
        return IsUp(session.ReadState(adapter));
    } catch (const quillet::Error&) {
        return std::nullopt;
    }
}

} // namespace

std::vector<VlanParent> ReadVlanParents(quillet::Session& session) {
    std::vector<VlanParent> parents;
    for (const ListedAdapter& adapter : ReadAdapters(session)) {
        parents.push_back(Of(adapter));
    }
    for (const quillet::Team& team : ReadTeams(session)) {
        parents.push_back(Of(team));
    }
    return parents;
}

VlanParent FindVlanParent(quillet::Session& session, const std::string& text) {
    return ParentFinder(session).One(text);
}

std::vector<VlanParent> FindVlanParents(quillet::Session& session, const std::string& text) {
    return ParentFinder(session).Several(text);
}

std::optional<bool> LinkOf(quillet::Session& session, const VlanParent& parent) {
    try {
        if (const auto* adapter = std::get_if<quillet::AdapterId>(&parent.id)) {
            return LinkOf(session, *adapter);
        }
        std::optional<bool> link = false;
        for (const quillet::TeamMember& member : session.Members(std::get<quillet::TeamId>(parent.id))) {
            link = IsAnyUp(link, LinkOf(session, member.id));
        }
        return link;
    } catch (const quillet::Error&) {
        return std::nullopt;
    }
}

std::vector<quillet::Vlan> ReadVlans(quillet::Session& session, const VlanParent& parent) {
    return Attempt("list the VLANs of " + parent.name, [&] { return session.Vlans(parent.id); });
}

std::string NumberText(const quillet::Vlan& vlan) {
    return vlan.number == 0 ? "untagged" : std::to_string(vlan.number);
}

Named NamesOf(const quillet::Vlan& vlan, const VlanParent& parent) {
    const std::string objectId = ToUtf8(vlan.objectId);
    return {objectId,
            Called(vlan) + " of " + parent.name,
            {PathOf(vlan.id), objectId, NumberText(vlan), std::to_string(vlan.number), ToUtf8(vlan.name),
             ToUtf8(vlan.caption)}};
}

quillet::Vlan FindVlan(quillet::Session& session, const VlanParent& parent, const std::string& text) {
    const std::vector<quillet::Vlan> vlans = ReadVlans(session, parent);
    std::vector<Named> names;
    names.reserve(vlans.size());
    for (const quillet::Vlan& vlan : vlans) {
        names.push_back(NamesOf(vlan, parent));
    }
    if (const std::optional<std::size_t> found = FindOneNamed(names, text, "VLANs of " + parent.name)) {
        return vlans[*found];
    }
    // Any two numbers are alike; to name another one would be a guess.
    const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
    throw UsageError(parent.name + " has no VLAN " +
                     (isNumber ? text + "; see quilletctl vlan list"
                               : '"' + text + '"' + MeantOrListed(names, text, "vlan list")));
}

std::optional<quillet::Vlan> LookForVlan(quillet::Session& session, const VlanParent& parent,
                                         std::int32_t number) {
    for (const quillet::Vlan& vlan : ReadVlans(session, parent)) {
        if (vlan.number == number) {
            return vlan;
        }
    }
    return std::nullopt;
}

std::string Called(const quillet::NewVlan& vlan) {
    return (vlan.id == 0 ? std::string("the untagged VLAN") : "VLAN " + std::to_string(vlan.id)) + " \"" +
           ToUtf8(vlan.name) + '"';
}

std::string Called(const quillet::Vlan& vlan) {
    return Called(quillet::NewVlan{vlan.number, vlan.name});
}

} // namespace quilletctl
