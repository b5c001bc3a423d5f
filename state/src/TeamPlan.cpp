// What has to be changed of teams.
#include "Planner.h"
#include "Texts.h"
#include "Words.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

namespace {

constexpr TeamMode kUsualMode = TeamMode::AdaptiveLoadBalancing;

bool Contains(const std::vector<std::size_t>& adapters, std::size_t adapter) {
    return std::find(adapters.begin(), adapters.end(), adapter) != adapters.end();
}

/// The team of a step: one that is there, or one that was made under the name.
TeamId TeamIn(const Work& work, const std::optional<TeamId>& known, const std::string& name) {
    if (known) {
        return *known;
    }
    const auto made = work.teams.find(name);
    if (made == work.teams.end()) {
        throw std::runtime_error("the team " + name + " was not made");
    }
    return made->second;
}

const char* RoleWord(MemberRole role) {
    return role == MemberRole::Primary ? "primary" : "secondary";
}

} // namespace

void Planner::PlanDeletions() {
    std::vector<std::size_t> described;
    for (const TeamWish& wish : m_teams) {
        if (wish.team) {
            described.push_back(*wish.team);
            if (!wish.IsPresent()) {
                m_deletedTeams.push_back(*wish.team);
            }
        }
    }
    for (std::size_t team = 0; m_document.isExclusive && team < m_machine.Teams().size(); ++team) {
        if (!Contains(described, team)) {
            m_deletedTeams.push_back(team);
        }
    }
    for (const std::size_t team : m_deletedTeams) {
        const Team& facts = m_machine.Teams()[team].team;
        const std::string name = ToUtf8(facts.name);
        const Json now{{"mode", AsJson(facts.mode)}, {"members", NamesOf(CurrentMembers(team))}};
        Add(StepKind::TeamDeleted, "team " + name, "team", now, Json(),
            "delete the team " + name + " and its VLANs",
            [id = facts.id](Work& work) { work.session.RemoveTeam(id); });
        m_plan.losses.push_back(
            "team " + name +
            ": a team that is made again has another object ID, so have its VLANs, and its "
            "settings are those of a new one where it has any");
    }
}

void Planner::PlanTeam(const TeamWish& wish) {
    if (!wish.team) {
        PlanNewTeam(wish);
        return;
    }
    const Team& team = m_machine.Teams()[*wish.team].team;
    const std::optional<TeamMode> mode = ModeFrom(wish.entry->mode);
    if (mode && *mode != team.mode) {
        // Two are all that the mode of a pair takes.
        const bool isPair = team.mode == TeamMode::SwitchFaultTolerance;
        Add(isPair ? StepKind::EarlyMode : StepKind::Mode, wish.subject, "mode", AsJson(team.mode),
            AsJson(*mode),
            "change the mode of " + wish.subject + " to " + ToUtf8(Text(*mode)) + ", now " +
                ToUtf8(Text(team.mode)),
            [id = team.id, name = team.name, mode = *mode](Work& work) {
                work.session.ModifyTeam(id, name, mode);
            });
    }
    for (const auto& [wanted, present, what] :
         {std::tuple(wish.entry->multiVendor, team.multiVendor, "multiVendor"),
          std::tuple(wish.entry->linkSecurity, team.linkSecurity, "linkSecurity")}) {
        if (wanted && *wanted != present) {
            Problem(wish.subject, std::string(what) + " is decided when a team is made, and is " +
                                      (present ? "true" : "false"));
        }
    }
    PlanMembers(wish);
    PlanSettings(team.id, wish.subject, wish.entry->settings, false);
    if (wish.entry->vlans || m_document.isExclusive) {
        PlanVlans(team.id, {}, wish.subject, wish.entry->vlans.value_or(std::vector<WantedVlan>()));
    }
}

