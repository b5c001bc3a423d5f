// Reading, naming and comparing members.
#include "commands/team/TeamMembers.h"

#include "ending/Failure.h"
#include "names/ObjectPath.h"
#include "names/TeamLookup.h"
#include "texts/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

std::vector<quillet::TeamMember> MembersOf(quillet::Session& session, const quillet::Team& team) {
    return Attempt("list the members of " + Called(team), [&] { return session.Members(team.id); });
}

std::vector<quillet::AdapterId> IdsOf(const std::vector<ListedAdapter>& adapters) {
    std::vector<quillet::AdapterId> ids;
    ids.reserve(adapters.size());
    for (const ListedAdapter& adapter : adapters) {
        ids.push_back(adapter.id);
    }
    return ids;
}

void CompareMembers(Verification& taken, const std::vector<quillet::TeamMember>& members,
                    const std::vector<quillet::AdapterId>& wanted) {
    for (const quillet::AdapterId& id : wanted) {
        if (std::none_of(members.begin(), members.end(),
                         [&](const auto& each) { return NameTheSameObject(each.id, id); })) {
            taken.Add("members", PathOf(id), Json(), ObjectIdIn(id) + " is no member");
        }
    }
    for (const quillet::TeamMember& member : members) {
        if (std::none_of(wanted.begin(), wanted.end(),
                         [&](const auto& each) { return NameTheSameObject(each, member.id); })) {
            taken.Add("members", Json(), PathOf(member.id),
                      ToUtf8(member.displayName) + " is still a member");
        }
    }
}

} // namespace quilletctl
