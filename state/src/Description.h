// Documents that are made of what was read.
#pragma once

#include "Machine.h"

#include <quillet-state/State.h>

#include <cstddef>
#include <string>
#include <vector>

namespace quillet::state {

/// Describes parts of a machine, for people and for going back.
class Description {
  public:
    explicit Description(Machine& machine) : m_machine(machine) {}

    /// An adapter with everything that it tells.
    /// @param unread gets a sentence for what it does not
    Json Whole(std::size_t adapter, const ShowOptions& options, std::vector<std::string>& unread);
    /// A team with its members, roles and VLANs.
    Json Whole(const TeamFacts& team, NamedBy by = NamedBy::Name);
    /// What names an adapter.
    Json SelectorOf(std::size_t adapter, NamedBy by);
    /// All VLANs of an adapter or a team.
    Json Vlans(const VlanParentId& parent);

    /// What the machine has of all that a document mentions.
    Json Like(const Document& document);
    /// The same, with all that the way to the document may change beside it: the way back.
    Document Before(const Document& document);

  private:
    enum class For { Reading, GoingBack };

    std::vector<std::size_t> Named(const Selector& selector);
    Json UndescribedTeams(const Document& document);
    void AddOthers(Json& owner, const VlanParentId& parent);
    Json Like(const WantedAdapter& wanted, std::size_t adapter, For purpose);
    Json Like(const WantedTeam& wanted, For purpose);
    Json Like(const std::vector<WantedVlan>& wanted, const std::vector<Vlan>& vlans);
    Json Settings(const Owner& owner, const Json& wanted);
    Json ChangedSettings(const Owner& owner);
    Json Role(const TeamFacts& team, MemberRole role, NamedBy by);
    Json Members(const TeamFacts& team, NamedBy by);

    Machine& m_machine;
};

} // namespace quillet::state
