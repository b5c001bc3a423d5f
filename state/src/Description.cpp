// From what was read to a document.
#include "Description.h"

#include "Options.h"
#include "SettingValues.h"
#include "Texts.h"
#include "Words.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

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
        tell("power options", [&] { json["power"] = AsJson(m_machine.Power(adapter)); });
        tell("wake-on-LAN options", [&] {
            if (const Json wake = AsJson(m_machine.Wake(adapter)); !wake.empty()) {
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

} // namespace quillet::state
