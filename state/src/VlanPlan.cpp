// What has to be changed of VLANs.
#include "Planner.h"
#include "Texts.h"

#include <quillet/client/Text.h>

#include <algorithm>
#include <set>

namespace quillet::state {

namespace {

std::string VlanText(std::int32_t id) {
    return id == 0 ? "the untagged VLAN" : "VLAN " + std::to_string(id);
}

std::string WhatOf(std::int32_t id) {
    return "VLAN " + std::to_string(id);
}

const Vlan* VlanOf(const std::vector<Vlan>& vlans, std::int32_t id) {
    const auto found =
        std::find_if(vlans.begin(), vlans.end(), [id](const Vlan& each) { return each.number == id; });
    return found == vlans.end() ? nullptr : &*found;
}

VlanParentId ParentIn(const Work& work, const std::optional<VlanParentId>& known,
                      const std::string& newTeam) {
    return known ? *known : VlanParentId(work.teams.at(newTeam));
}

/// A name that nothing has, for a VLAN whose new name another has still.
std::string FreeName(const std::string& name, const std::map<std::int32_t, std::string>& names) {
    for (int number = 2;; ++number) {
        std::string free = name + " " + std::to_string(number);
        const auto isTaken = [&free](const auto& each) { return SameName(each.second, free); };
        if (std::none_of(names.begin(), names.end(), isTaken)) {
            return free;
        }
    }
}

std::string AdditionText(std::int32_t id, const std::string& name, const std::string& subject) {
    return "add " + VlanText(id) + " \"" + name + "\" to " + subject;
}

} // namespace

void Planner::PlanAdapterVlans(const std::map<std::size_t, std::string>& memberships) {
    std::map<std::size_t, std::vector<WantedVlan>> described;
    for (const AdapterWish& wish : m_adapters) {
        for (const WantedAdapter* entry : wish.entries) {
            if (!entry->vlans) {
                continue;
            }
            std::vector<WantedVlan>& vlans = described[wish.adapter];
            for (const WantedVlan& vlan : *entry->vlans) {
                std::erase_if(vlans, [&vlan](const WantedVlan& each) { return each.id == vlan.id; });
                vlans.push_back(vlan);
            }
        }
    }
    for (std::size_t i = 0; i < m_machine.Adapters().size(); ++i) {
        const auto joined = memberships.find(i);
        const auto entry = described.find(i);
        // What becomes a member must not carry VLANs any more.
        if (entry == described.end() && !m_document.isExclusive && joined == memberships.end()) {
            continue;
        }
        const VlanParentId parent = m_machine.Adapters()[i].id;
        const auto final = PlanVlans(parent, {}, SubjectOf(i),
                                     entry == described.end() ? std::vector<WantedVlan>() : entry->second);
        const bool wasMember = m_machine.TeamOf(i).has_value();
        if (joined != memberships.end() && !final.empty() && (!wasMember || entry != described.end())) {
            Problem(SubjectOf(i),
                    "it cannot carry VLANs and be a member of " + joined->second + ": VLANs go on the team");
        }
    }
}

std::map<std::int32_t, std::string> Planner::PlanVlans(const std::optional<VlanParentId>& parent,
                                                       const std::string& newTeam, const std::string& subject,
                                                       const std::vector<WantedVlan>& wanted) {
    const std::vector<Vlan> current = parent ? m_machine.Vlans(*parent) : std::vector<Vlan>();
    std::set<std::int32_t> described;
    std::set<std::int32_t> gone;
    for (const WantedVlan& vlan : wanted) {
        described.insert(vlan.id);
        if (vlan.isAbsent) {
            gone.insert(vlan.id);
        }
    }
    std::map<std::int32_t, std::string> final;
    for (const Vlan& vlan : current) {
        const bool goes =
            gone.contains(vlan.number) || (m_document.isExclusive && !described.contains(vlan.number));
        if (!goes) {
            final[vlan.number] = ToUtf8(vlan.name);
            continue;
        }
        Add(StepKind::VlanRemoved, subject, WhatOf(vlan.number), ToUtf8(vlan.name), Json(),
            "remove " + VlanText(vlan.number) + " \"" + ToUtf8(vlan.name) + "\" from " + subject,
            [id = vlan.id](Work& work) { work.session.RemoveVlan(id); });
        m_plan.losses.push_back(subject + ": " + VlanText(vlan.number) +
                                " that is made again has another object ID");
    }
    for (const WantedVlan& vlan : wanted) {
        if (vlan.isAbsent) {
            continue;
        }
        if (vlan.name) {
            final[vlan.id] = *vlan.name;
        } else if (!final.contains(vlan.id)) {
            Problem(subject, VlanText(vlan.id) + " is not there yet, and needs a name");
        }
    }
    for (auto one = final.begin(); one != final.end(); ++one) {
        for (auto other = std::next(one); other != final.end(); ++other) {
            if (SameName(one->second, other->second)) {
                Problem(subject, VlanText(one->first) + " and " + VlanText(other->first) +
                                     " would both be called " + one->second);
            }
        }
    }
    if (parent) {
        RenameVlans(*parent, subject, final);
    }
    NewVlans added{parent.value_or(VlanParentId()), subject, {}, false};
    for (const auto& [id, name] : final) {
        if (VlanOf(current, id) != nullptr) {
            continue;
        }
        const NewVlan vlan{id, FromUtf8(name)};
        added.vlans.push_back(vlan);
        Add(id == 0 ? StepKind::UntaggedVlanAdded : StepKind::VlanAdded, subject, WhatOf(id), Json(), name,
            AdditionText(id, name, subject), [parent, newTeam, vlan](Work& work) {
                work.session.AddVlan(ParentIn(work, parent, newTeam), vlan);
            });
    }
    if (parent && !added.vlans.empty()) {
        added.othersChange = std::any_of(current.begin(), current.end(), [&final](const Vlan& each) {
            const auto kept = final.find(each.number);
            return kept == final.end() || kept->second != ToUtf8(each.name);
        });
        m_newVlans.push_back(std::move(added));
    }
    for (const WantedVlan& vlan : wanted) {
        if (vlan.isAbsent || vlan.settings.empty()) {
            continue;
        }
        const std::string named = WhatOf(vlan.id) + " of " + subject;
        if (const Vlan* present = VlanOf(current, vlan.id)) {
            PlanSettings(present->id, named, vlan.settings, false);
        } else {
            PlanNewSettings(
                [parent, newTeam, id = vlan.id, named](Work& work) {
                    const std::vector<Vlan> vlans = work.session.Vlans(ParentIn(work, parent, newTeam));
                    const Vlan* made = VlanOf(vlans, id);
                    if (made == nullptr) {
                        throw std::runtime_error(named + " was not made");
                    }
                    return Owner(made->id);
                },
                named, vlan.settings);
        }
    }
    return final;
}

void Planner::RenameVlans(const VlanParentId& parent, const std::string& subject,
                          const std::map<std::int32_t, std::string>& final) {
    std::map<std::int32_t, std::string> names;
    std::vector<const Vlan*> waiting;
    for (const Vlan& vlan : m_machine.Vlans(parent)) {
        const auto kept = final.find(vlan.number);
        if (kept == final.end()) {
            continue;
        }
        names[vlan.number] = ToUtf8(vlan.name);
        if (kept->second != ToUtf8(vlan.name)) {
            waiting.push_back(&vlan);
        }
    }
    const auto rename = [&](const Vlan& vlan, const std::string& name) {
        Add(StepKind::VlanRenamed, subject, WhatOf(vlan.number), names[vlan.number], name,
            "rename " + VlanText(vlan.number) + " of " + subject + " to \"" + name + "\", now \"" +
                names[vlan.number] + '"',
            [id = vlan.id, changed = NewVlan{vlan.number, FromUtf8(name)}](Work& work) {
                work.session.ModifyVlan(id, changed);
            });
        names[vlan.number] = name;
    };
    while (!waiting.empty()) {
        const auto isFree = [&](const Vlan* vlan) {
            return std::none_of(names.begin(), names.end(), [&](const auto& each) {
                return each.first != vlan->number && SameName(each.second, final.at(vlan->number));
            });
        };
        const auto ready = std::find_if(waiting.begin(), waiting.end(), isFree);
        if (ready != waiting.end()) {
            rename(**ready, final.at((*ready)->number));
            waiting.erase(ready);
        } else if (m_plan.problems.empty()) {
            // They take each other's names: one steps aside.
            const Vlan& first = *waiting.front();
            std::map<std::int32_t, std::string> taken = names;
            taken.insert(final.begin(), final.end());
            rename(first, FreeName(final.at(first.number), taken));
        } else {
            return;
        }
    }
}

} // namespace quillet::state
