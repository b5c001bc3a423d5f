// Listing adapters, and finding one.
#include "names/AdapterLookup.h"

#include "names/ObjectPath.h"
#include "texts/Text.h"

#include <quillet-state/Matching.h>

#include <algorithm>

namespace quilletctl {

namespace {

using quillet::state::MacDigits;

/// What is read; nothing where it is refused.
template <class Read>
auto IfTold(Read read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const quillet::Error&) {
        return std::nullopt;
    }
}

/// Whether a path names the adapter or its boot agent, which go by the same identifier.
bool IsPathOf(const ListedAdapter& adapter, const ObjectName& name) {
    const ObjectName own = NameInPath(adapter.path);
    return SameIgnoringCase(own.key, name.key) &&
           (SameIgnoringCase(own.className, name.className) ||
            SameIgnoringCase(name.className, "Zorel_BootAgent") ||
            SameIgnoringCase(name.className, "Zorel_BootAgent_iSCSI_Adapters"));
}

} // namespace

std::vector<ListedAdapter> ReadAdapters(quillet::Session& session) {
    std::vector<ListedAdapter> listed;
    for (const quillet::Adapter& adapter : Attempt("list the adapters", [&] { return session.Adapters(); })) {
        // A path without an object ID is odd, but no reason to hide the other adapters.
        listed.push_back({adapter.id, PathOf(adapter.id), ToUtf8(session.ObjectIdOf(adapter.id)),
                          ToUtf8(adapter.name), ToUtf8(adapter.displayName), ToUtf8(adapter.deviceId)});
    }
    return listed;
}

std::string PlaceText(const std::string& slot, const std::string& port) {
    return slot.empty() || port.empty() ? std::string()
                                        : slot.substr(slot.find_last_of(' ') + 1) + ':' + port;
}

Named NamesOf(const ListedAdapter& adapter) {
    return {adapter.objectId.empty() ? adapter.path : adapter.objectId,
            adapter.Called(),
            {adapter.path, adapter.objectId, adapter.deviceId, adapter.name, adapter.displayName}};
}

AdapterFinder::AdapterFinder(quillet::Session& session)
    : m_session(session), m_adapters(ReadAdapters(session)) {
    for (const ListedAdapter& adapter : m_adapters) {
        m_names.push_back(NamesOf(adapter));
    }
}

ListedAdapter AdapterFinder::One(const std::string& text, const std::vector<Named>& others) {
    if (text.empty()) {
        throw UsageError("an adapter is needed: its name, object ID or path");
    }
    if (const std::optional<std::size_t> found = Find(text)) {
        return m_adapters[*found];
    }
    if (IsObjectPath(text)) {
        const quillet::AdapterId id(ToWide(text));
        return {id, text, ToUtf8(m_session.ObjectIdOf(id)), {}, {}, {}};
    }
    ThrowUnknown(text, others);
}

std::vector<ListedAdapter> AdapterFinder::Several(const std::string& text) {
    if (!IsPattern(text) || IsObjectPath(text) || !FindNamed(m_names, text, Match::Whole).empty()) {
        return {One(text)};
    }
    std::vector<std::size_t> found = FindNamed(m_names, text, Match::Pattern);
    if (found.empty()) {
        ReadPlaces();
        found = FindNamed(m_places, text, Match::Pattern);
    }
    if (found.empty()) {
        ReadCaptions();
        found = FindNamed(m_captions, text, Match::Pattern);
    }
    if (found.empty()) {
        ThrowUnknown(text);
    }
    std::vector<ListedAdapter> adapters;
    adapters.reserve(found.size());
    for (const std::size_t i : found) {
        adapters.push_back(m_adapters[i]);
    }
    return adapters;
}

