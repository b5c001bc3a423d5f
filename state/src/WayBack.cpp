// The document that leads back: what the way to another one may change.
#include "Description.h"

#include "Words.h"

#include <quillet/client/Text.h>

#include <algorithm>

namespace quillet::state {

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
