// From what was read to a document.
#include "Description.h"

#include "Options.h"
#include "SettingValues.h"
#include "Texts.h"
#include "Words.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

namespace {

constexpr const char* kProfile = "PerformanceProfile";

bool IsProfile(const Setting& setting) {
    return SameName(ToUtf8(setting.keyword), kProfile);
}

template <class Record, std::size_t Size>
void AddOptions(Json& json, const std::array<Option<Record>, Size>& options, const Record& record) {
    for (const auto& option : options) {
        if (const std::optional<bool>& value = record.*option.field) {
            json[option.key] = *value;
        }
    }
}

Json PowerJson(const PowerOptions& power) {
    Json json{{"mode", power.mode}};
    AddOptions(json, kPowerOptions, power);
    return json;
}

Json WakeJson(const WakeOptions& wake) {
    Json json = Json::object();
    AddOptions(json, kWakeOptions, wake);
    return json;
}

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

Json Description::SelectorOf(std::size_t adapter, NamedBy by) {
    if (by == NamedBy::Name) {
        return Json{{"name", m_machine.NameOf(adapter)}};
    }
    const Place& place = m_machine.PlaceOf(adapter);
    if (by == NamedBy::Mac && !MacDigits(place.mac).empty()) {
        return Json{{"mac", place.mac}};
    }
    if (by == NamedBy::Slot && !place.slot.empty()) {
        Json selector{{"slot", place.slot}};
        if (!place.port.empty()) {
            selector["port"] = place.port;
        }
        return selector;
    }
    return Json{{"name", m_machine.NameOf(adapter)}};
}

Json Description::Whole(std::size_t adapter, const ShowOptions& options, std::vector<std::string>& unread) {
    const AdapterId& id = m_machine.Adapters()[adapter].id;
    Json json = SelectorOf(adapter, options.by);
    const std::size_t named = json.size();
    const auto tell = [&](const char* what, const auto& read) {
        try {
            read();
        } catch (const Error& error) {
            unread.push_back(std::string("the ") + what + " of " + m_machine.NameOf(adapter) + ": " +
                             error.what());
        }
    };
    tell("settings", [&] {
        Json settings = Json::object();
        for (const Setting& setting : m_machine.Settings(id)) {
            if (!setting.writable || (options.onlyChanged && IsStandard(setting))) {
                continue;
            }
            if (IsProfile(setting)) {
                json["profile"] = ValueOf(setting);
            } else {
                settings[ToUtf8(setting.keyword)] = ValueOf(setting);
            }
        }
        if (!settings.empty()) {
            json["settings"] = std::move(settings);
        }
    });
    if (!options.onlyChanged) {
        tell("power options", [&] { json["power"] = PowerJson(m_machine.Power(adapter)); });
        tell("wake-on-LAN options", [&] {
            if (const Json wake = WakeJson(m_machine.Wake(adapter)); !wake.empty()) {
                json["wakeOnLan"] = wake;
            }
        });
    }
    tell("place in booting from iSCSI", [&] {
        const IscsiAdapter* port = m_machine.Iscsi(adapter);
        const auto word = port == nullptr ? std::nullopt : IscsiWord(port->status);
        if (word && (!options.onlyChanged || port->status != IscsiStatus::NotBootPort)) {
            json["iscsi"] = *word;
        }
    });
    tell("VLANs", [&] {
        if (Json vlans = Vlans(id); !vlans.empty()) {
            json["vlans"] = std::move(vlans);
        }
    });
    return json.size() == named ? Json() : json;
}

Json Description::Whole(const TeamFacts& facts, NamedBy by) {
    Json json{{"name", ToUtf8(facts.team.name)}, {"mode", AsJson(facts.team.mode)}};
    json["members"] = Members(facts, by);
    json["primary"] = Role(facts, MemberRole::Primary, by);
    json["secondary"] = Role(facts, MemberRole::Secondary, by);
    json["multiVendor"] = facts.team.multiVendor;
    json["linkSecurity"] = facts.team.linkSecurity;
    if (const Json settings = ChangedSettings(facts.team.id); !settings.empty()) {
        json["settings"] = settings;
    }
    json["vlans"] = Vlans(facts.team.id);
    return json;
}

/// In the order in which the machine lists its adapters: that of the members says nothing.
Json Description::Members(const TeamFacts& facts, NamedBy by) {
    std::vector<std::size_t> own;
    for (const TeamMember& member : facts.members) {
        // An adapter that was taken out of the machine may still be a member.
        if (const auto adapter = m_machine.Find(member.id)) {
            own.push_back(*adapter);
        }
    }
    std::sort(own.begin(), own.end());
    Json members = Json::array();
    for (const std::size_t adapter : own) {
        members.push_back(by == NamedBy::Name ? Json(m_machine.NameOf(adapter)) : SelectorOf(adapter, by));
    }
    return members;
}

Json Description::Role(const TeamFacts& facts, MemberRole role, NamedBy by) {
    const TeamMember* holder = facts.Holder(role);
    const auto adapter = holder == nullptr ? std::nullopt : m_machine.Find(holder->id);
    if (!adapter) {
        return {};
    }
    return by == NamedBy::Name ? Json(m_machine.NameOf(*adapter)) : SelectorOf(*adapter, by);
}

Json Description::Vlans(const VlanParentId& parent) {
    Json vlans = Json::array();
    for (const Vlan& vlan : m_machine.Vlans(parent)) {
        Json json{{"id", vlan.number}, {"name", ToUtf8(vlan.name)}};
        if (const Json settings = ChangedSettings(vlan.id); !settings.empty()) {
            json["settings"] = settings;
        }
        vlans.push_back(std::move(json));
    }
    std::stable_sort(vlans.begin(), vlans.end(),
                     [](const Json& left, const Json& right) { return left.at("id") < right.at("id"); });
    return vlans;
}

/// Those of a team or a VLAN that differ from what a new one has.
Json Description::ChangedSettings(const Owner& owner) {
    Json settings = Json::object();
    for (const Setting& setting : m_machine.Settings(owner)) {
        if (setting.writable && !IsStandard(setting)) {
            settings[ToUtf8(setting.keyword)] = ValueOf(setting);
        }
    }
    return settings;
}

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
        const Json power = PowerJson(m_machine.Power(adapter));
        json["power"] = purpose == For::GoingBack ? power : OnlyKeysOf(power, wanted.power);
    }
    if (!wanted.wakeOnLan.empty()) {
        json["wakeOnLan"] = OnlyKeysOf(WakeJson(m_machine.Wake(adapter)), wanted.wakeOnLan);
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

Document Description::Before(const Document& document) {
    const bool touchesIscsi = std::any_of(document.adapters.begin(), document.adapters.end(),
                                          [](const WantedAdapter& each) { return each.iscsi.has_value(); });
    std::map<std::size_t, Json> adapters;
    const auto merge = [&](std::size_t adapter, const Json& part) {
        Json& whole = adapters.try_emplace(adapter, Json::object()).first->second;
        for (const auto& [key, value] : part.items()) {
            if (value.is_object() && whole.contains(key)) {
                whole[key].update(value);
            } else if (value.is_array() && whole.contains(key)) {
                for (const Json& vlan : value) {
                    const auto isSame = [&vlan](const Json& each) { return each.at("id") == vlan.at("id"); };
                    if (std::none_of(whole[key].begin(), whole[key].end(), isSame)) {
                        whole[key].push_back(vlan);
                    }
                }
            } else {
                whole[key] = value;
            }
        }
    };
    for (const WantedAdapter& wanted : document.adapters) {
        for (const std::size_t adapter : Named(wanted.selector)) {
            merge(adapter, Like(wanted, adapter, For::GoingBack));
        }
    }
    for (std::size_t i = 0; i < m_machine.Adapters().size(); ++i) {
        Json json = SelectorOf(i, NamedBy::Name);
        // Another port may lose a place that one gets.
        const IscsiAdapter* port = touchesIscsi ? m_machine.Iscsi(i) : nullptr;
        if (const auto word = port == nullptr ? std::nullopt : IscsiWord(port->status)) {
            json["iscsi"] = *word;
        }
        if (document.isExclusive) {
            json["vlans"] = Vlans(m_machine.Adapters()[i].id);
        }
        if (json.size() > 1) {
            merge(i, json);
        }
    }
    Json teams = document.isExclusive ? UndescribedTeams(document) : Json::array();
    for (const WantedTeam& wanted : document.teams) {
        const std::vector<std::size_t> found = m_machine.TeamsCalled(wanted.name);
        teams.push_back(document.isExclusive && !found.empty() ? Whole(m_machine.Teams()[found.front()])
                                                               : Like(wanted, For::GoingBack));
    }
    Json json{{"adapters", Json::array()}, {"teams", std::move(teams)}, {"exclusive", document.isExclusive}};
    for (auto& [adapter, one] : adapters) {
        json["adapters"].push_back(std::move(one));
    }
    return DocumentOf(json);
}

} // namespace quillet::state
