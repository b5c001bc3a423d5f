// Reading what is watched.
#include "commands/monitor/Snapshot.h"

#include "names/ObjectPath.h"
#include "texts/LinkText.h"
#include "texts/Text.h"

#include <windows.h>
#include <wbemidl.h>

#include <set>
#include <utility>

namespace quilletctl {

namespace {

using Kind = WatchedKey::Kind;

// Calls to the provider. A list is asked for, hands its things over one by one, and says that it is at its
// end.
constexpr std::size_t CallsOfList(std::size_t count) {
    return count + 2;
}
constexpr std::size_t kCallsOfState = 1;
/// Its adapter is asked for its state and its names, on top of the list.
constexpr std::size_t kCallsOfMember = 4;

/// Does something about one thing; what does not exist any more is no failure.
template <class Step>
void IfThere(Step step) {
    try {
        step();
    } catch (const quillet::Error& failure) {
        if (failure.Code() != static_cast<std::int32_t>(WBEM_E_NOT_FOUND)) {
            throw;
        }
    }
}

class Round {
  public:
    explicit Round(quillet::Session& session) : m_session(session) {}

    Snapshot Take() {
        const std::vector<quillet::Adapter> adapters = m_session.Adapters();
        const std::vector<quillet::Team> teams = m_session.Teams();
        m_snapshot.calls += CallsOfList(adapters.size()) + CallsOfList(teams.size());
        for (const quillet::Adapter& adapter : adapters) {
            IfThere([&] { TakeAdapter(adapter); });
        }
        for (const quillet::Team& team : teams) {
            IfThere([&] { TakeTeam(team); });
        }
        for (const quillet::Adapter& adapter : adapters) {
            // The VLANs of a team's member are the team's.
            if (!m_members.contains(ObjectIdIn(adapter.id))) {
                IfThere([&] { TakeVlans(adapter.id, ToUtf8(adapter.name)); });
            }
        }
        return std::move(m_snapshot);
    }

  private:
    void Add(Kind kind, const std::string& id, WatchedThing thing) {
        m_snapshot.things.insert_or_assign(WatchedKey{kind, id}, std::move(thing));
    }

    void TakeAdapter(const quillet::Adapter& adapter) {
        const std::string id = ObjectIdIn(adapter.id);
        const std::string name = ToUtf8(adapter.name);
        Add(Kind::Adapter, id, {name, "", "present"});
        m_snapshot.calls += kCallsOfState;
        Add(Kind::Link, id, {name, "", LinkText(m_session.ReadState(adapter.id))});
        m_names.insert_or_assign(id, name);
    }

    void TakeTeam(const quillet::Team& team) {
        const std::string name = ToUtf8(team.name);
        const std::string id = ToUtf8(team.objectId);
        Add(Kind::Team, id, {name, "", ToUtf8(quillet::Text(team.mode))});
        const std::vector<quillet::TeamMember> members = m_session.Members(team.id);
        m_snapshot.calls += CallsOfList(members.size()) + members.size() * kCallsOfMember;
        for (const quillet::TeamMember& member : members) {
            const std::string adapter = ObjectIdIn(member.id);
            const auto known = m_names.find(adapter);
            m_members.insert(adapter);
            Add(Kind::Member, std::string(id).append(1, ' ').append(adapter),
                {known == m_names.end() ? ToUtf8(member.displayName) : known->second, name,
                 ToUtf8(quillet::Text(member.role)) + ", " + ToUtf8(quillet::Text(member.status))});
        }
        TakeVlans(team.id, name);
    }

    void TakeVlans(const quillet::VlanParentId& parent, const std::string& name) {
        const std::vector<quillet::Vlan> vlans = m_session.Vlans(parent);
        m_snapshot.calls += CallsOfList(vlans.size());
        for (const quillet::Vlan& vlan : vlans) {
            const std::string number = vlan.number == 0 ? "untagged" : std::to_string(vlan.number);
            Add(Kind::Vlan, ToUtf8(vlan.objectId),
                {number + " \"" + ToUtf8(vlan.name) + '"', name, ToUtf8(quillet::Text(vlan.status))});
        }
    }

    quillet::Session& m_session;
    Snapshot m_snapshot;
    std::map<std::string, std::string> m_names; ///< of adapters, by object identifier
    std::set<std::string> m_members;            ///< of any team
};

} // namespace

Snapshot TakeSnapshot(quillet::Session& session) {
    return Round(session).Take();
}

} // namespace quilletctl
