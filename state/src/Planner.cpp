// The plan as a whole, and finding what a document is about.
#include "Planner.h"

#include "Texts.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

Plan Planner::Make(Checks checks) {
    MatchAdapters();
    MatchTeams();
    const std::map<std::size_t, std::string> memberships = Memberships();
    PlanDeletions();
    for (const AdapterWish& wish : m_adapters) {
        PlanAdapter(wish);
    }
    for (const TeamWish& wish : m_teams) {
        if (wish.IsPresent()) {
            PlanTeam(wish);
        }
    }
    PlanAdapterVlans(memberships);
    if (checks == Checks::All && m_plan.problems.empty()) {
        CheckSteps();
    }
    std::stable_sort(m_plan.steps.begin(), m_plan.steps.end(),
                     [](const Step& left, const Step& right) { return left.kind < right.kind; });
    return std::move(m_plan);
}

void Planner::MatchAdapters() {
    const auto wishOf = [this](std::size_t adapter) -> AdapterWish& {
        const auto found =
            std::find_if(m_adapters.begin(), m_adapters.end(),
                         [adapter](const AdapterWish& each) { return each.adapter == adapter; });
        return found != m_adapters.end() ? *found : m_adapters.emplace_back(AdapterWish{adapter, {}});
    };
    for (const WantedAdapter& entry : m_document.adapters) {
        if (!entry.selector.IsPattern()) {
            continue;
        }
        const std::vector<std::size_t> found = m_machine.Select(entry.selector);
        if (found.empty()) {
            Problem("adapters", "no adapter fits " + entry.selector.Text());
        }
        for (const std::size_t adapter : found) {
            wishOf(adapter).entries.push_back(&entry);
        }
    }
    for (const WantedAdapter& entry : m_document.adapters) {
        if (entry.selector.IsPattern()) {
            continue;
        }
        if (const auto adapter = OneAdapter(entry.selector, "adapters")) {
            AdapterWish& wish = wishOf(*adapter);
            if (!wish.entries.empty() && !wish.entries.back()->selector.IsPattern()) {
                Problem("adapters", SubjectOf(*adapter) + " is described twice");
                continue;
            }
            wish.entries.push_back(&entry);
        }
    }
}

std::optional<std::size_t> Planner::OneAdapter(const Selector& selector, const std::string& where) {
    const std::vector<std::size_t> found = m_machine.Select(selector);
    if (found.size() == 1) {
        return found.front();
    }
    if (found.empty()) {
        Problem(where, "there is no adapter " + selector.Text());
        return std::nullopt;
    }
    std::vector<std::string> names;
    names.reserve(found.size());
    for (const std::size_t adapter : found) {
        names.push_back(m_machine.NameOf(adapter));
    }
    Problem(where, "several adapters are " + selector.Text() + ": " + ListOf(names));
    return std::nullopt;
}

void Planner::MatchTeams() {
    for (const WantedTeam& entry : m_document.teams) {
        TeamWish wish{&entry};
        wish.subject = "team " + entry.name;
        const bool isDouble = std::any_of(m_teams.begin(), m_teams.end(), [&](const TeamWish& each) {
            return SameName(each.entry->name, entry.name);
        });
        const std::vector<std::size_t> found = m_machine.TeamsCalled(entry.name);
        if (isDouble || found.size() > 1) {
            Problem("teams",
                    isDouble ? entry.name + " is described twice" : "several teams are called " + entry.name);
            continue;
        }
        if (!found.empty()) {
            wish.team = found.front();
        }
        if (wish.IsPresent()) {
            MatchTeam(wish);
        }
        m_teams.push_back(std::move(wish));
    }
}

void Planner::MatchTeam(TeamWish& wish) {
    const WantedTeam& entry = *wish.entry;
    if (entry.members) {
        wish.members.emplace();
        for (const Selector& selector : *entry.members) {
            const auto adapter = OneAdapter(selector, wish.subject);
            if (!adapter) {
                continue;
            }
            if (std::find(wish.members->begin(), wish.members->end(), *adapter) != wish.members->end()) {
                Problem(wish.subject, m_machine.NameOf(*adapter) + " is named twice");
                continue;
            }
            wish.members->push_back(*adapter);
        }
        if (entry.members->empty()) {
            Problem(wish.subject, R"(a team has a member at least; "state": "absent" deletes it)");
        }
    } else if (!wish.team) {
        Problem(wish.subject, "there is none yet, and without members it cannot be made");
    }
    MatchRole(wish, entry.primary, wish.primary);
    MatchRole(wish, entry.secondary, wish.secondary);
    if (wish.primary.adapter && wish.primary.adapter == wish.secondary.adapter) {
        Problem(wish.subject, m_machine.NameOf(*wish.primary.adapter) + " cannot be primary and secondary");
    }
}