void Planner::PlanNewTeam(const TeamWish& wish) {
    const std::string& name = wish.entry->name;
    NewTeam team;
    team.name = FromUtf8(name);
    team.mode = ModeFrom(wish.entry->mode).value_or(kUsualMode);
    team.multiVendor = wish.entry->multiVendor.value_or(false);
    team.linkSecurity = wish.entry->linkSecurity.value_or(false);
    std::vector<std::size_t> members = wish.members.value_or(std::vector<std::size_t>());
    // The first becomes the primary one, the next the secondary.
    const auto rank = [&wish](std::size_t each) {
        return wish.primary.adapter == each ? 0 : wish.secondary.adapter == each ? 1 : 2;
    };
    std::stable_sort(members.begin(), members.end(),
                     [&rank](std::size_t left, std::size_t right) { return rank(left) < rank(right); });
    team.members = IdsOf(members);
    const Json names = NamesOf(members);
    Add(StepKind::TeamMade, wish.subject, "team", Json(),
        Json{{"mode", AsJson(team.mode)}, {"members", names}},
        "make the team " + name + " (" + ToUtf8(Text(team.mode)) + ") of " +
            ListOf(names.get<std::vector<std::string>>()),
        [team, name](Work& work) {
            try {
                work.teams[name] = work.session.CreateTeam(team).id;
            } catch (const PartialError<Team>& failure) {
                if (failure.Read().id.IsEmpty()) {
                    throw;
                }
                work.teams[name] = failure.Read().id; // it was made, and could not be read
            }
        });
    PlanRole(wish, wish.primary, true);
    PlanRole(wish, wish.secondary, true);
    PlanNewSettings([name](Work& work) { return Owner(TeamIn(work, std::nullopt, name)); }, wish.subject,
                    wish.entry->settings);
    PlanVlans(std::nullopt, name, wish.subject, wish.entry->vlans.value_or(std::vector<WantedVlan>()));
}

void Planner::PlanMembers(const TeamWish& wish) {
    const TeamFacts& facts = m_machine.Teams()[*wish.team];
    const TeamId id = facts.team.id;
    const std::vector<std::size_t> before = CurrentMembers(*wish.team);
    const std::vector<std::size_t> wanted = wish.members.value_or(before);
    const bool isReplaced =
        std::none_of(before.begin(), before.end(), [&](std::size_t each) { return Contains(wanted, each); });
    bool changes = false;
    for (const std::size_t adapter : before) {
        if (!Contains(wanted, adapter)) {
            changes = true;
            const std::string name = m_machine.NameOf(adapter);
            Add(isReplaced ? StepKind::LastMemberRemoved : StepKind::MemberRemoved, wish.subject, "member",
                name, Json(), "take " + name + " out of " + wish.subject,
                [id, adapter = m_machine.Adapters()[adapter].id](Work& work) {
                    work.session.RemoveMember(id, adapter);
                });
        }
    }
    for (const std::size_t adapter : wanted) {
        if (!Contains(before, adapter)) {
            changes = true;
            const std::string name = m_machine.NameOf(adapter);
            Add(StepKind::MemberAdded, wish.subject, "member", Json(), name,
                "add " + name + " to " + wish.subject,
                [id, adapter = m_machine.Adapters()[adapter].id](Work& work) {
                    work.session.AddMember(id, adapter);
                });
        }
    }
    PlanRole(wish, wish.primary, changes);
    PlanRole(wish, wish.secondary, changes);
}

void Planner::PlanRole(const TeamWish& wish, const TeamWish::Role& wanted, bool membersChange) {
    const MemberRole role = wanted.role;
    const TeamMember* holder = wish.team ? m_machine.Teams()[*wish.team].Holder(role) : nullptr;
    const std::string present = holder != nullptr ? NameOf(holder->id) : std::string();
    const std::string name = wanted.adapter ? m_machine.NameOf(*wanted.adapter) : std::string();
    if (!wanted.isWanted || (present == name && !membersChange)) {
        return;
    }
    // A provider hands out roles by itself when members come and go, so whoever has it then is asked then.
    const std::optional<TeamId> known =
        wish.team ? std::optional(m_machine.Teams()[*wish.team].team.id) : std::nullopt;
    const std::optional<AdapterId> id =
        wanted.adapter ? std::optional(m_machine.Adapters()[*wanted.adapter].id) : std::nullopt;
    Add(StepKind::Role, wish.subject, RoleWord(role), present.empty() ? Json() : Json(present),
        name.empty() ? Json() : Json(name),
        (id ? "make " + name + " the " : std::string("leave nobody as the ")) + RoleWord(role) +
            " member of " + wish.subject,
        [known, team = wish.entry->name, id, role](Work& work) {
            Machine now(work.session);
            const std::optional<std::size_t> adapter = id ? now.Find(*id) : std::nullopt;
            for (const TeamMember& member : work.session.Members(TeamIn(work, known, team))) {
                const bool isMeant = id && now.Find(member.id) == adapter;
                if (isMeant && member.role != role) {
                    work.session.SetRole(member.id, role);
                } else if (!id && member.role == role) {
                    work.session.SetRole(member.id, MemberRole::NotAssigned);
                }
            }
        });
}

} // namespace quillet::state