std::optional<std::size_t> AdapterFinder::Find(const std::string& text) {
    const std::string kind = "adapters";
    if (IsObjectPath(text)) {
        const auto found = std::find_if(m_adapters.begin(), m_adapters.end(), [&](const ListedAdapter& each) {
            return IsPathOf(each, NameInPath(text));
        });
        return found == m_adapters.end()
                   ? std::nullopt
                   : std::optional(static_cast<std::size_t>(found - m_adapters.begin()));
    }
    std::optional<std::size_t> found = FindOneNamed(m_names, text, kind);
    const std::string digits = MacDigits(text);
    // A call for each adapter is made only for what looks like a place.
    if (!found && (text.find(':') != std::string::npos || !digits.empty())) {
        ReadPlaces();
        found = FindOneNamed(m_places, digits.empty() ? text : digits, kind);
    }
    if (!found) {
        ReadCaptions();
        found = FindOneNamed(m_captions, text, kind);
    }
    return found;
}

void AdapterFinder::ReadPlaces() {
    if (!m_places.empty()) {
        return;
    }
    for (std::size_t i = 0; i < m_adapters.size(); ++i) {
        const quillet::FetchOnce once(m_session);
        // One that cannot tell its place must not hide the others.
        const auto hardware = IfTold([&] { return m_session.ReadHardware(m_adapters[i].id); });
        const auto known = IfTold([&] { return m_session.ReadAdapter(m_adapters[i].id); });
        m_placeless += hardware && known ? 0U : 1U;
        Named& place =
            m_places.emplace_back(Named{m_names[i].id, m_names[i].called, std::vector<std::string>(4)});
        if (hardware) {
            const std::string mac = ToUtf8(hardware->macAddress);
            place.names[0] = mac;
            place.names[1] = MacDigits(mac);
        }
        if (!hardware || !known) {
            continue;
        }
        const std::string slot = ToUtf8(known->slot);
        const std::string port = ToUtf8(hardware->portNumber);
        place.names[3] = PlaceText(slot, port);
        if (!place.names[3].empty()) {
            place.names[2].append(slot).append(":").append(port);
        }
    }
}

void AdapterFinder::ReadCaptions() {
    if (!m_captions.empty()) {
        return;
    }
    const auto teams = IfTold([&] { return m_session.Teams(); });
    if (!teams) {
        return;
    }
    for (const Named& each : m_names) {
        m_captions.push_back({each.id, each.called, {}});
    }
    for (const quillet::Team& team : *teams) {
        const auto members = IfTold([&] { return m_session.Members(team.id); });
        for (const quillet::TeamMember& member : members.value_or(std::vector<quillet::TeamMember>())) {
            const ObjectName name = NameInPath(PathOf(member.id));
            for (std::size_t i = 0; i < m_adapters.size(); ++i) {
                if (IsPathOf(m_adapters[i], name)) {
                    m_captions[i].names = {ToUtf8(member.caption)};
                }
            }
        }
    }
}

void AdapterFinder::ThrowUnknown(const std::string& text, std::vector<Named> others) const {
    std::string reason = "no adapter is called \"" + text + "\"";
    if (m_placeless > 0) {
        reason += "; " + std::to_string(m_placeless) +
                  (m_placeless == 1 ? " adapter does not tell its slot, port and MAC address"
                                    : " adapters do not tell their slots, ports and MAC addresses");
    }
    // Places are numbers, of which any two are alike.
    for (const std::vector<Named>* known : {&m_names, &m_captions}) {
        others.insert(others.end(), known->begin(), known->end());
    }
    throw UsageError(reason + MeantOrListed(others, text, "adapter list"));
}

ListedAdapter FindAdapter(quillet::Session& session, const std::string& text) {
    return AdapterFinder(session).One(text);
}

std::vector<ListedAdapter> FindAdapters(quillet::Session& session, const std::vector<std::string>& texts,
                                        const AdapterChoice& offered) {
    AdapterFinder finder(session);
    std::vector<ListedAdapter> adapters;
    for (const std::string& text : texts) {
        const std::vector<ListedAdapter> named = finder.Several(text);
        const bool chooses = IsPattern(text) && offered && std::any_of(named.begin(), named.end(), offered);
        for (const ListedAdapter& adapter : named) {
            const bool isKnown =
                std::any_of(adapters.begin(), adapters.end(),
                            [&](const ListedAdapter& each) { return each.path == adapter.path; });
            if (!isKnown && (!chooses || offered(adapter))) {
                adapters.push_back(adapter);
            }
        }
    }
    return adapters;
}

} // namespace quilletctl
