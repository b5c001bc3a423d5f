// What the machine has of all that a document mentions, in the document's own terms.
#include "Description.h"

#include "Options.h"
#include "SettingValues.h"
#include "Texts.h"
#include "Words.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

namespace {

/// The values of an object for the keys that another has.
Json OnlyKeysOf(const Json& all, const Json& keys) {
    Json only = Json::object();
    for (const auto& [key, value] : keys.items()) {
        if (const auto found = all.find(key); found != all.end()) {
            only[key] = *found;
        }
    }
    return only;
}

/// Adds what another has; whether nothing contradicts.
bool MergeAlike(Json& whole, const Json& part) {
    for (const auto& [key, value] : part.items()) {
        const auto known = whole.find(key);
        if (known == whole.end()) {
            whole[key] = value;
        } else if (!(known->is_object() && value.is_object() ? MergeAlike(*known, value) : *known == value)) {
            return false;
        }
    }
    return true;
}

/// The value that the setting has, as the document has it where that means the same.
Json InOwnTerms(const Setting& setting, const Json& wanted) {
    try {
        return HasSameValue(setting, WithValue(setting, wanted)) ? wanted : ValueOf(setting);
    } catch (const ValueError&) {
        return ValueOf(setting);
    }
}

} // namespace

Json Description::Settings(const Owner& owner, const Json& wanted) {
    Json settings = Json::object();
    for (const auto& [name, value] : wanted.items()) {
        if (const Setting* setting = SettingCalled(m_machine.Settings(owner), name)) {
            settings[name] = InOwnTerms(*setting, value);
        }
    }
    return settings;
}

Json Description::Like(const std::vector<WantedVlan>& wanted, const std::vector<Vlan>& vlans) {
    Json list = Json::array();
    for (const WantedVlan& vlan : wanted) {
        const auto found = std::find_if(vlans.begin(), vlans.end(),
                                        [&vlan](const Vlan& each) { return each.number == vlan.id; });
        Json json{{"id", vlan.id}};
        if (found == vlans.end()) {
            json["state"] = "absent";
        } else {
            if (vlan.name || vlan.isAbsent) {
                json["name"] = ToUtf8(found->name);
            }
            const Json settings =
                vlan.isAbsent ? ChangedSettings(found->id) : Settings(found->id, vlan.settings);
            if (!settings.empty()) {
                json["settings"] = settings;
            }
        }
        list.push_back(std::move(json));
    }
    return list;
}

Json Description::Like(const WantedAdapter& wanted, std::size_t adapter, For purpose) {
    const AdapterId& id = m_machine.Adapters()[adapter].id;
    const bool isOwnName = purpose == For::Reading && !wanted.selector.IsPattern();
    Json json = isOwnName ? wanted.selector.written : SelectorOf(adapter, NamedBy::Name);
    Json settings = Settings(id, wanted.settings);
    if (!wanted.profile.is_null()) {
        const std::vector<Setting>& all = m_machine.Settings(id);
        if (const Setting* profile = SettingCalled(all, kProfile)) {
            json["profile"] = InOwnTerms(*profile, wanted.profile);
        }
        for (const Setting& setting : all) { // which a profile may change as well
            if (purpose == For::GoingBack && setting.writable && !IsProfile(setting)) {
                settings[ToUtf8(setting.keyword)] = ValueOf(setting);
            }
        }
    }
    if (!settings.empty()) {
        json["settings"] = std::move(settings);
    }
    if (!wanted.power.empty()) {
        const Json power = AsJson(m_machine.Power(adapter));
        json["power"] = purpose == For::GoingBack ? power : OnlyKeysOf(power, wanted.power);
    }
    if (!wanted.wakeOnLan.empty()) {
        json["wakeOnLan"] = OnlyKeysOf(AsJson(m_machine.Wake(adapter)), wanted.wakeOnLan);
    }
    if (wanted.iscsi) {
        const IscsiAdapter* port = m_machine.Iscsi(adapter);
        // One that cannot boot so is off.
        const auto word = IscsiWord(port == nullptr ? IscsiStatus::NotBootPort : port->status);
        if (word) {
            json["iscsi"] = *word;
        }
    }
    if (wanted.vlans) {
        json["vlans"] = Like(*wanted.vlans, m_machine.Vlans(id));
    }
    return json;
}

