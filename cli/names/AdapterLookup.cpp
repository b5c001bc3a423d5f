// Listing adapters, and finding one.
#include "names/AdapterLookup.h"

#include "names/HostName.h"
#include "names/ObjectPath.h"
#include "texts/Text.h"

#include <algorithm>

namespace quilletctl {

namespace {

std::string ObjectIdIn(CQuillet& session, const std::wstring& path) {
    std::wstring objectId;
    session.GetGUI(path, objectId);
    return ToUtf8(objectId);
}

/// The twelve digits of a MAC address, however they are set apart; empty when the text is none.
std::string MacDigits(std::string_view text) {
    std::string digits;
    for (const char character : text) {
        if (character != '-' && character != ':' && character != '.') {
            digits += character;
        }
    }
    return IsMacAddress(digits) ? digits : std::string();
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

std::vector<ListedAdapter> ReadAdapters(CQuillet& session) {
    CAdapters adapters;
    ThrowIfRefused(session.EnumerateAdapters(adapters), "list the adapters");
    std::vector<ListedAdapter> listed;
    for (const CAdapter* adapter : adapters.m_vecItems) {
        if (adapter == nullptr) {
            continue;
        }
        // A path without an object ID is odd, but no reason to hide the other adapters.
        listed.push_back({ToUtf8(adapter->m_wsAdapterID), ObjectIdIn(session, adapter->m_wsAdapterID),
                          ToUtf8(adapter->m_wsName), ToUtf8(adapter->m_wsDisplayName),
                          ToUtf8(adapter->m_wsDeviceID)});
    }
    return listed;
}

Named NamesOf(const ListedAdapter& adapter) {
    return {adapter.objectId.empty() ? adapter.path : adapter.objectId,
            adapter.Called(),
            {adapter.path, adapter.objectId, adapter.deviceId, adapter.name, adapter.displayName}};
}

AdapterFinder::AdapterFinder(CQuillet& session) : m_session(session), m_adapters(ReadAdapters(session)) {
    for (const ListedAdapter& adapter : m_adapters) {
        m_names.push_back(NamesOf(adapter));
    }
}

ListedAdapter AdapterFinder::One(const std::string& text) {
    if (text.empty()) {
        throw UsageError("an adapter is needed: its name, object ID or path");
    }
    if (const std::optional<std::size_t> found = Find(text)) {
        return m_adapters[*found];
    }
    if (IsObjectPath(text)) {
        return {text, ObjectIdIn(m_session, ToWide(text)), {}, {}, {}};
    }
    ThrowUnknown(text);
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
        const std::wstring path = ToWide(m_adapters[i].path);
        CPCIInfo pci;
        CAdapter known;
        // One that cannot tell its place must not hide the others.
        const bool tellsPort = SUCCEEDED(m_session.GetAdapterPCIInfo(path, pci));
        const bool tellsSlot = SUCCEEDED(m_session.GetAdapterBasicInfo(path, known));
        m_placeless += tellsPort && tellsSlot ? 0 : 1;
        Named& place =
            m_places.emplace_back(Named{m_names[i].id, m_names[i].called, std::vector<std::string>(4)});
        if (tellsPort) {
            const std::string mac = ToUtf8(pci.m_wsMacAddress);
            place.names[0] = mac;
            place.names[1] = MacDigits(mac);
        }
        const std::string slot = ToUtf8(known.m_wsSlotID);
        const std::string port = ToUtf8(pci.m_wsPortNumber);
        if (tellsPort && tellsSlot && !slot.empty() && !port.empty()) {
            const std::string number = slot.substr(slot.find_last_of(' ') + 1); // "2:1" for "Slot 2:1"
            place.names[2].append(slot).append(":").append(port);
            place.names[3].append(number).append(":").append(port);
        }
    }
}

void AdapterFinder::ReadCaptions() {
    CTeams teams;
    if (!m_captions.empty() || FAILED(m_session.EnumerateTeams(teams))) {
        return;
    }
    for (const Named& each : m_names) {
        m_captions.push_back({each.id, each.called, {}});
    }
    for (const CTeam* team : teams.m_vecItems) {
        CTeamedAdapters members;
        if (FAILED(m_session.GetMemberAdapters(team->m_wsTeamID, members))) {
            continue;
        }
        for (const CTeamedAdapter* member : members.m_vecItems) {
            const ObjectName name = NameInPath(ToUtf8(member->m_wsAdapterID));
            for (std::size_t i = 0; i < m_adapters.size(); ++i) {
                if (IsPathOf(m_adapters[i], name)) {
                    m_captions[i].names = {ToUtf8(member->m_wsCaption)};
                }
            }
        }
    }
}

void AdapterFinder::ThrowUnknown(const std::string& text) const {
    std::string reason = "no adapter is called \"" + text + "\"";
    if (m_placeless > 0) {
        reason += "; " + std::to_string(m_placeless) +
                  (m_placeless == 1 ? " adapter does not tell its slot, port and MAC address"
                                    : " adapters do not tell their slots, ports and MAC addresses");
    }
    throw UsageError(reason + "; see quilletctl adapter list");
}

ListedAdapter FindAdapter(CQuillet& session, const std::string& text) {
    return AdapterFinder(session).One(text);
}

std::vector<ListedAdapter> FindAdapters(CQuillet& session, const std::vector<std::string>& texts,
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
