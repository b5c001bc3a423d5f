// Asking the library and the provider before anything is changed. What the machine is now decides what they
// say, so a finding that another step of the plan settles is none.
#include "Planner.h"
#include "Words.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

namespace {

template <class Bit>
Flags<Bit> Without(Flags<Bit> found, Flags<Bit> settled) {
    return Flags<Bit>::FromMask(found.Mask() & ~settled.Mask());
}

} // namespace

template <class Bit>
void Planner::Complain(const std::string& subject, Flags<Bit> found) {
    for (const std::wstring& sentence : Texts(found)) {
        const std::string problem = subject + ": " + ToUtf8(sentence);
        // Several checks may find the same.
        if (std::find(m_plan.problems.begin(), m_plan.problems.end(), problem) == m_plan.problems.end()) {
            m_plan.problems.push_back(problem);
        }
    }
}

void Planner::CheckSteps() {
    for (const auto& check : m_checks) {
        check();
    }
    for (const TeamWish& wish : m_teams) {
        if (wish.IsPresent()) {
            CheckTeam(wish);
        }
    }
    for (const NewVlans& added : m_newVlans) {
        CheckNewVlans(added);
    }
}

void Planner::CheckTeam(const TeamWish& wish) {
    if (!wish.team) {
        CheckNewTeam(wish);
        return;
    }
    const TeamFacts& facts = m_machine.Teams()[*wish.team];
    const std::vector<std::size_t> before = CurrentMembers(*wish.team);
    const std::vector<std::size_t> wanted = wish.members.value_or(before);
    const bool leaves = std::any_of(before.begin(), before.end(), [&](std::size_t each) {
        return std::find(wanted.begin(), wanted.end(), each) == wanted.end();
    });
    std::vector<std::size_t> added = wanted;
    std::erase_if(added, [&before](std::size_t each) {
        return std::find(before.begin(), before.end(), each) != before.end();
    });
    const std::optional<TeamMode> mode = ModeFrom(wish.entry->mode);
    const bool changesMode = mode && *mode != facts.team.mode;
    if (changesMode && added.empty() && !leaves) {
        Complain(wish.subject, m_machine.Asked().ValidateTeamMode(*mode, facts.team.id));
    }
    if (!added.empty() && !changesMode && !leaves) {
        Complain(wish.subject,
                 Without(m_machine.Asked().ValidateAddedMembers(facts.team.id, facts.members, IdsOf(added)),
                         Flags(TeamProblem::AlreadyTeamed) | TeamProblem::CarriesVlans));
    }
    if (!added.empty() || leaves) {
        const std::vector<AdapterId> ids = IdsOf(wanted);
        for (const std::wstring& sentence : Texts(m_machine.Asked().CheckRss(facts.members, ids))) {
            m_plan.warnings.push_back(wish.subject + ": " + ToUtf8(sentence));
        }
    }
}

void Planner::CheckNewTeam(const TeamWish& wish) {
    Session& session = m_machine.Asked();
    NewTeam team;
    team.name = FromUtf8(wish.entry->name);
    team.mode = ModeFrom(wish.entry->mode).value_or(team.mode);
    team.members = IdsOf(*wish.members);
    team.multiVendor = wish.entry->multiVendor.value_or(false);
    team.linkSecurity = wish.entry->linkSecurity.value_or(false);
    // Whether they leave another team, or lose their VLANs, is the plan's own to know.
    Flags<TeamProblem> settled = Flags(TeamProblem::AlreadyTeamed) | TeamProblem::CarriesVlans;
    if (!m_deletedTeams.empty()) {
        settled |= TeamProblem::NameTaken;
    }
    const bool settingsChange = std::any_of(m_plan.steps.begin(), m_plan.steps.end(), [](const Step& each) {
        return each.kind == StepKind::Setting || each.kind == StepKind::Profile;
    });
    if (settingsChange) {
        settled |= TeamProblem::SettingsDiffer;
    }
    Flags<TeamProblem> found = session.CheckNewTeam(team);
    found |= session.ValidateTeamName(team.name);
    found |= session.ValidateTeamMode(team.mode);
    found |= session.ValidateNewMembers(team.members, team.mode);
    found |= session.ValidateMemberSettings(team.members);
    Complain(wish.subject, Without(found, settled));
}

void Planner::CheckNewVlans(const NewVlans& added) {
    Session& session = m_machine.Asked();
    const VlanSupport support = session.SupportsVlans(added.parent);
    if (support == VlanSupport::None) {
        Problem(added.subject, "it cannot carry VLANs");
        return;
    }
    const auto* adapter = std::get_if<AdapterId>(&added.parent);
    if (support == VlanSupport::TeamMember && adapter != nullptr) {
        return; // which leaves its team first, as the memberships have it
    }
    Flags<VlanProblem> settled;
    if (added.othersChange) {
        settled = Flags(VlanProblem::IdTaken) | VlanProblem::NameTaken | VlanProblem::TooMany;
    }
    std::vector<NewVlan> tagged = added.vlans;
    std::erase_if(tagged, [](const NewVlan& each) { return each.id == 0; });
    if (!tagged.empty()) {
        Complain(added.subject, Without(session.CheckVlans(added.parent, tagged), settled));
    }
    if (tagged.size() != added.vlans.size()) {
        if (!tagged.empty()) {
            settled |= VlanProblem::UntaggedAlone;
        }
        const auto untagged = std::find_if(added.vlans.begin(), added.vlans.end(),
                                           [](const NewVlan& each) { return each.id == 0; });
        Complain(added.subject, Without(session.CheckVlan(added.parent, *untagged), settled));
    }
}

} // namespace quillet::state