Json Description::Like(const WantedTeam& wanted, For purpose) {
    const std::vector<std::size_t> found = m_machine.TeamsCalled(wanted.name);
    if (found.empty()) {
        return Json{{"name", wanted.name}, {"state", "absent"}};
    }
    const TeamFacts& facts = m_machine.Teams()[found.front()];
    if (wanted.isAbsent) {
        return Whole(facts);
    }
    Json json{{"name", wanted.name}};
    if (!wanted.mode.is_null()) {
        json["mode"] = ModeFrom(wanted.mode) == facts.team.mode ? wanted.mode : AsJson(facts.team.mode);
    }
    const bool back = purpose == For::GoingBack && wanted.members.has_value();
    if (wanted.members) {
        json["members"] = Members(facts, NamedBy::Name);
        std::vector<std::size_t> own;
        for (const Selector& selector : *wanted.members) {
            const std::vector<std::size_t> selected = m_machine.Select(selector);
            own.insert(own.end(), selected.begin(), selected.end());
        }
        const bool isSame =
            own.size() == facts.members.size() &&
            std::all_of(facts.members.begin(), facts.members.end(), [&](const TeamMember& each) {
                const auto adapter = m_machine.Find(each.id);
                return adapter && std::find(own.begin(), own.end(), *adapter) != own.end();
            });
        if (isSame && purpose == For::Reading) { // in the order and by the names of the document
            json["members"] = Json::array();
            for (const Selector& selector : *wanted.members) {
                json["members"].push_back(selector.written);
            }
        }
    }
    for (const auto& [key, selector, role] :
         {std::tuple("primary", wanted.primary, MemberRole::Primary),
          std::tuple("secondary", wanted.secondary, MemberRole::Secondary)}) {
        if (selector || back) {
            const TeamMember* holder = facts.Holder(role);
            const bool isOwn = selector && !selector->IsEmpty() && holder != nullptr &&
                               purpose == For::Reading &&
                               m_machine.Select(*selector) ==
                                   std::vector<std::size_t>{m_machine.Find(holder->id).value_or(SIZE_MAX)};
            json[key] = isOwn ? selector->written : Role(facts, role, NamedBy::Name);
        }
    }
    if (wanted.multiVendor) {
        json["multiVendor"] = facts.team.multiVendor;
    }
    if (wanted.linkSecurity) {
        json["linkSecurity"] = facts.team.linkSecurity;
    }
    if (!wanted.settings.empty()) {
        json["settings"] = Settings(facts.team.id, wanted.settings);
    }
    if (wanted.vlans) {
        json["vlans"] = Like(*wanted.vlans, m_machine.Vlans(facts.team.id));
    }
    return json;
}

std::vector<std::size_t> Description::Named(const Selector& selector) {
    std::vector<std::size_t> found = m_machine.Select(selector);
    if (found.empty() || (found.size() > 1 && !selector.IsPattern())) {
        throw DocumentError({std::string("adapters: ") +
                             (found.empty() ? "no adapter is " : "several adapters are ") + selector.Text()});
    }
    return found;
}

Json Description::UndescribedTeams(const Document& document) {
    Json teams = Json::array();
    for (const TeamFacts& facts : m_machine.Teams()) {
        const std::string name = ToUtf8(facts.team.name);
        const auto isNamed = [&name](const WantedTeam& each) { return SameName(each.name, name); };
        if (std::none_of(document.teams.begin(), document.teams.end(), isNamed)) {
            teams.push_back(Whole(facts));
        }
    }
    return teams;
}

Json Description::Like(const Document& document) {
    Json json = Json::object();
    Json adapters = Json::array();
    std::vector<std::size_t> described;
    for (const WantedAdapter& wanted : document.adapters) {
        Json together = wanted.selector.written;
        Json apart = Json::array();
        bool isAlike = wanted.selector.IsPattern();
        for (const std::size_t adapter : Named(wanted.selector)) {
            Json one = Like(wanted, adapter, For::Reading);
            if (document.isExclusive) {
                AddOthers(one, m_machine.Adapters()[adapter].id);
            }
            described.push_back(adapter);
            Json told = one;
            told.erase("name");
            isAlike = isAlike && MergeAlike(together, told);
            apart.push_back(std::move(one));
        }
        for (Json& one : isAlike ? Json::array({together}) : apart) {
            adapters.push_back(std::move(one));
        }
    }
    for (std::size_t i = 0; document.isExclusive && i < m_machine.Adapters().size(); ++i) {
        Json vlans = Vlans(m_machine.Adapters()[i].id);
        if (!vlans.empty() && std::find(described.begin(), described.end(), i) == described.end()) {
            Json one = SelectorOf(i, NamedBy::Name);
            one["vlans"] = std::move(vlans);
            adapters.push_back(std::move(one));
        }
    }
    Json teams = Json::array();
    for (const WantedTeam& wanted : document.teams) {
        Json one = Like(wanted, For::Reading);
        const std::vector<std::size_t> found = m_machine.TeamsCalled(wanted.name);
        if (document.isExclusive && !found.empty() && !wanted.isAbsent) {
            AddOthers(one, m_machine.Teams()[found.front()].team.id);
        }
        teams.push_back(std::move(one));
    }
    if (document.isExclusive) {
        for (Json& team : UndescribedTeams(document)) {
            teams.push_back(std::move(team));
        }
    }
    if (!adapters.empty()) {
        json["adapters"] = std::move(adapters);
    }
    if (!teams.empty()) {
        json["teams"] = std::move(teams);
    }
    if (document.isExclusive) {
        json["exclusive"] = true;
    }
    return json;
}

/// Adds the VLANs that an adapter or a team has beside those that it is described with.
void Description::AddOthers(Json& owner, const VlanParentId& parent) {
    for (const Json& vlan : Vlans(parent)) {
        const auto isSame = [&vlan](const Json& each) { return each.at("id") == vlan.at("id"); };
        const auto described = owner.find("vlans");
        if (described == owner.end() || std::none_of(described->begin(), described->end(), isSame)) {
            owner["vlans"].push_back(vlan);
        }
    }
}

} // namespace quillet::state
