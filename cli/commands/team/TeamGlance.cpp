// Reading what is shown of a team.
#include "commands/team/TeamGlance.h"

#include "commands/team/TeamMembers.h"
#include "ending/Failure.h"
#include "names/ObjectPath.h"
#include "texts/InWords.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

ListedAdapter AdapterOf(const std::vector<ListedAdapter>& adapters, const quillet::TeamMember& member) {
    const std::string objectId = ObjectIdIn(member.id);
    const auto found = std::find_if(adapters.begin(), adapters.end(), [&](const ListedAdapter& each) {
        return SameIgnoringCase(ObjectIdIn(each.id), objectId);
    });
    return found != adapters.end()
               ? *found
               : ListedAdapter{member.id, PathOf(member.id),          objectId,
                               {},        ToUtf8(member.displayName), ToUtf8(member.deviceId)};
}

} // namespace

TeamState::TeamState(quillet::Session& session, const quillet::Team& team) {
    try {
        m_status = session.ReadStatus(team.id);
    } catch (const quillet::Error& failure) {
        m_refusal = failure.Code();
    }
}

Cell TeamState::AsCell() const {
    return m_status ? Cell(InWords(*m_status), ToneOf(*m_status))
                    : Cell("not told: " + ExplainResult(m_refusal), Tone::Warning);
}

Json TeamState::AsJson() const {
    return m_status ? Coded(*m_status) : Json();
}

std::vector<ShownMember> ReadShownMembers(quillet::Session& session, const quillet::Team& team,
                                          const std::vector<ListedAdapter>& adapters) {
    // The list of the members looks at the adapters as well.
    const quillet::FetchOnce once(session);
    std::vector<ShownMember> shown;
    for (quillet::TeamMember& member : MembersOf(session, team)) {
        ListedAdapter adapter = AdapterOf(adapters, member);
        std::optional<quillet::AdapterState> state;
        try {
            state = session.ReadState(member.id);
        } catch (const quillet::Error&) {
            // It is a member all the same.
        }
        shown.push_back({std::move(member), std::move(adapter), std::move(state)});
    }
    return shown;
}

} // namespace quilletctl
