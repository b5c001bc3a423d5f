// Asking the machine.
#include "completion/MachineNames.h"

#include "names/AdapterLookup.h"
#include "names/SettingOwner.h"
#include "names/TeamLookup.h"
#include "names/VlanParent.h"
#include "texts/Text.h"

#include <algorithm>
#include <map>

namespace quilletctl {

namespace {

using Proposals = std::vector<Proposal>;

/// A word for each: what it is called or, where others are called so too, what names it alone.
Proposals WordsFor(Proposals called, const std::vector<std::string>& ids) {
    std::map<std::string, int> count;
    for (Proposal& each : called) {
        each.word = Printable(each.word);
        ++count[each.word];
    }
    Proposals words;
    for (std::size_t i = 0; i < called.size(); ++i) {
        const auto& [word, description] = called[i];
        const bool isAlone = !word.empty() && count[word] == 1;
        words.push_back(isAlone ? Proposal{word, description.empty() ? ids[i] : description}
                                : Proposal{ids[i], word});
    }
    return words;
}

Proposals WordsFor(const std::vector<Named>& things) {
    Proposals called;
    std::vector<std::string> ids;
    for (const Named& thing : things) {
        called.push_back({thing.called});
        ids.push_back(thing.id);
    }
    return WordsFor(called, ids);
}

std::vector<Named> Adapters(quillet::Session& session) {
    std::vector<Named> names;
    for (const ListedAdapter& adapter : ReadAdapters(session)) {
        names.push_back(NamesOf(adapter));
    }
    return names;
}

Proposals Members(quillet::Session& session, const std::string& name) {
    const quillet::Team team = FindTeam(session, name);
    const std::vector<quillet::TeamMember> members =
        Attempt("list the members", [&] { return session.Members(team.id); });
    std::vector<Named> names;
    for (const ListedAdapter& adapter : ReadAdapters(session)) {
        if (std::any_of(members.begin(), members.end(),
                        [&](const quillet::TeamMember& each) { return each.id == adapter.id; })) {
            names.push_back(NamesOf(adapter));
        }
    }
    return WordsFor(names);
}

Proposals Parents(quillet::Session& session) {
    std::vector<Named> names = NamesOf(ReadTeams(session));
    const std::vector<Named> adapters = Adapters(session);
    names.insert(names.end(), adapters.begin(), adapters.end());
    return WordsFor(names);
}

Proposals Vlans(quillet::Session& session, const std::vector<VlanParent>& parents, bool byNumber) {
    Proposals called;
    std::vector<std::string> ids;
    for (const VlanParent& parent : parents) {
        for (const quillet::Vlan& vlan : ReadVlans(session, parent)) {
            called.push_back(byNumber ? Proposal{NumberText(vlan), ToUtf8(vlan.name)}
                                      : Proposal{ToUtf8(vlan.name), NumberText(vlan) + " of " + parent.name});
            ids.push_back(ToUtf8(vlan.objectId));
        }
    }
    return WordsFor(called, ids);
}

Proposals ProposedOwners(quillet::Session& session, const std::string& kind) {
    return kind == "team"   ? WordsFor(NamesOf(ReadTeams(session)))
           : kind == "vlan" ? Vlans(session, ReadVlanParents(session), false)
                            : WordsFor(Adapters(session));
}

/// The settings of the first owner that there is.
std::vector<quillet::Setting> SettingsOf(quillet::Session& session, const CompletedLine& line) {
    const std::string owner = line.Owner();
    return ReadSettings(session,
                        FindSettingOwners(session, owner.empty() ? "*" : owner, line.OwnerKind()).front());
}

Proposals Settings(quillet::Session& session, const CompletedLine& line, const char* behind) {
    Proposals called;
    std::vector<std::string> ids;
    for (const quillet::Setting& setting : SettingsOf(session, line)) {
        called.push_back({ToUtf8(setting.keyword) + behind, ToUtf8(setting.description)});
        ids.push_back(ToUtf8(setting.id.Path()));
    }
    return WordsFor(called, ids);
}

/// The texts of a setting's values; numbers where they have none.
Proposals Values(quillet::Session& session, const CompletedLine& line) {
    const std::vector<quillet::Setting> settings = SettingsOf(session, line);
    const quillet::Setting* setting = LookForSetting(settings, line.Setting());
    const auto* choices = setting == nullptr ? nullptr : [&] {
        const auto* one = std::get_if<quillet::ChoiceValue>(&setting->value);
        const auto* several = std::get_if<quillet::SelectionValue>(&setting->value);
        return one != nullptr ? &one->choices : several != nullptr ? &several->choices : nullptr;
    }();
    Proposals called;
    std::vector<std::string> ids;
    for (const quillet::Choice& choice : choices == nullptr ? std::vector<quillet::Choice>() : *choices) {
        called.push_back({ToUtf8(choice.text)});
        ids.push_back(ToUtf8(choice.value));
    }
    if (const auto* slider =
            setting == nullptr ? nullptr : std::get_if<quillet::SliderValue>(&setting->value)) {
        for (const std::int32_t value : slider->possible) {
            called.emplace_back();
            ids.push_back(std::to_string(value));
        }
    }
    return WordsFor(called, ids);
}

Proposals Tests(quillet::Session& session, const std::string& adapter) {
    Proposals called;
    std::vector<std::string> ids;
    for (const quillet::Diagnostic& test : session.Diagnostics(FindAdapter(session, adapter).id)) {
        called.push_back({ToUtf8(test.name)});
        ids.push_back(std::to_string(test.number));
    }
    return WordsFor(called, ids);
}

Proposals Profiles(quillet::Session& session, const std::string& adapter) {
    Proposals called;
    std::vector<std::string> ids;
    for (const quillet::OfferedProfile& each :
         session.Profiles(FindAdapters(session, {adapter}).front().id)) {
        called.push_back({ToUtf8(each.description)});
        ids.push_back(std::to_string(static_cast<std::int32_t>(each.profile)));
    }
    return WordsFor(called, ids);
}

Proposals Read(quillet::Session& session, const CompletedLine& line) {
    const std::string before = line.Path().empty() ? std::string() : line.Path().front();
    switch (line.FromMachine()) {
    case MachineWord::None:
        return {};
    case MachineWord::Adapter:
        return WordsFor(Adapters(session));
    case MachineWord::Team:
        return WordsFor(NamesOf(ReadTeams(session)));
    case MachineWord::Member:
        return Members(session, before);
    case MachineWord::Parent:
        return Parents(session);
    case MachineWord::Vlan:
        return Vlans(session, {FindVlanParent(session, before)}, true);
    case MachineWord::Owner:
        return ProposedOwners(session, line.OwnerKind());
    case MachineWord::Setting:
        return Settings(session, line, "");
    case MachineWord::Assignment:
        return Settings(session, line, "=");
    case MachineWord::SettingValue:
        return Values(session, line);
    case MachineWord::Test:
        return Tests(session, before);
    case MachineWord::Profile:
        return Profiles(session, before);
    }
    return {};
}

} // namespace

std::vector<Proposal> NamesOfMachine(quillet::Session& session, const CompletedLine& line) {
    Proposals proposals = Read(session, line);
    std::erase_if(proposals, [&](const Proposal& each) {
        // What is there already is not wanted again.
        return line.Prefix().empty() &&
               std::find(line.Path().begin(), line.Path().end(), each.word) != line.Path().end();
    });
    for (Proposal& each : proposals) {
        each.word = line.Prefix() + each.word;
        each.description = Printable(each.description);
    }
    return proposals;
}

} // namespace quilletctl
