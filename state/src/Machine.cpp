// Reading on demand.
#include "Machine.h"

#include "Texts.h"

#include <quillet/client/Text.h>

#include <algorithm>
#include <array>
#include <utility>

namespace quillet::state {

namespace {

/// What a map has under a key; read and kept where it has nothing yet.
template <class Key, class Value, class Read>
const Value& Kept(std::map<Key, Value>& known, const Key& key, Read read) {
    const auto found = known.find(key);
    return found != known.end() ? found->second : known.emplace(key, read()).first->second;
}

std::string WithoutBraces(const std::string& text) {
    const bool isBraced = text.size() > 1 && text.front() == '{' && text.back() == '}';
    return isBraced ? text.substr(1, text.size() - 2) : text;
}

bool IsSlot(const Place& place, const Selector& wanted) {
    const std::string number = place.slot.substr(place.slot.find_last_of(' ') + 1); // "2" of "Slot 2"
    return !place.slot.empty() && (SameName(place.slot, wanted.slot) || SameName(number, wanted.slot)) &&
           (wanted.port.empty() || SameName(place.port, wanted.port));
}

} // namespace

const TeamMember* TeamFacts::Holder(MemberRole role) const {
    const auto found = std::find_if(members.begin(), members.end(),
                                    [role](const TeamMember& each) { return each.role == role; });
    return found == members.end() ? nullptr : &*found;
}

const std::vector<Adapter>& Machine::Adapters() {
    if (!m_adapters) {
        m_adapters = m_session.Adapters();
    }
    return *m_adapters;
}

const Place& Machine::PlaceOf(std::size_t adapter) {
    return Kept(m_places, adapter, [&] {
        const AdapterId& id = Adapters()[adapter].id;
        const AdapterHardware hardware = m_session.ReadHardware(id);
        return Place{ToUtf8(m_session.ReadAdapter(id).slot), ToUtf8(hardware.portNumber),
                     ToUtf8(hardware.macAddress)};
    });
}

const std::vector<Setting>& Machine::Settings(const Owner& owner) {
    return Kept(m_settings, PathOf(owner),
                [&] { return std::visit([&](const auto& id) { return m_session.Settings(id); }, owner); });
}

const PowerOptions& Machine::Power(std::size_t adapter) {
    return Kept(m_power, adapter, [&] { return m_session.ReadPower(Adapters()[adapter].id); });
}

const WakeOptions& Machine::Wake(std::size_t adapter) {
    return Kept(m_wake, adapter, [&] { return m_session.ReadWake(Adapters()[adapter].id); });
}

const IscsiAdapter* Machine::Iscsi(std::size_t adapter) {
    if (!m_iscsi) {
        m_iscsi = m_session.IscsiAdapters();
    }
    const std::wstring own = m_session.ObjectIdOf(Adapters()[adapter].id);
    const auto found = std::find_if(m_iscsi->begin(), m_iscsi->end(), [&own](const IscsiAdapter& each) {
        return !own.empty() && SameName(each.objectId, own);
    });
    return found == m_iscsi->end() ? nullptr : &*found;
}

const std::vector<TeamFacts>& Machine::Teams() {
    if (!m_teams) {
        std::vector<TeamFacts> teams;
        for (Team& team : m_session.Teams()) {
            std::vector<TeamMember> members = m_session.Members(team.id);
            teams.push_back({std::move(team), std::move(members)});
        }
        m_teams = std::move(teams);
    }
    return *m_teams;
}

const std::vector<Vlan>& Machine::Vlans(const VlanParentId& parent) {
    return Kept(m_vlans, PathOf(parent), [&] { return m_session.Vlans(parent); });
}

std::optional<std::size_t> Machine::Find(const AdapterId& id) {
    const auto& adapters = Adapters();
    const std::wstring wanted = m_session.ObjectIdOf(id);
    for (std::size_t i = 0; i < adapters.size(); ++i) {
        // The same adapter may be told by paths with different computers' names.
        if (adapters[i].id == id ||
            (!wanted.empty() && SameName(m_session.ObjectIdOf(adapters[i].id), wanted))) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> Machine::TeamOf(std::size_t adapter) {
    const auto& teams = Teams();
    for (std::size_t i = 0; i < teams.size(); ++i) {
        for (const TeamMember& member : teams[i].members) {
            if (Find(member.id) == adapter) {
                return i;
            }
        }
    }
    return std::nullopt;
}

std::vector<std::size_t> Machine::TeamsCalled(const std::string& name) {
    std::vector<std::size_t> exact;
    std::vector<std::size_t> folded;
    const auto& teams = Teams();
    for (std::size_t i = 0; i < teams.size(); ++i) {
        const std::string own = ToUtf8(teams[i].team.name);
        if (own == name) {
            exact.push_back(i);
        }
        if (SameName(own, name)) {
            folded.push_back(i);
        }
    }
    return exact.empty() ? folded : exact;
}

std::string Machine::NameOf(std::size_t adapter) {
    const auto& adapters = Adapters();
    std::string name = ToUtf8(adapters[adapter].name);
    const auto count = std::count_if(adapters.begin(), adapters.end(),
                                     [&](const Adapter& each) { return SameName(ToUtf8(each.name), name); });
    const std::string objectId = ToUtf8(m_session.ObjectIdOf(adapters[adapter].id));
    if (count == 1 && !name.empty()) {
        return name;
    }
    return objectId.empty() ? ToUtf8(adapters[adapter].id.Path()) : objectId;
}

std::vector<std::size_t> Machine::Select(const Selector& selector) {
    const auto& adapters = Adapters();
    std::vector<std::size_t> found;
    if (selector.IsPattern()) {
        for (std::size_t i = 0; i < adapters.size(); ++i) {
            if (Fits(ToUtf8(adapters[i].name), selector.match) ||
                Fits(ToUtf8(adapters[i].displayName), selector.match)) {
                found.push_back(i);
            }
        }
        return found;
    }
    if (!selector.mac.empty()) {
        return WithMac(MacDigits(selector.mac));
    }
    if (!selector.slot.empty()) {
        for (std::size_t i = 0; i < adapters.size(); ++i) {
            if (IsSlot(PlaceOf(i), selector)) {
                found.push_back(i);
            }
        }
        return found;
    }
    return Named(selector.name);
}

/// What can name one adapter only counts before what several may share.
std::vector<std::size_t> Machine::Named(const std::string& text) {
    const auto& adapters = Adapters();
    std::vector<std::vector<std::size_t>> ways(5);
    for (std::size_t i = 0; i < adapters.size(); ++i) {
        const auto is = [&](const std::wstring& own) {
            const std::string name = ToUtf8(own);
            return !name.empty() && SameName(WithoutBraces(name), WithoutBraces(text));
        };
        const std::array<bool, 5> fits{is(adapters[i].id.Path()), is(m_session.ObjectIdOf(adapters[i].id)),
                                       is(adapters[i].deviceId), is(adapters[i].name),
                                       is(adapters[i].displayName)};
        for (std::size_t way = 0; way < fits.size(); ++way) {
            if (fits.at(way)) {
                ways[way].push_back(i);
            }
        }
    }
    const auto first = std::find_if(ways.begin(), ways.end(), [](const auto& way) { return !way.empty(); });
    if (first != ways.end()) {
        return *first;
    }
    const std::string digits = MacDigits(text);
    return digits.empty() ? std::vector<std::size_t>() : WithMac(digits);
}

std::vector<std::size_t> Machine::WithMac(const std::string& digits) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < Adapters().size(); ++i) {
        if (MacDigits(PlaceOf(i).mac) == digits) {
            found.push_back(i);
        }
    }
    return found;
}

} // namespace quillet::state