void Planner::MatchRole(const TeamWish& wish, const std::optional<Selector>& selector, TeamWish::Role& role) {
    role.isWanted = selector.has_value();
    if (!selector || selector->IsEmpty()) {
        return;
    }
    const std::vector<std::size_t> members = wish.members ? *wish.members
                                             : wish.team  ? CurrentMembers(*wish.team)
                                                          : std::vector<std::size_t>();
    role.adapter = OneAdapter(*selector, wish.subject);
    if (role.adapter && std::find(members.begin(), members.end(), *role.adapter) == members.end()) {
        Problem(wish.subject,
                m_machine.NameOf(*role.adapter) + " is to have a role, and will not be a member");
    }
}

std::map<std::size_t, std::string> Planner::Memberships() {
    std::map<std::size_t, std::string> joined;
    std::map<std::size_t, std::string> kept;
    std::map<std::size_t, std::string> replaced; // which leave their team only when others have joined it
    std::vector<std::size_t> described;
    for (const TeamWish& wish : m_teams) {
        for (const std::size_t adapter : wish.members.value_or(std::vector<std::size_t>())) {
            const auto [place, isNew] = joined.emplace(adapter, wish.subject);
            if (!isNew) {
                Problem(wish.subject,
                        m_machine.NameOf(adapter) + " is to be a member of " + place->second + ", too");
            }
        }
        if (!wish.team) {
            continue;
        }
        described.push_back(*wish.team);
        const std::vector<std::size_t> current = CurrentMembers(*wish.team);
        const auto stays = [&](std::size_t each) {
            return std::find(wish.members->begin(), wish.members->end(), each) != wish.members->end();
        };
        const bool isReplaced = wish.members && std::none_of(current.begin(), current.end(), stays);
        for (const std::size_t adapter : current) {
            if (wish.IsPresent() && !wish.members) {
                kept.emplace(adapter, wish.subject);
            } else if (wish.IsPresent() && isReplaced) {
                replaced.emplace(adapter, wish.subject);
            }
        }
    }
    const bool movesVlans = std::any_of(m_adapters.begin(), m_adapters.end(), [](const AdapterWish& wish) {
        return std::any_of(wish.entries.begin(), wish.entries.end(),
                           [](const WantedAdapter* entry) { return entry->vlans.has_value(); });
    });
    const bool othersStay = !m_document.isExclusive && (movesVlans || !m_teams.empty());
    for (std::size_t team = 0; othersStay && team < m_machine.Teams().size(); ++team) {
        if (std::find(described.begin(), described.end(), team) == described.end()) {
            for (const std::size_t adapter : CurrentMembers(team)) {
                kept.emplace(adapter, "team " + ToUtf8(m_machine.Teams()[team].team.name));
            }
        }
    }
    for (const auto& [adapter, target] : joined) {
        const auto home = kept.find(adapter);
        if (home != kept.end()) {
            Problem(target, m_machine.NameOf(adapter) + " is a member of " + home->second +
                                ": describe the members of that team, or its absence");
        }
        const auto left = replaced.find(adapter);
        if (left != replaced.end() && left->second != target) {
            Problem(target, m_machine.NameOf(adapter) + " cannot come from " + left->second +
                                ", which gets all its members replaced");
        }
    }
    joined.merge(kept);
    return joined;
}

void Planner::Add(StepKind kind, const std::string& subject, const std::string& what, Json now, Json wanted,
                  std::string words, std::function<void(Work&)> make) {
    m_plan.steps.push_back(
        {kind, subject, what, std::move(now), std::move(wanted), std::move(words), std::move(make)});
}

void Planner::Problem(const std::string& where, const std::string& what) {
    m_plan.problems.push_back(where + ": " + what);
}

std::string Planner::NameOf(const AdapterId& id) {
    const std::optional<std::size_t> adapter = m_machine.Find(id);
    return adapter ? m_machine.NameOf(*adapter) : ToUtf8(id.Path());
}

std::vector<std::size_t> Planner::CurrentMembers(std::size_t team) {
    std::vector<std::size_t> members;
    for (const TeamMember& member : m_machine.Teams()[team].members) {
        if (const auto adapter = m_machine.Find(member.id)) {
            members.push_back(*adapter);
        }
    }
    return members;
}

std::vector<AdapterId> Planner::IdsOf(const std::vector<std::size_t>& adapters) {
    std::vector<AdapterId> ids;
    ids.reserve(adapters.size());
    for (const std::size_t adapter : adapters) {
        ids.push_back(m_machine.Adapters()[adapter].id);
    }
    return ids;
}

Json Planner::NamesOf(const std::vector<std::size_t>& adapters) {
    Json names = Json::array();
    for (const std::size_t adapter : adapters) {
        names.push_back(m_machine.NameOf(adapter));
    }
    return names;
}

std::vector<std::string> WordsOf(const Plan& plan) {
    std::vector<std::string> words;
    words.reserve(plan.steps.size());
    for (const Step& step : plan.steps) {
        words.push_back(step.words);
    }
    return words;
}

Plan MakePlan(Session& session, const Document& document, Checks checks) {
    Machine machine(session);
    return Planner(machine, document).Make(checks);
}

} // namespace quillet::state
