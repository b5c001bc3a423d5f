// How a plan comes about.
#pragma once

#include "Machine.h"

#include <quillet-state/Plan.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quillet::state {

/// A document against a machine. A file for adapters, one for teams, one for VLANs, one for the checks.
class Planner {
  public:
    Planner(Machine& machine, const Document& document) : m_machine(machine), m_document(document) {}

    Plan Make(Checks checks);

  private:
    /// The described parts of an adapter, of all entries that name it.
    struct AdapterWish {
        std::size_t adapter;
        std::vector<const WantedAdapter*> entries; ///< patterns first: what names it alone has the last word
    };
    /// A described team, and the one that is there.
    struct TeamWish {
        const WantedTeam* entry;
        std::optional<std::size_t> team{};                 ///< nothing: it is not there
        std::optional<std::vector<std::size_t>> members{}; ///< by their places in the list of adapters
        struct Role {
            MemberRole role;
            bool isWanted = false;                ///< whether the document says who has it
            std::optional<std::size_t> adapter{}; ///< nothing: nobody
        };
        Role primary{MemberRole::Primary};
        Role secondary{MemberRole::Secondary};
        std::string subject{};
        bool IsPresent() const noexcept { return !entry->isAbsent; }
    };
    /// VLANs that come under one parent, for the check of all of them.
    struct NewVlans {
        VlanParentId parent;
        std::string subject;
        std::vector<NewVlan> vlans;
        bool othersChange = false; ///< whether there are VLANs of the parent that go or change their names
    };

    void MatchAdapters();
    void MatchTeams();
    void MatchTeam(TeamWish& wish);
    std::optional<std::size_t> OneAdapter(const Selector& selector, const std::string& where);
    void MatchRole(const TeamWish& wish, const std::optional<Selector>& selector, TeamWish::Role& role);
    /// The team that each adapter will be in, as a subject.
    std::map<std::size_t, std::string> Memberships();

    void PlanAdapter(const AdapterWish& wish);
    void PlanSetting(const Owner& owner, const std::string& subject, const std::string& name,
                     const Json& value, StepKind kind, bool isOptional);
    void PlanSettings(const Owner& owner, const std::string& subject, const Json& values, bool isOptional);
    /// Of a team or a VLAN that another step makes.
    void PlanNewSettings(const std::function<Owner(Work&)>& owner, const std::string& subject,
                         const Json& values);
    void PlanPower(std::size_t adapter, const std::string& subject, const Json& wanted, bool isOptional);
    void PlanWake(std::size_t adapter, const std::string& subject, const Json& wanted, bool isOptional);
    void PlanIscsi(std::size_t adapter, const std::string& subject, const std::string& word, bool isOptional);

    void PlanDeletions();
    void PlanTeam(const TeamWish& wish);
    void PlanNewTeam(const TeamWish& wish);
    void PlanMembers(const TeamWish& wish);
    void PlanRole(const TeamWish& wish, const TeamWish::Role& wanted, bool membersChange);

    void PlanAdapterVlans(const std::map<std::size_t, std::string>& memberships);
    /// @param parent nothing: the team of the name that another step makes
    /// @return the VLANs that there will be: names by ID
    std::map<std::int32_t, std::string> PlanVlans(const std::optional<VlanParentId>& parent,
                                                  const std::string& newTeam, const std::string& subject,
                                                  const std::vector<WantedVlan>& wanted);
    void RenameVlans(const VlanParentId& parent, const std::string& subject,
                     const std::map<std::int32_t, std::string>& final);

    void CheckSteps();
    void CheckTeam(const TeamWish& wish);
    void CheckNewTeam(const TeamWish& wish);
    void CheckNewVlans(const NewVlans& added);
    /// Findings of the library's, as problems.
    template <class Bit>
    void Complain(const std::string& subject, Flags<Bit> found);

    void Add(StepKind kind, const std::string& subject, const std::string& what, Json now, Json wanted,
             std::string words, std::function<void(Work&)> make);
    void Problem(const std::string& where, const std::string& what);
    std::string SubjectOf(std::size_t adapter) { return "adapter " + m_machine.NameOf(adapter); }
    /// The name of an adapter; its path where the machine does not list it.
    std::string NameOf(const AdapterId& id);
    std::vector<std::size_t> CurrentMembers(std::size_t team);
    std::vector<AdapterId> IdsOf(const std::vector<std::size_t>& adapters);
    Json NamesOf(const std::vector<std::size_t>& adapters);

    Machine& m_machine;
    const Document& m_document;
    Plan m_plan;
    std::vector<AdapterWish> m_adapters;
    std::vector<TeamWish> m_teams;
    std::vector<std::size_t> m_deletedTeams;
    std::vector<NewVlans> m_newVlans;
    std::vector<std::function<void()>> m_checks; ///< of single steps
};

} // namespace quillet::state
